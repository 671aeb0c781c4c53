// The Sync menu: its items with Link greyed, the items remembered
// between runs, the command-line switches for one run, and what reaches the
// outputs.
#include "ui/SyncMenu.h"
#include "engine/AudioCallback.h"
#include "engine/Mixer.h"
#include "engine/OutputKeeper.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QMenu>
#include <QSettings>
#include <QStandardPaths>

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
    static void SetUpTestSuite() {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        static int argc = 1;
        static char name[] = "test";
        static char* argv[] = {name, nullptr};
        app = new QApplication(argc, argv);
        QStandardPaths::setTestModeEnabled(true);
    }
    void SetUp() override {
        QSettings(QStringLiteral("oxbowlantern"), QStringLiteral("oxbowlantern")).clear();
        OutputKeeper::Outputs outputs;
        outputs.push_back(std::make_unique<SyncOutput>(&clock, &transport));
        keeper = std::make_unique<OutputKeeper>(callback, std::move(outputs));
    }

    static QApplication* app;
    Mixer mixer;
    AudioCallback callback{nullptr, mixer};
    bool clock = false, transport = false;
    std::unique_ptr<OutputKeeper> keeper;
};
QApplication* SyncMenuTest::app = nullptr;

TEST_F(SyncMenuTest, HasItsItemsWithLinkGreyed) {
    QMenu bar;
    SyncMenu menu(&bar, SyncSwitches{}, *keeper);
    QStringList items;
    for (QAction* a : bar.actions())
        items << a->text();
    EXPECT_EQ(items, QStringList({"Ableton Link", "Send MIDI Clock", "JACK Transport Master"}));
    EXPECT_FALSE(menu.link->isEnabled());
    EXPECT_EQ(menu.link->toolTip(), "Ableton Link is not available in this version");
}

TEST_F(SyncMenuTest, ItemsAreRememberedAndSwitchesLastOneRun) {
    QMenu bar;
    {
        SyncMenu menu(&bar, SyncSwitches{}, *keeper);
        EXPECT_FALSE(clock || transport);
        menu.clock->trigger();
        EXPECT_TRUE(clock);
        EXPECT_FALSE(transport);
    }
    bar.clear();
    {
        SyncSwitches once;
        once.jackTransport = true;
        SyncMenu menu(&bar, once, *keeper);
        EXPECT_TRUE(menu.clock->isChecked());
        EXPECT_TRUE(menu.transport->isChecked());
        EXPECT_TRUE(clock && transport);
    }
    bar.clear();
    SyncMenu menu(&bar, SyncSwitches{}, *keeper);
    EXPECT_TRUE(menu.clock->isChecked());
    EXPECT_FALSE(menu.transport->isChecked()) << "the switch was for one run";
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
