// The Sync menu: its items, the items remembered between runs, the
// command-line switches for one run, what reaches the outputs, and the tempo
// kept one with a shared session's.
#include "ui/SyncMenu.h"
#include "engine/AudioCallback.h"
#include "engine/LinkSync.h"
#include "engine/Mixer.h"
#include "engine/OutputKeeper.h"
#include "gui/OffscreenApp.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSettings>
#include <QTest>

namespace {

class SyncOutput : public AudioOutput {
  public:
    explicit SyncOutput(bool* c, bool* t) : clock(c), transport(t) {}
    bool Start(AudioCallback&) override { return true; }
    void Stop() override {}
    int32_t SampleRate() const override { return 48000; }
    int32_t PeriodFrames() const override { return 256; }
    std::string Describe() const override { return "test"; }
    void SetSync(bool midiClock, bool transportMaster) override {
        *clock = midiClock;
        *transport = transportMaster;
    }
    bool* clock;
    bool* transport;
};

class SyncMenuTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { app = StartOffscreenApp(); }
    void SetUp() override {
        ClearSettings();
        OutputKeeper::Outputs outputs;
        outputs.push_back(std::make_unique<SyncOutput>(&clock, &transport));
        keeper = std::make_unique<OutputKeeper>(callback, std::move(outputs));
    }

    static QApplication* app;
    Mixer mixer;
    AudioCallback callback{nullptr, mixer};
    bool clock = false, transport = false;
    std::unique_ptr<OutputKeeper> keeper;
    LinkSync session;
    double stepMs = 500.0;
    int tempoSets = 0;
    SyncMenu::Tempo tempo{[this] { return stepMs; },
                          [this](double s) {
                              stepMs = s;
                              ++tempoSets;
                          }};
};
QApplication* SyncMenuTest::app = nullptr;

TEST_F(SyncMenuTest, HasItsItems) {
    QMenu bar;
    SyncMenu menu(&bar, SyncSwitches{}, *keeper, session, tempo);
    QStringList items;
    for (QAction* a : bar.actions())
        items << a->text();
    EXPECT_EQ(items, QStringList({"Ableton Link", "Send MIDI Clock", "JACK Transport Master"}));
    EXPECT_TRUE(menu.link->isEnabled() && menu.link->isCheckable());
}

// Link on: the session starts from the instruments' tempo; a tempo command
// here reaches the session, a session's change reaches the instruments, and
// neither comes back as a change of its own.
TEST_F(SyncMenuTest, LinkKeepsOneTempoWithTheSession) {
    QMenu bar;
    stepMs = 60000.0 / 130.0;
    SyncMenu menu(&bar, SyncSwitches{}, *keeper, session, tempo);
    ASSERT_TRUE(keeper->Open());
    menu.link->trigger();
    ASSERT_TRUE(session.Enabled());
    EXPECT_NEAR(session.SessionTempo(), 130.0, 0.001);
    EXPECT_NE(keeper->StatusText().find("Link: 0 peers"), std::string::npos);
    const auto settle = [] {
        for (int i = 0; i < 4; ++i)
            QTest::qWait(SyncMenu::LinkMs);
    };
    stepMs = 60000.0 / 97.3;
    settle();
    EXPECT_NEAR(session.SessionTempo(), 97.3, 0.001);
    EXPECT_EQ(tempoSets, 0);
    session.SetSessionTempo(140.0);
    settle();
    EXPECT_DOUBLE_EQ(60000.0 / stepMs, 140.0) << "rounded to a thousandth";
    EXPECT_EQ(tempoSets, 1);
    settle();
    EXPECT_EQ(tempoSets, 1);
    menu.link->trigger();
    EXPECT_FALSE(session.Enabled());
    EXPECT_EQ(keeper->StatusText().find("Link"), std::string::npos);
}

TEST_F(SyncMenuTest, ItemsAreRememberedAndSwitchesLastOneRun) {
    QMenu bar;
    {
        SyncMenu menu(&bar, SyncSwitches{}, *keeper, session, tempo);
        EXPECT_FALSE(clock || transport);
        menu.clock->trigger();
        EXPECT_TRUE(clock);
        EXPECT_FALSE(transport);
    }
    bar.clear();
    {
        SyncSwitches once;
        once.jackTransport = true;
        once.link = true;
        SyncMenu menu(&bar, once, *keeper, session, tempo);
        EXPECT_TRUE(menu.clock->isChecked());
        EXPECT_TRUE(menu.transport->isChecked());
        EXPECT_TRUE(menu.link->isChecked() && session.Enabled());
        EXPECT_TRUE(clock && transport);
    }
    bar.clear();
    SyncMenu menu(&bar, SyncSwitches{}, *keeper, session, tempo);
    EXPECT_TRUE(menu.clock->isChecked());
    EXPECT_FALSE(menu.transport->isChecked()) << "the switch was for one run";
    EXPECT_FALSE(menu.link->isChecked());
    EXPECT_FALSE(transport);
}

TEST(SyncSwitches, AreTakenOutLeavingQtsOptionsAndFiles) {
    char a0[] = "ox", a1[] = "-platform", a2[] = "offscreen", a3[] = "--midi-clock", a4[] = "a.nst",
         a5[] = "--link", a6[] = "--jack-transport", a7[] = "b.nst", a8[] = "--midi-map",
         a9[] = "pads.map", a10[] = "--follow-midi-clock";
    char* argv[] = {a0, a1, a2, a3, a4, a5, a6, a7, a8, a9, a10, nullptr};
    int argc = 11;
    const SyncSwitches s = TakeSyncSwitches(argc, argv);
    EXPECT_TRUE(s.midiClock && s.jackTransport && s.link && s.followMidiClock);
    EXPECT_EQ(s.midiMapFile, "pads.map");
    ASSERT_EQ(argc, 5);
    EXPECT_EQ(std::vector<std::string>(argv, argv + argc),
              (std::vector<std::string>{"ox", "-platform", "offscreen", "a.nst", "b.nst"}));
    EXPECT_EQ(argv[argc], nullptr);
}

} // namespace
