#include "BarCommandsTest.h"

#include "editing/Line.h"
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/SoundSystem.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PatternRow.h"
#include "sound/WaveBuilder.h"
#include "ui/CMainFrame.h"
#include "ui/ViewWidget.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>

namespace {

void Click(SpinArrows* spin, const QString& arrow) {
    (arrow == "up" ? spin->upArrow : spin->downArrow)->click();
}

// "m:d" is OnTempoControl(m, d); "up:spin" and "down:spin" click an arrow;
// "drag" moves the slider to 10000 and holds it, "drop" lets it go, "groove"
// clicks the groove right of the handle.
void TimersStep(CMainFrame* frame, const QString& step) {
    QSlider* slider = frame->timersBar->tempoSlider;
    const QString a = step.section(':', 0, 0), b = step.section(':', 1);
    if (step == "drag") {
        slider->setSliderDown(true);
        slider->setValue(10000);
    } else if (step == "drop") {
        slider->setSliderDown(false);
    } else if (step == "groove") {
        QTest::mouseClick(slider, Qt::LeftButton, {},
                          QPoint(slider->width() - 4, slider->height() / 2));
    } else if (a == "up" || a == "down") {
        Click(frame->timersBar->findChild<SpinArrows*>(b), a);
    } else {
        frame->OnTempoControl(a.toInt(), b.toInt());
    }
}

} // namespace

void BarCommandsTest::init() {
    program = std::make_unique<ProgramFixture>();
    view = program->view;
    frame = program->frame;
}

void BarCommandsTest::cleanup() {
    program.reset();
}

void BarCommandsTest::tempoControl_data() {
    QTest::addColumn<int>("start"); // slider position
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("slider");
    QTest::addColumn<double>("stepMs");
    QTest::addColumn<int>("skipped"); // ticks each playhead moved
    auto row = [](const char* name, int start, const char* steps, const char* field, int slider,
                  double stepMs, int skipped = 0) {
        QTest::newRow(name) << start << QString(steps) << QString(field) << slider << stepMs
                            << skipped;
    };
    row("+1 bpm", 12000, "1:1", "121.000000", 12100, 495.8677685950413);
    row("fine loses a hundredth", 12000, "2:1", "120.100000", 12009, 60000.0 / 120.1);
    row("fine twice", 12000, "2:1 2:1", "120.190000", 12019, 60000.0 / 120.19);
    row("slider released", 10000, "0:0", "100.000000", 10000, 600.0);
    row("+1 beyond the top", 25000, "1:1 1:1", "251.000000", 25000, 60000.0 / 251.0);
    row("-1 beyond the bottom", 3000, "1:-1 1:-1", "29.000000", 3000, 60000.0 / 29.0);
    row("fine beyond the top", 25000, "2:1 2:1", "250.100000", 25000, 60000.0 / 250.1);
    row("fine beyond the bottom", 3000, "2:-1 2:-1", "29.900000", 3000, 60000.0 / 29.9);
    row("skips move neither", 11000, "3:1 4:-1 5:1", "120.000000", 11000, 500.0, 25);
    row("bpm arrow", 12000, "up:bpmSpin", "121.000000", 12100, 60000.0 / 121.0);
    row("fine arrow", 12000, "down:fineTempoSpin", "119.900000", 11990, 60000.0 / 119.9);
    row("skip arrows", 12000, "up:skipTickSpin down:skipEighthSpin up:skipHalfSpin", "120.000000",
        12000, 500.0, 25);
    row("slider held", 12000, "drag", "120.000000", 10000, 500.0);
    row("slider let go", 12000, "drag drop", "100.000000", 10000, 600.0);
    row("groove clicked", 12000, "groove", "120.100000", 12010, 60000.0 / 120.1);
}

// Every instrument of the list takes the tempo.
void BarCommandsTest::tempoControl() {
    QFETCH(int, start);
    QFETCH(QString, steps);
    QFETCH(QString, field);
    QFETCH(int, slider);
    QFETCH(double, stepMs);
    QFETCH(int, skipped);
    view->NewInstrument();
    frame->ShowTimersBar();
    frame->timersBar->tempoSlider->setValue(start);
    Playhead& playhead = view->View()->Current()->GetSchedule()->playhead;
    playhead.position = 100;
    for (const QString& step : steps.split(' '))
        TimersStep(frame, step);
    QCOMPARE(frame->timersBar->bpmField->text(), field);
    QCOMPARE(frame->timersBar->tempoSlider->value(), slider);
    for (Instrument* inst : view->View()->instruments)
        QCOMPARE(inst->GetSchedule()->stepMs, stepMs);
    QCOMPARE(playhead.position, 100 + skipped);
}

