#include "NoteBarTest.h"

#include "FakeFrameCommands.h"
#include "ui/CMainFrame.h"

#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>

namespace {

// "up:volumeSpin" clicks a spin's arrow; "slide:volumeSlider:-4950" lets
// the slider go at that position; "zero" clicks the Zero button.
void Act(NoteBar* bar, const QString& step) {
    const QString kind = step.section(':', 0, 0), name = step.section(':', 1, 1);
    if (kind == "zero") {
        bar->zeroButton->click();
    } else if (kind == "slide") {
        QSlider* slider = bar->findChild<QSlider*>(name);
        slider->setSliderDown(true);
        slider->setValue(step.section(':', 2).toInt());
        slider->setSliderDown(false);
    } else {
        SpinArrows* spin = bar->findChild<SpinArrows*>(name);
        (kind == "up" ? spin->upArrow : spin->downArrow)->click();
    }
}

} // namespace

void NoteBarTest::init() {
    commands = new FakeFrameCommands;
    frame = new CMainFrame(new QWidget, commands);
}

void NoteBarTest::cleanup() {
    delete frame;
    delete commands;
}

void NoteBarTest::noteControl_data() {
    QTest::addColumn<int>("volume"); // the note the bar shows first
    QTest::addColumn<int>("toeIn");
    QTest::addColumn<int>("length");
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("sent");
    QTest::addColumn<QString>("field");  // "volumeField=..." or empty
    QTest::addColumn<QString>("slider"); // "volumeSlider=..." or empty
    auto row = [](const char* name, int v, int t, int l, const char* step, const char* sent,
                  const char* field, const char* slider) {
        QTest::newRow(name) << v << t << l << step << sent << field << slider;
    };
    row("volumeSpinFallsToSilence", -4995, 0, 0, "down:volumeSpin", "SetNoteValue 1 -10000",
        "volumeField=0.000000", "volumeSlider=-5000");
    row("volumeSpinStopsAtZero", -5, 0, 0, "up:volumeSpin", "SetNoteValue 1 0",
        "volumeField=1.000000", "volumeSlider=0");
    row("volumeSliderLeftEndIsHalf", 0, 0, 0, "slide:volumeSlider:-5000", "SetNoteValue 1 -5000",
        "volumeField=0.500000", "");
    row("lengthSliderRightEndIsTheWholeSample", 0, 0, 100, "slide:lengthSlider:10000",
        "SetNoteValue 4 0", "lengthField=2000 ms", "");
    row("lengthSpinPastTheEndWraps", 0, 0, 9995, "up:lengthSpin", "SetNoteValue 4 0",
        "lengthField=2000 ms", "lengthSlider=10000");
    row("panSliderEndIsHardLeft", 0, 0, 0, "slide:panSlider:-4950", "SetNoteValue 3 -10000", "",
        "panSlider=-4950");
    row("toeInSpinHasNoUpperLimit", 0, 10000, 0, "up:toeInSpin", "SetNoteValue 5 10010",
        "toeInField=2002 ms", "toeInSlider=10000");
    row("toeInSliderShowsShareOfTheSample", 0, 0, 0, "slide:toeInSlider:1000",
        "SetNoteValue 5 1000", "toeInField=200 ms", "");
    row("zeroButtonCentresThePan", 0, 0, 0, "zero", "SetNoteValue 3 0", "", "panSlider=0");
}

void NoteBarTest::noteControl() {
    QFETCH(int, volume);
    QFETCH(int, toeIn);
    QFETCH(int, length);
    QFETCH(QString, step);
    QFETCH(QString, sent);
    QFETCH(QString, field);
    QFETCH(QString, slider);
    commands->note.note.volume = static_cast<int16_t>(volume);
    commands->note.note.toeIn = static_cast<int16_t>(toeIn);
    commands->note.note.length = static_cast<int16_t>(length);
    commands->note.note.pan = 1200;
    commands->note.sampleLengthMs = 2000;
    frame->ShowNoteBar(nullptr, true);
    Act(frame->noteBar, step);
    QCOMPARE(commands->calls, QStringList{sent});
    if (!field.isEmpty())
        QCOMPARE(frame->noteBar->findChild<QLineEdit*>(field.section('=', 0, 0))->text(),
                 field.section('=', 1));
    if (!slider.isEmpty())
        QCOMPARE(frame->noteBar->findChild<QSlider*>(slider.section('=', 0, 0))->value(),
                 slider.section('=', 1).toInt());
}

void NoteBarTest::filterSpin_data() {
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("arrow");
    QTest::addColumn<QString>("sent"); // empty: nothing is set
    auto row = [](const char* name, const char* shown, const char* arrow, const char* sent) {
        QTest::newRow(name) << shown << arrow << sent;
    };
    row("eighthsUp", "Eighth Notes", "up", "SetFilter 4");
    row("stepsNotationDown", "1/2 step", "down", "SetFilter 1");
    row("thirtySecondsUpToOff", "32nd Notes", "up", "SetFilter -1");
    row("offDown", "Filter off", "down", "SetFilter 8");
    row("offUpStays", "1/64 step (max)", "up", "");
    row("quarterDownStays", "Quarter Notes", "down", "");
    row("multiGoesToSixteenths", "Multi", "down", "SetFilter 4");
    row("noHighlights", "no highlights", "up", "");
}

void NoteBarTest::filterSpin() {
    QFETCH(QString, shown);
    QFETCH(QString, arrow);
    QFETCH(QString, sent);
    commands->multiFilter = shown.toStdString();
    frame->ShowMultiLineBar();
    commands->calls.clear();
    SpinArrows* spin = frame->lineBar->filterSpin;
    (arrow == "up" ? spin->upArrow : spin->downArrow)->click();
    QCOMPARE(commands->calls, sent.isEmpty() ? QStringList{} : QStringList{sent});
    QCOMPARE(frame->lineBar->filterField->text(),
             sent.isEmpty() ? shown : QString::fromStdString(commands->filterAfterSet));
}
