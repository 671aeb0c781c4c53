#include "InstrumentCommandsTest.h"

#include "editing/Line.h"
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/SoundSystem.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PatternRow.h"
#include "sound/WaveBuilder.h"
#include "ui/CMainFrame.h"
#include "ui/HelpDialogs.h"
#include "ui/PanelWindows.h"
#include "ui/ViewWidget.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolButton>
#include <QUrl>
#include <fstream>

namespace {

void Click(SpinArrows* spin, bool up) {
    (up ? spin->upArrow : spin->downArrow)->click();
}

QAction* MenuEntry(CMainFrame* frame, const QString& text) {
    for (QAction* menu : frame->menuBar()->actions())
        for (QAction* entry : menu->menu()->actions())
            if (entry->text() == text)
                return entry;
    return nullptr;
}

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A short silent wave file of that name in the builder's folder.
std::string SilentWave(const char* name) {
    const std::vector<uint8_t> frames(400, 0);
    return WaveBuilder::Save(WaveBuilder()
                                 .Chunk("fmt ", WaveBuilder::Format(1, 1, 44100, 16))
                                 .Chunk("data", frames)
                                 .Bytes(),
                             name);
}

} // namespace

void InstrumentCommandsTest::init() {
    program = std::make_unique<ProgramFixture>();
    view = program->view;
    frame = program->frame;
    view->CreatePanels();
    fileDialogs = 0;
    messages.clear();
    frame->instrumentPrompts.openFile = [this](QWidget*) { return ++fileDialogs, nextPath; };
    frame->instrumentPrompts.saveFile = [this](QWidget*) { return ++fileDialogs, nextPath; };
    frame->instrumentPrompts.askName = [this](QWidget*, const QString&) { return nextName; };
    frame->wavePrompts.warn = [this](QWidget*, const QString& text) { messages << text; };
    frame->wavePrompts.pickFiles = [](QWidget*, const QString&) {
        return QStringList{QString::fromStdString(SilentWave("a.wav")),
                           QString::fromStdString(SilentWave("b.wav")),
                           QString::fromStdString(SilentWave("c.wav"))};
    };
}

void InstrumentCommandsTest::cleanup() {
    program.reset();
}

QString InstrumentCommandsTest::Path(const char* name) const {
    return folder.filePath(QString::fromLatin1(name));
}

int InstrumentCommandsTest::InstrumentCount() const {
    return static_cast<int>(view->View()->instruments.size());
}

// The first save asks for a path and appends the extension; the next does
// not ask.
void InstrumentCommandsTest::saveAsThenSave() {
    nextPath = Path("beat");
    frame->instrumentBar->saveButton->click();
    QCOMPARE(fileDialogs, 1);
    const QByteArray first = ReadAll(Path("beat.nst"));
    QVERIFY(!first.isEmpty());
    view->View()->Current()->SetName("Renamed");
    MenuEntry(frame, "Save Instrument")->trigger();
    QCOMPARE(fileDialogs, 1);
    QVERIFY(ReadAll(Path("beat.nst")) != first);
    nextPath.clear(); // a cancelled dialog changes nothing
    frame->instrumentBar->saveAsButton->click();
    QCOMPARE(view->View()->Current()->filePath, Path("beat.nst").toStdString());
}

void InstrumentCommandsTest::loadAddsTheSavedInstrument() {
    nextPath = Path("one.nst");
    view->View()->Current()->SetName("Saved");
    frame->SaveAsCommand();
    MenuEntry(frame, "&Load Instrument")->trigger();
    QCOMPARE(InstrumentCount(), 2);
    Instrument* loaded = view->View()->Current();
    QCOMPARE(loaded->GetName(), std::string("Saved"));
    QCOMPARE(loaded->hasFile, uint8_t(1));
    QCOMPARE(loaded->level, 0.0);
    QTRY_COMPARE(view->TopPanelWindow()->columns[1].name->text(), QString("Saved"));
    QVERIFY(messages.isEmpty());
}

// The file layer's reasons are tested with the files; here a refusal must
// reach the message box with the path and add no instrument.
void InstrumentCommandsTest::refusedFilesAddNothing_data() {
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("reason");
    QTest::newRow("empty") << QByteArray() << "ends";
    QTest::newRow("not there") << QByteArray("-") << "cannot be opened";
}

