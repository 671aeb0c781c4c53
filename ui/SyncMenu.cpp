#include "ui/SyncMenu.h"

#include "engine/LinkSync.h"
#include "engine/OutputKeeper.h"

#include <QAction>
#include <QMenu>
#include <QSettings>
#include <QTimer>

#include <cmath>

namespace {

const char* const LinkKey = "Sync/AbletonLink";
const char* const ClockKey = "Sync/SendMidiClock";
const char* const TransportKey = "Sync/JackTransportMaster";

QSettings Settings() {
    return QSettings(QStringLiteral("oxbowlantern"), QStringLiteral("oxbowlantern"));
}

QAction* AddCheckable(QMenu* menu, const char* text, bool checked) {
    QAction* action = menu->addAction(QString::fromLatin1(text));
    action->setCheckable(true);
    action->setChecked(checked);
    return action;
}

// Tempos this close are one: the session carries a beat's length in whole
// microseconds, and a tempo command has a grain of a hundredth.
bool SameTempo(double a, double b) {
    return std::fabs(a - b) < 0.001;
}

} // namespace

SyncMenu::SyncMenu(QMenu* menu, const SyncSwitches& once, OutputKeeper& k, LinkSync& l, Tempo t)
    : keeper(k), session(l), tempo(std::move(t)), follow(new QTimer(this)),
      linkTimer(new QTimer(this)) {
    const QSettings saved = Settings();
    link = AddCheckable(menu, "Ableton Link", once.link || saved.value(LinkKey, false).toBool());
    clock = AddCheckable(menu, "Send MIDI Clock",
                         once.midiClock || saved.value(ClockKey, false).toBool());
    transport = AddCheckable(menu, "JACK Transport Master",
                             once.jackTransport || saved.value(TransportKey, false).toBool());
    connect(link, &QAction::triggered, this, [this] {
        Settings().setValue(LinkKey, link->isChecked());
        ApplyLink();
    });
    connect(clock, &QAction::triggered, this, &SyncMenu::Changed);
    connect(transport, &QAction::triggered, this, &SyncMenu::Changed);
    connect(follow, &QTimer::timeout, this, [this] { keeper.FollowSync(); });
    connect(linkTimer, &QTimer::timeout, this, &SyncMenu::FollowLink);
    keeper.SetLink(&session);
    Apply();
    ApplyLink();
}

void SyncMenu::Changed() {
    QSettings saved = Settings();
    saved.setValue(ClockKey, clock->isChecked());
    saved.setValue(TransportKey, transport->isChecked());
    Apply();
}

void SyncMenu::Apply() {
    keeper.SetSync(clock->isChecked(), transport->isChecked());
    if (transport->isChecked())
        follow->start(FollowMs);
    else
        follow->stop();
}

// Joining, the session starts from the instruments' tempo; a session that
// peers already share keeps its own, which FollowLink then brings here.
void SyncMenu::ApplyLink() {
    const bool on = link->isChecked();
    if (on == session.Enabled())
        return;
    if (on) {
        agreedLocal = 60000.0 / tempo.stepMs();
        agreedShared = agreedLocal;
        session.SetSessionTempo(agreedLocal);
        linkTimer->start(LinkMs);
    } else {
        linkTimer->stop();
    }
    session.Enable(on);
}

// A tempo command here wins over a peer's change in the same interval. A
// tempo taken from the session is rounded to a thousandth (the session holds
// a beat's length in whole microseconds: 130 BPM comes back as 130.00013);
// both sides' values are then the agreed ones, so nothing is sent back.
void SyncMenu::FollowLink() {
    const double local = 60000.0 / tempo.stepMs();
    const double shared = session.SessionTempo();
    if (!SameTempo(local, agreedLocal)) {
        session.SetSessionTempo(local);
        agreedLocal = local;
        agreedShared = local;
    } else if (!SameTempo(shared, agreedShared)) {
        tempo.set(60000.0 / (std::round(shared * 1000.0) / 1000.0));
        agreedLocal = 60000.0 / tempo.stepMs();
        agreedShared = shared;
    }
}
