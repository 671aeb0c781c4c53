#include "ui/SyncMenu.h"

#include "engine/OutputKeeper.h"

#include <QAction>
#include <QMenu>
#include <QSettings>
#include <QTimer>

namespace {

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

} // namespace

SyncMenu::SyncMenu(QMenu* menu, const SyncSwitches& once, OutputKeeper& k)
    : keeper(k), follow(new QTimer(this)) {
    const QSettings saved = Settings();
    link = AddCheckable(menu, "Ableton Link", false);
    link->setEnabled(false);
    link->setToolTip(QStringLiteral("Ableton Link is not available in this version"));
    menu->setToolTipsVisible(true);
    clock = AddCheckable(menu, "Send MIDI Clock",
                         once.midiClock || saved.value(ClockKey, false).toBool());
    transport = AddCheckable(menu, "JACK Transport Master",
                             once.jackTransport || saved.value(TransportKey, false).toBool());
    connect(clock, &QAction::triggered, this, &SyncMenu::Changed);
    connect(transport, &QAction::triggered, this, &SyncMenu::Changed);
    connect(follow, &QTimer::timeout, this, [this] { keeper.FollowSync(); });
    Apply();
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