void InstrumentCommandsTest::refusedFilesAddNothing() {
    QFETCH(QByteArray, bytes);
    QFETCH(QString, reason);
    nextPath = folder.filePath(QTest::currentDataTag() + QString(".nst"));
    if (bytes != "-") {
        QFile file(nextPath);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    frame->LoadInstrumentCommand();
    QCOMPARE(InstrumentCount(), 1);
    QCOMPARE(messages.size(), 1);
    QVERIFY2(messages[0].contains(reason), qPrintable(messages[0]));
    QVERIFY(messages[0].contains(nextPath));
}

// A line whose wave is gone: the instrument loads with the line empty, and
// one message names the wave and where it was looked for.
void InstrumentCommandsTest::missingWavesInOneMessage() {
    const std::string wave = Path("gone-kick.wav").toStdString();
    std::ofstream(wave) << "not a wave";
    frame->wavePrompts.pickFiles = [&](QWidget*, const QString&) {
        return QStringList{QString::fromStdString(SilentWave("kick.wav")),
                           QString::fromStdString(SilentWave("snare.wav"))};
    };
    frame->LoadWaves();
    Instrument* inst = view->View()->Current();
    inst->GetBank()->GetLine(0)->samples[0].path = wave;
    inst->GetBank()->GetLine(1)->samples[0].path = Path("lost-snare.wav").toStdString();
    nextPath = Path("two.nst");
    frame->SaveAsCommand();
    frame->LoadInstrumentCommand();
    QCOMPARE(InstrumentCount(), 2);
    QCOMPARE(view->View()->Current()->GetBank()->GetLineCount(), 2);
    QCOMPARE(messages.size(), 1);
    QVERIFY(messages[0].contains(QString::fromStdString(wave)));
    QVERIFY(messages[0].contains("lost-snare.wav: the file cannot be opened"));
    QVERIFY(messages[0].contains(folder.path()));
}

// The instrument has a file; the failed save (here a name too long for the
// file system) names the reason and leaves it. The other causes are tested
// with the files.
void InstrumentCommandsTest::failedSaveKeepsTheOldFile() {
    nextPath = Path("kept.nst");
    frame->SaveAsCommand();
    const QByteArray before = ReadAll(nextPath);
    Instrument* inst = view->View()->Current();
    const std::string target = folder.path().toStdString() + "/" + std::string(300, 'n') + ".nst";
    inst->filePath = target;
    frame->SaveInstrumentCommand();
    QCOMPARE(messages.size(), 1);
    QVERIFY2(messages[0].contains("not saved"), qPrintable(messages[0]));
    QCOMPARE(ReadAll(Path("kept.nst")), before);
    QCOMPARE(inst->filePath, target);
}

void InstrumentCommandsTest::changeName() {
    nextName = QString("Drums");
    frame->instrumentBar->changeNameButton->click();
    QCOMPARE(view->View()->Current()->GetName(), std::string("Drums"));
    QCOMPARE(view->View()->instrumentNames[1], std::string("Drums"));
    QCOMPARE(view->View()->topVolumePanel.rows[0].name.text, "Drums");
    nextName.reset();
    frame->ChangeNameCommand();
    QCOMPARE(view->View()->Current()->GetName(), std::string("Drums"));
    nextName = QString();
    frame->ChangeNameCommand();
    QCOMPARE(view->View()->Current()->GetName(), std::string());
}

void InstrumentCommandsTest::instrumentSpins_data() {
    QTest::addColumn<QString>("spin");
    QTest::addColumn<bool>("up");
    QTest::addColumn<int>("moved"); // ticks the playhead moved
    QTest::addColumn<QString>("controls");
    QTest::newRow("one more group") << "controlsSpin" << true << 0 << "2";
    QTest::newRow("at least one group") << "controlsSpin" << false << 0 << "1";
    QTest::newRow("a step on") << "nudgeStepSpin" << true << 64 << "";
    QTest::newRow("a quarter back") << "nudgeQuarterSpin" << false << -16 << "";
    QTest::newRow("an eighth on") << "nudgeEighthSpin" << true << 8 << "";
    QTest::newRow("a sixteenth back") << "nudgeSixteenthSpin" << false << -4 << "";
    QTest::newRow("a touch on") << "nudgeTouchSpin" << true << 1 << "";
}

void InstrumentCommandsTest::instrumentSpins() {
    QFETCH(QString, spin);
    QFETCH(bool, up);
    QFETCH(int, moved);
    QFETCH(QString, controls);
    Playhead& playhead = view->View()->Current()->GetSchedule()->playhead;
    playhead.position = 100;
    frame->ShowInstrumentBar();
    Click(frame->instrumentBar->findChild<SpinArrows*>(spin), up);
    QCOMPARE(playhead.position, 100 + moved);
    if (!controls.isEmpty())
        QCOMPARE(frame->instrumentBar->controlsField->text(), controls);
}

// Length and repeat act with the pattern bar up only; repeat keeps to 1..16;
// CLEAR leaves the stored pattern for RESTORE.
void InstrumentCommandsTest::patternBar() {
    PatternBank* bank = view->View()->Current()->GetBank();
    PatternBar* bar = frame->patternBar;
    Click(bar->lengthSpin, true);
    QCOMPARE(bank->GetMeasures(), 2);
    frame->ShowPatternBar();
    Click(bar->lengthSpin, true);
    QCOMPARE(bank->GetMeasures(), 3);
    QCOMPARE(bar->lengthField->text(), QString("3"));
    for (int i = 0; i < 20; ++i)
        Click(bar->repeatSpin, true);
    QCOMPARE(bar->repeatField->text(), QString("16"));
    for (int i = 0; i < 20; ++i)
        Click(bar->repeatSpin, false);
    QCOMPARE(int(bank->repeat), 1);
    bank->working.InsertOrReplace(PlayPoint{64, 0, 0, 0, 0, 0, 0, 0});
    bar->saveButton->click();
    bar->clearButton->click();
    QCOMPARE(bank->working.count, 0);
    bar->restoreButton->click();
    QCOMPARE(bank->working.count, 1);
    bar->doubleButton->click();
    QCOMPARE(bank->working.count, 2);
    bar->saveOnSwitchCheck->click();
    QCOMPARE(bank->patternRow->saveOnSwitch, uint8_t(0));
    QVERIFY(!bar->saveOnSwitchCheck->isChecked());
}

// An instrument file dropped anywhere loads; waves dropped on a line's name
// become its samples, on an empty row new lines.
void InstrumentCommandsTest::droppedFiles() {
    nextPath = Path("drop.nst");
    frame->SaveAsCommand();
    auto drop = [this](const QStringList& files, QPoint at) {
        QList<QUrl> urls;
        for (const QString& f : files)
            urls << QUrl::fromLocalFile(f);
        return frame->DropFiles(urls, at);
    };
    QVERIFY(drop({nextPath}, QPoint(10, 10)));
    QCOMPARE(InstrumentCount(), 2);
    view->grab(); // lays out the slots
    const QString kick = QString::fromStdString(SilentWave("kick.wav"));
    const QString snare = QString::fromStdString(SilentWave("snare.wav"));
    MainView* v = view->View();
    const QPoint emptyRow(10, v->slots[5].top + 2);
    QVERIFY(!drop({kick}, QPoint(500, 5))); // the top band takes no waves
    QVERIFY(drop({kick}, emptyRow));
    PatternBank* bank = v->Current()->GetBank();
    QCOMPARE(bank->GetLineCount(), 1);
    drop({snare, kick}, QPoint(10, v->slots[2].top + 2));
    QCOMPARE(bank->GetLineCount(), 1);
    QCOMPARE(int(bank->GetLine(0)->sampleCount), 3);
    QVERIFY(messages.isEmpty());
}

// The windows show the model, and their controls change it.
void InstrumentCommandsTest::panelWindows() {
    MainView* v = view->View();
    VolumePanelWindow* top = view->TopPanelWindow();
    QVERIFY(top->isVisible());
    QCOMPARE(top->columns[0].value->text(), QString("0.900000"));
    QCOMPARE(top->columns[0].slider->value(), 1000);
    Click(top->columns[0].spin, false);
    QCOMPARE(top->columns[0].value->text(), QString("0.890000"));
    top->columns[0].check->click();
    QCOMPARE(v->Current()->on, int8_t(0));
    frame->LoadWaves();
    view->grab(); // lays out the slots for the lines
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        v->OnLButtonDown(Row::LeftButton, 10, v->slots[2].top + 2);
        v->ShowPopupVolumePanel();
    }
    VolumePanelWindow* popup = view->PopupPanelWindow();
    QTRY_VERIFY(popup->isVisible());
    QCOMPARE(popup->columns[0].name->text(), QString("a"));
    QVERIFY(popup->columns[4].name->isVisible());
    QVERIFY(!popup->columns[5].name->isVisible());
    Click(popup->columns[2].spin, true); // pan one step up
    QCOMPARE(popup->columns[2].value->text(), QString("0.005000"));
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        v->HidePopupVolumePanel();
    }
    QTRY_VERIFY(!popup->isVisible());
}

