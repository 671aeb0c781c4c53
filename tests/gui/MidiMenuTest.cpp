// MIDI control from the Sync menu: learning a mapping and keeping it in its
// file, a broken map file, the items that exclude each other, and a followed
// clock's tempo reaching the timers bar.
#include "ui/MidiMenu.h"
#include "ProgramFixture.h"
#include "engine/EngineLock.h"
#include "gui/OffscreenApp.h"
#include "ui/Bars.h"
#include "ui/KeyMap.h"
#include "ui/MidiLearnDialog.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <cmath>
#include <fstream>
#include <mutex>
#include <sstream>

namespace {

std::string ReadText(const std::string& path) {
    std::ifstream in(path);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// Runs one tick with everything queued due in it.
void Tick() {
    std::lock_guard<EngineMutex> guard(theEngineLock);
    theEngine->SetTickFrames(0, INT64_MAX / 2, 48000);
    theEngine->OnTimer();
}

void Key(uint8_t pressed, uint32_t code) {
    std::lock_guard<EngineMutex> guard(theEngineLock);
    theEngine->OnKeyEvent(pressed, code);
}

class MidiMenuTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { app = StartOffscreenApp(); }
    void SetUp() override {
        ClearSettings();
        theEngine->SetKeyTarget(&keyMap);
        link = bar.addAction(QStringLiteral("Ableton Link"));
        clock = bar.addAction(QStringLiteral("Send MIDI Clock"));
        link->setCheckable(true);
        clock->setCheckable(true);
    }
    // With the map file of the settings folder when none is named.
    std::unique_ptr<MidiMenu> Menu(const std::string& mapFile = {}, bool follow = false) {
        SyncSwitches once;
        once.midiMapFile = mapFile;
        once.followMidiClock = follow;
        return std::make_unique<MidiMenu>(&bar, link, clock, *program.frame, keyMap, once);
    }
    std::string MapPath() const { return (dir.path() + QStringLiteral("/map.txt")).toStdString(); }

    static QApplication* app;
    ProgramFixture program;
    KeyMap keyMap{theEngine, program.view->View()};
    QMenu bar;
    QAction* link;
    QAction* clock;
    QTemporaryDir dir;
};
QApplication* MidiMenuTest::app = nullptr;

TEST_F(MidiMenuTest, LearnsKeyThenPadSavesAndRemoves) {
    Key(1, KeyMap::LShift); // held when learning begins, let go while it runs
    {
        MidiLearnDialog dialog(program.frame, keyMap, MapPath());
        dialog.show();
        for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Escape})
            QTest::keyClick(&dialog, key);
        EXPECT_TRUE(dialog.isVisible()) << "Enter and Escape are keys to learn";
        Key(1, KeyMap::Return);
        Key(0, KeyMap::LShift);
        ASSERT_TRUE(theEngine->PostMidi(Engine::MidiFromJack, -1, {0x99, 36, 100}));
        Tick();
        ASSERT_TRUE(QTest::qWaitFor([&] {
            return theEngine->midiMap.KeyFor({MidiBinding::Note, 10, 36}) != 0;
        }));
        EXPECT_EQ(theEngine->midiMap.KeyFor({MidiBinding::Note, 10, 36}), KeyMap::Return);
        EXPECT_EQ(ReadText(MapPath()), "note 10 36 = key 28\n");
        QListWidget* list = dialog.findChild<QListWidget*>();
        ASSERT_EQ(list->count(), 1);
        EXPECT_EQ(list->item(0)->text(), "note 10 36 = key 28");
        EXPECT_EQ(keyMap.shiftDown, 1) << "keys teach while learning and do not reach the map";

        // A pad with no computer key pressed first maps nothing.
        ASSERT_TRUE(theEngine->PostMidi(Engine::MidiFromJack, -1, {0xB0, 1, 127}));
        Tick();
        QTest::qWait(3 * MidiMenu::FollowMs);
        EXPECT_EQ(theEngine->midiMap.KeyFor({MidiBinding::Controller, 1, 1}), 0u);

        list->setCurrentRow(0);
        for (QPushButton* b : dialog.findChildren<QPushButton*>())
            if (b->text() == "Remove")
                b->click();
        EXPECT_EQ(list->count(), 0);
        EXPECT_EQ(ReadText(MapPath()), "");
    }
    EXPECT_EQ(keyMap.shiftDown, 0) << "no key stays held after learning";
}

TEST_F(MidiMenuTest, BrokenLinesAreNamedAndTheRestMaps) {
    std::ofstream(MapPath()) << "note 10 36 = key 28\nnote 99 1 = key 2\ncc 1 64 = key 57\n";
    const auto menu = Menu(MapPath());
    EXPECT_EQ(theEngine->midiMap.KeyFor({MidiBinding::Note, 10, 36}), 28u);
    EXPECT_EQ(theEngine->midiMap.KeyFor({MidiBinding::Controller, 1, 64}), 57u);
    EXPECT_TRUE(program.frame->statusBar()->currentMessage().contains("line 2"));

    menu->clear->trigger();
    EXPECT_EQ(theEngine->midiMap.Entries().size(), 0u);
    EXPECT_EQ(ReadText(MapPath()), "");
}

TEST_F(MidiMenuTest, MissingNamedFileIsSaid) {
    const auto menu = Menu(MapPath() + ".missing");
    EXPECT_FALSE(program.frame->statusBar()->currentMessage().isEmpty());
}

TEST_F(MidiMenuTest, FollowingExcludesSendingClockAndLink) {
    link->setEnabled(true);
    const auto menu = Menu();
    struct Case {
        bool follow, sendClock;
        bool followEnabled, clockEnabled;
    } const cases[] = {
        {false, false, true, true},
        {true, false, true, false},
        {false, true, false, true},
    };
    for (const Case& c : cases) {
        clock->setChecked(c.sendClock);
        if (menu->follow->isChecked() != c.follow)
            menu->follow->trigger();
        EXPECT_EQ(menu->follow->isEnabled(), c.followEnabled);
        EXPECT_EQ(clock->isEnabled(), c.clockEnabled);
        EXPECT_EQ(link->isEnabled(), c.clockEnabled);
        EXPECT_EQ(theEngine->FollowsMidiClock(), c.follow);
    }
}

TEST_F(MidiMenuTest, FollowingAskedWithSendingClockStaysOff) {
    clock->setChecked(true);
    const auto menu = Menu({}, true);
    EXPECT_FALSE(menu->follow->isChecked());
    EXPECT_FALSE(theEngine->FollowsMidiClock());
    EXPECT_TRUE(program.frame->statusBar()->currentMessage().contains("cannot be on"));
}

TEST_F(MidiMenuTest, FollowedClockTempoReachesTheTimersBar) {
    const auto menu = Menu({}, true);
    const double framesPerPulse = 60.0 * 48000 / (97.3 * 24);
    for (int n = 0; n <= 48; ++n) {
        ASSERT_TRUE(theEngine->PostMidi(Engine::MidiFromJack, std::llround(n * framesPerPulse),
                                        {0xF8, 0, 0}));
        if (n % 16 == 15)
            Tick();
    }
    Tick();
    QLineEdit* field = program.frame->timersBar->bpmField;
    EXPECT_TRUE(QTest::qWaitFor([&] { return field->text().startsWith("97.3"); }))
        << field->text().toStdString();
}

} // namespace
