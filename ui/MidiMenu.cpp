#include "ui/MidiMenu.h"

#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/MidiMap.h"
#include "ui/CMainFrame.h"
#include "ui/MidiLearnDialog.h"
#include "ui/MidiMapFile.h"

#include <QAction>
#include <QMenu>
#include <QSettings>
#include <QStatusBar>
#include <QTimer>
#include <cmath>
#include <cstdio>
#include <mutex>

namespace {

const char* const FollowKey = "Sync/FollowMidiClock";

QSettings Settings() {
    return QSettings(QStringLiteral("oxbowlantern"), QStringLiteral("oxbowlantern"));
}

// A followed tempo in hundredths of a BPM, the grain of the tempo commands:
// a steady clock then gives one tempo, not a new one at every look.
double RoundedBpm(double stepMs) {
    return std::round(60000.0 / stepMs * 100.0) / 100.0;
}

} // namespace

MidiMenu::MidiMenu(QMenu* menu, QAction* l, QAction* s, CMainFrame& f, KeyMap& k,
                   const SyncSwitches& once)
    : link(l), sendClock(s), linkAvailable(l->isEnabled()), frame(f), keyMap(k),
      mapPath(once.midiMapFile.empty() ? MidiMapFile::DefaultPath() : once.midiMapFile),
      tempoPoll(new QTimer(this)) {
    menu->addSeparator();
    follow = menu->addAction(QStringLiteral("Follow MIDI Clock"));
    follow->setCheckable(true);
    follow->setChecked(once.followMidiClock || Settings().value(FollowKey, false).toBool());
    learn = menu->addAction(QStringLiteral("MIDI Learn..."));
    clear = menu->addAction(QStringLiteral("Clear MIDI Map"));
    connect(follow, &QAction::triggered, this, [this] {
        Settings().setValue(FollowKey, follow->isChecked());
        FollowChanged();
    });
    connect(learn, &QAction::triggered, this, &MidiMenu::Learn);
    connect(clear, &QAction::triggered, this, &MidiMenu::Clear);
    connect(link, &QAction::toggled, this, &MidiMenu::Exclude);
    connect(sendClock, &QAction::toggled, this, &MidiMenu::Exclude);
    connect(tempoPoll, &QTimer::timeout, this, &MidiMenu::FollowTempo);
    LoadMap(!once.midiMapFile.empty());
    // Asked for together with what it excludes (switches, or settings of an
    // older version): sending and sharing win, as they were chosen first.
    if (follow->isChecked() && (link->isChecked() || sendClock->isChecked())) {
        follow->setChecked(false);
        frame.statusBar()->showMessage(QStringLiteral(
            "Follow MIDI Clock is off: it cannot be on with Ableton Link or Send MIDI Clock"));
    }
    FollowChanged();
}

// Broken lines are named on standard error and in the status bar; the rest
// of the map works.
void MidiMenu::LoadMap(bool named) {
    MidiMap loaded;
    const std::vector<std::string> messages = MidiMapFile::Load(mapPath, loaded, named);
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        theEngine->midiMap = loaded;
    }
    for (const std::string& m : messages)
        std::fprintf(stderr, "oxbowlantern: %s\n", m.c_str());
    if (!messages.empty())
        frame.statusBar()->showMessage(QString::fromStdString(messages.front()));
}

void MidiMenu::Learn() {
    MidiLearnDialog dialog(&frame, keyMap, mapPath);
    dialog.exec();
}

void MidiMenu::Clear() {
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        theEngine->midiMap.Clear();
    }
    const std::string failure = MidiMapFile::Save(mapPath, MidiMap());
    if (!failure.empty())
        frame.statusBar()->showMessage(QStringLiteral("The MIDI map could not be saved: ") +
                                       QString::fromStdString(failure));
}

void MidiMenu::FollowChanged() {
    const bool on = follow->isChecked();
    theEngine->SetFollowMidiClock(on);
    if (on)
        tempoPoll->start(FollowMs);
    else
        tempoPoll->stop();
    Exclude();
}

// Following takes its tempo from outside; sending the clock or sharing a Link
// session would give it from here.
void MidiMenu::Exclude() {
    const bool following = follow->isChecked();
    link->setEnabled(linkAvailable && !following);
    sendClock->setEnabled(!following);
    follow->setEnabled(following || (!link->isChecked() && !sendClock->isChecked()));
}

void MidiMenu::FollowTempo() {
    const double stepMs = theEngine->FollowedStepMs();
    if (stepMs <= 0.0 || frame.commands->TempoStepMs() <= 0.0)
        return;
    const double bpm = RoundedBpm(stepMs);
    if (bpm != RoundedBpm(frame.commands->TempoStepMs()))
        frame.TakeTempo(bpm);
}