void InstrumentCommandsTest::sampleWindow() {
    frame->LoadWaves();
    view->grab();
    MainView* v = view->View();
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        v->OnRButtonDown(Row::RightButton | Row::Shift, 10, v->slots[2].top + 2);
    }
    SamplePanelWindow* w = view->SamplePanelWin();
    QTRY_VERIFY(w->isVisible());
    QCOMPARE(w->rows[0].name->text(), QString("a"));
    w->loadButton->click(); // of three files, two fill the free slots, the third is not read
    Line* line = v->Current()->GetBank()->GetLine(0);
    QCOMPARE(int(line->sampleCount), 3);
    QCOMPARE(w->rows[3].name->text(), QString("b"));
    w->rows[1].clear->click();
    QCOMPARE(w->rows[1].name->text(), QString("a"));
    QCOMPARE(w->rows[3].name->text(), QString());
    w->okButton->click();
    QVERIFY(!w->isVisible());
    QCOMPARE(v->samplePanel.attached, 0);
}

void InstrumentCommandsTest::helpDialogs() {
    const int paragraphs[] = {7, 8, 14, 15, 4};
    const char* titles[] = {"Oxbowlantern Tutorial", "Volume Tutorial", "Pattern Editing Tutorial",
                            "Sequencing Tutorial", "Tutorial 5:   Other Stuff"};
    for (int n = 1; n <= 5; ++n) {
        QCOMPARE(TutorialDialog::Texts(n).size(), paragraphs[n - 1]);
        TutorialDialog dialog(frame, n);
        QCOMPARE(dialog.windowTitle(), QString(titles[n - 1]));
    }
    QVERIFY(TutorialDialog::Texts(4)[13].startsWith("\thold control key"));
    NameDialog name(frame, "Inst 1");
    QCOMPARE(name.windowTitle(), QString("Change Instrument Name"));
    QCOMPARE(name.field->text(), QString("Inst 1"));
}