void BarCommandsTest::viewBarControls_data() {
    QTest::addColumn<QString>("control");
    QTest::addColumn<double>("start"); // of the value the control changes; -1 is "all"
    QTest::addColumn<int>("presses");
    QTest::addColumn<bool>("barUp");
    QTest::addColumn<QString>("shown"); // the model's value as its field shows it
    auto row = [](const char* name, const char* control, double start, int presses, bool barUp,
                  const char* shown) {
        QTest::newRow(name) << QString(control) << start << presses << barUp << QString(shown);
    };
    row("< to the lowest", "<", 0.075, 1, true, "0.060000");
    row("< at the lowest", "<", 0.075, 2, true, "0.060000");
    row("< from the start", "<", 0.225, 30, true, "0.060000");
    row("> to the highest", ">", 0.945, 2, true, "0.960000");
    row("> from the start", ">", 0.225, 60, true, "0.960000");
    row("< with the bar not up", "<", 0.225, 1, false, "0.225000");
    row("--- at one slot", "---", 1, 2, true, "1");
    row("+ without limit or bar", "+", 15, 3, false, "18");
    row("zoom 1 up to 4", "zoom1 up", 2, 3, true, "4");
    row("zoom 1 down to 1", "zoom1 down", 2, 3, true, "1");
    row("zoom 2 up to 32", "zoom2 up", 31, 3, true, "32");
    row("zoom 2 down to 2", "zoom2 down", 3, 3, true, "2");
    row("zoom 3 up to 128", "zoom3 up", 127, 3, true, "128");
    row("zoom 3 down to 4", "zoom3 down", 5, 3, true, "4");
    row("zoom 3 all, up", "zoom3 up", -1, 1, true, "32");
    row("zoom 3 all, down", "zoom3 down", -1, 1, true, "32");
    row("max zm3", "max\nzm3", 16, 1, true, "all");
    row("zoom with the bar not up", "zoom1 up", 2, 1, false, "2");
}

// A zoom click refills the bar, which stays up.
void BarCommandsTest::viewBarControls() {
    QFETCH(QString, control);
    QFETCH(double, start);
    QFETCH(int, presses);
    QFETCH(bool, barUp);
    QFETCH(QString, shown);
    MainView* v = view->View();
    ViewBar* bar = frame->viewBar;
    const bool split = control == "<" || control == ">";
    const bool slots = control == "+" || control == "---";
    const int zoom = control.startsWith("zoom") ? control[4].digitValue() : 3;
    int32_t& measures = zoom == 1   ? v->zoom1Measures
                        : zoom == 2 ? v->zoom2Measures
                                    : v->zoom3Measures;
    QLineEdit* field = split   ? bar->splitField
                       : slots ? bar->linesField
                               : bar->findChild<QLineEdit*>(QString("zoom%1Field").arg(zoom));
    if (split)
        v->split = start;
    else if (slots)
        v->SetSlotCount(int(start));
    else
        measures = int(start);
    if (barUp)
        frame->ToggleViewBar();
    for (int i = 0; i < presses; ++i) {
        if (control.startsWith("zoom"))
            Click(bar->findChild<SpinArrows*>(control.left(5) + "Spin"), control.mid(6));
        for (auto* b : bar->findChildren<QPushButton*>())
            if (b->text() == control)
                b->click();
    }
    const QString value = split   ? QString::asprintf("%f", v->split)
                          : slots ? QString::number(v->slotCount)
                                  : (measures == -1 ? QString("all") : QString::number(measures));
    QCOMPARE(value, shown);
    if (barUp) {
        QCOMPARE(field->text(), shown);
        QCOMPARE(int(frame->barState), int(CMainFrame::ViewBarUp));
        QVERIFY(bar->isVisible());
    }
}

// The check follows the model, also when a click comes while the bar is not
// the one up.
void BarCommandsTest::fractionsCheck() {
    QCheckBox* check = frame->viewBar->fractionsCheck;
    frame->ToggleViewBar();
    QVERIFY(check->isChecked());
    check->click();
    QCOMPARE(int(view->View()->notationalFractions), 0);
    QVERIFY(!check->isChecked());
    frame->ShowTimersBar();
    check->click();
    QCOMPARE(int(view->View()->notationalFractions), 0);
    QVERIFY(!check->isChecked());
}

// Asked for as the view's double click on an empty name cell asks: two good
// files become two lines in the dialog's order, the broken one is named in
// one message, and a name without an extension still loses four characters.
void BarCommandsTest::loadWaves() {
    std::vector<uint8_t> frames(400, 0);
    const std::vector<uint8_t> good = WaveBuilder()
                                          .Chunk("fmt ", WaveBuilder::Format(1, 1, 44100, 16))
                                          .Chunk("data", frames)
                                          .Bytes();
    const std::vector<uint8_t> broken =
        WaveBuilder().Chunk("fmt ", WaveBuilder::Format(1, 1, 44100, 16)).Bytes();
    const QStringList files{QString::fromStdString(WaveBuilder::Save(good, "kick.wav")),
                            QString::fromStdString(WaveBuilder::Save(broken, "broken.wav")),
                            QString::fromStdString(WaveBuilder::Save(good, "snareloop"))};
    int dialogs = 0;
    QStringList messages;
    frame->wavePrompts.pickFiles = [&](QWidget*, const QString&) {
        ++dialogs;
        return files;
    };
    frame->wavePrompts.warn = [&](QWidget*, const QString& text) { messages << text; };
    view->View()->AskFrame(FrameAsk::LoadWaves);
    QTRY_COMPARE(dialogs, 1);
    PatternBank* bank = view->View()->Current()->GetBank();
    QCOMPARE(bank->GetLineCount(), 2);
    QCOMPARE(bank->GetLine(0)->name, std::string("kick"));
    QCOMPARE(bank->GetLine(1)->name, std::string("snare"));
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages[0].contains(files[1] + ": " + WaveRefusalReason(WaveStatus::NoData)));
    QVERIFY(!messages[0].contains("kick"));
}

void BarCommandsTest::saveOnSwitchShown() {
    PatternRow* row = view->View()->Current()->GetBank()->patternRow;
    for (uint8_t flag : {0, 1}) {
        row->saveOnSwitch = flag;
        frame->ShowPatternBar();
        QCOMPARE(frame->patternBar->saveOnSwitchCheck->isChecked(), flag != 0);
    }
}
