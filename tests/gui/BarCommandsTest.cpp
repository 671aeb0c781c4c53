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

} // namespace

void BarCommandsTest::init() {
    engine = new Engine;
    clocks = new ClockDisplay;
    theEngine = engine;
    theClockDisplay = clocks;
    sounds = new SoundSystem;
    view = new ViewWidget;
    view->CreateView();
    view->SetSoundSystem(sounds);
    frame = new CMainFrame(view, view);
    view->SetFrame(frame);
    frame->show();
}

void BarCommandsTest::cleanup() {
    delete frame; // and the view with every instrument
    delete sounds;
    delete clocks;
    delete engine;
    theEngine = nullptr;
    theClockDisplay = nullptr;
}

void BarCommandsTest::tempoControl_data() {
    QTest::addColumn<int>("start");     // slider position
    QTest::addColumn<QString>("steps"); // mode:d ...
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("slider");
    QTest::addColumn<double>("stepMs");
    QTest::newRow("+1 bpm") << 12000 << "1:1"
                            << "121.000000" << 12100 << 495.8677685950413;
    QTest::newRow("-1 bpm") << 12000 << "1:-1"
                            << "119.000000" << 11900 << 60000.0 / 119.0;
    QTest::newRow("fine loses a hundredth") << 12000 << "2:1"
                                            << "120.100000" << 12009 << 60000.0 / 120.1;
    QTest::newRow("fine twice") << 12000 << "2:1 2:1"
                                << "120.190000" << 12019 << 60000.0 / 120.19;
    QTest::newRow("slider released") << 10000 << "0:0"
                                     << "100.000000" << 10000 << 600.0;
    QTest::newRow("+1 beyond the top repeats") << 25000 << "1:1 1:1"
                                               << "251.000000" << 25000 << 60000.0 / 251.0;
    QTest::newRow("-1 beyond the bottom repeats") << 3000 << "1:-1 1:-1"
                                                  << "29.000000" << 3000 << 60000.0 / 29.0;
    QTest::newRow("fine beyond the top") << 25000 << "2:1 2:1"
                                         << "250.100000" << 25000 << 60000.0 / 250.1;
    QTest::newRow("fine beyond the bottom") << 3000 << "2:-1 2:-1"
                                            << "29.900000" << 3000 << 60000.0 / 29.9;
    QTest::newRow("skips move neither slider nor tempo") << 11000 << "3:1 4:-1 5:1"
                                                         << "120.000000" << 11000 << 500.0;
}

// Every instrument of the list takes the tempo.
void BarCommandsTest::tempoControl() {
    QFETCH(int, start);
    QFETCH(QString, steps);
    QFETCH(QString, field);
    QFETCH(int, slider);
    QFETCH(double, stepMs);
    view->NewInstrument();
    frame->ShowTimersBar();
    frame->timersBar->tempoSlider->setValue(start);
    for (const QString& step : steps.split(' '))
        frame->OnTempoControl(step.section(':', 0, 0).toInt(), step.section(':', 1).toInt());
    QCOMPARE(frame->timersBar->bpmField->text(), field);
    QCOMPARE(frame->timersBar->tempoSlider->value(), slider);
    for (Instrument* inst : view->View()->instruments)
        QCOMPARE(inst->GetSchedule()->stepMs, stepMs);
}

void BarCommandsTest::timersBarControls_data() {
    QTest::addColumn<QString>("control");
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("field");
    QTest::addColumn<int>("skipped");
    QTest::newRow("+1 bpm") << "bpmSpin"
                            << "up"
                            << "121.000000" << 0;
    QTest::newRow("fine down") << "fineTempoSpin"
                               << "down"
                               << "119.900000" << 0;
    QTest::newRow("1/64 up") << "skipTickSpin"
                             << "up"
                             << "120.000000" << 1;
    QTest::newRow("8th down") << "skipEighthSpin"
                              << "down"
                              << "120.000000" << -8;
    QTest::newRow("half up") << "skipHalfSpin"
                             << "up"
                             << "120.000000" << 32;
    QTest::newRow("slider moved, not let go") << "tempoSlider"
                                              << "move"
                                              << "120.000000" << 0;
    QTest::newRow("slider let go") << "tempoSlider"
                                   << "release"
                                   << "100.000000" << 0;
    QTest::newRow("groove clicked") << "tempoSlider"
                                    << "groove"
                                    << "120.100000" << 0;
}

// The arrows, the slider's release and a click on its groove reach the
// commands; a slider being moved does not.
void BarCommandsTest::timersBarControls() {
    QFETCH(QString, control);
    QFETCH(QString, action);
    QFETCH(QString, field);
    QFETCH(int, skipped);
    frame->ShowTimersBar();
    Playhead& playhead = view->View()->Current()->GetSchedule()->playhead;
    playhead.position = 100;
    QSlider* slider = frame->timersBar->tempoSlider;
    if (action == "move" || action == "release") {
        slider->setSliderDown(true);
        slider->setValue(10000);
        if (action == "release")
            slider->setSliderDown(false);
    } else if (action == "groove") {
        QTest::mouseClick(slider, Qt::LeftButton, {},
                          QPoint(slider->width() - 4, slider->height() / 2));
    } else {
        Click(frame->timersBar->findChild<SpinArrows*>(control), action);
    }
    QCOMPARE(frame->timersBar->bpmField->text(), field);
    QCOMPARE(playhead.position, 100 + skipped);
}

void BarCommandsTest::splitButtons_data() {
    QTest::addColumn<double>("start");
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("presses");
    QTest::addColumn<bool>("barUp");
    QTest::addColumn<double>("split");
    QTest::newRow("< to the lowest") << 0.075 << "<" << 1 << true << 0.06;
    QTest::newRow("< at the lowest") << 0.075 << "<" << 2 << true << 0.06;
    QTest::newRow("< from the start") << 0.225 << "<" << 30 << true << 0.06;
    QTest::newRow("> to the highest") << 0.945 << ">" << 2 << true << 0.96;
    QTest::newRow("> from the start") << 0.225 << ">" << 60 << true << 0.96;
    QTest::newRow("bar not up") << 0.225 << "<" << 1 << false << 0.225;
}

void BarCommandsTest::splitButtons() {
    QFETCH(double, start);
    QFETCH(QString, button);
    QFETCH(int, presses);
    QFETCH(bool, barUp);
    QFETCH(double, split);
    view->View()->split = start;
    if (barUp)
        frame->ToggleViewBar();
    QPushButton* b = button == "<" ? frame->viewBar->narrowerButton : frame->viewBar->widerButton;
    for (int i = 0; i < presses; ++i)
        b->click();
    QCOMPARE(view->View()->split, split);
    if (barUp)
        QCOMPARE(frame->viewBar->splitField->text(), QString::asprintf("%f", split));
}

void BarCommandsTest::zoomSpins_data() {
    QTest::addColumn<int>("zoom");
    QTest::addColumn<int>("start"); // -1: all
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("clicks");
    QTest::addColumn<QString>("field");
    QTest::newRow("1 up to 4") << 1 << 2 << "up" << 3 << "4";
    QTest::newRow("1 down to 1") << 1 << 2 << "down" << 3 << "1";
    QTest::newRow("2 up to 32") << 2 << 31 << "up" << 3 << "32";
    QTest::newRow("2 down to 2") << 2 << 3 << "down" << 3 << "2";
    QTest::newRow("3 up to 128") << 3 << 127 << "up" << 3 << "128";
    QTest::newRow("3 down to 4") << 3 << 5 << "down" << 3 << "4";
    QTest::newRow("3 all, up") << 3 << -1 << "up" << 1 << "32";
    QTest::newRow("3 all, down") << 3 << -1 << "down" << 1 << "32";
    QTest::newRow("max zm3") << 3 << 16 << "max" << 1 << "all";
}

// Each click refills the bar, which stays up.
void BarCommandsTest::zoomSpins() {
    QFETCH(int, zoom);
    QFETCH(int, start);
    QFETCH(QString, action);
    QFETCH(int, clicks);
    QFETCH(QString, field);
    MainView* v = view->View();
    (zoom == 1 ? v->zoom1Measures : zoom == 2 ? v->zoom2Measures : v->zoom3Measures) = start;
    frame->ToggleViewBar();
    auto* spin = frame->viewBar->findChild<SpinArrows*>(QString("zoom%1Spin").arg(zoom));
    for (int i = 0; i < clicks; ++i) {
        if (action == "max")
            frame->viewBar->maxZoom3Button->click();
        else
            Click(spin, action);
    }
    const auto* shown = frame->viewBar->findChild<QLineEdit*>(QString("zoom%1Field").arg(zoom));
    QCOMPARE(shown->text(), field);
    QCOMPARE(int(frame->barState), int(CMainFrame::ViewBarUp));
    QVERIFY(frame->viewBar->isVisible());
}

void BarCommandsTest::slotButtons_data() {
    QTest::addColumn<int>("start");
    QTest::addColumn<QString>("button");
    QTest::addColumn<int>("presses");
    QTest::addColumn<QString>("field");
    QTest::newRow("--- at one slot") << 1 << "---" << 2 << "1";
    QTest::newRow("--- from three") << 3 << "---" << 1 << "2";
    QTest::newRow("+ has no limit") << 15 << "+" << 3 << "18";
}

void BarCommandsTest::slotButtons() {
    QFETCH(int, start);
    QFETCH(QString, button);
    QFETCH(int, presses);
    QFETCH(QString, field);
    view->SetSlotCount(start);
    frame->ToggleViewBar();
    QPushButton* b =
        button == "+" ? frame->viewBar->moreSlotsButton : frame->viewBar->fewerSlotsButton;
    for (int i = 0; i < presses; ++i)
        b->click();
    QCOMPARE(frame->viewBar->linesField->text(), field);
    QCOMPARE(QString::number(view->View()->slotCount), field);
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
