#include "ui/SoundStatus.h"

#include "engine/Engine.h"
#include "engine/OutputKeeper.h"

#include <QLabel>
#include <QStatusBar>
#include <QTimer>

SoundStatus::SoundStatus(OutputKeeper& k, QStatusBar* bar)
    : keeper(k), line(new QLabel(bar)), timer(new QTimer(this)) {
    line->setObjectName(QStringLiteral("soundStatus"));
    bar->addWidget(line, 1);
    line->setText(QString::fromStdString(keeper.StatusText()));
    connect(timer, &QTimer::timeout, this, &SoundStatus::Refresh);
    timer->start(1000);
}

// MIDI lost to a controller that floods the port is counted once there is
// any, so that a performer sees why a pad went unheard.
void SoundStatus::Refresh() {
    keeper.Check();
    std::string text = keeper.StatusText();
    const uint64_t lost = theEngine != nullptr ? theEngine->MidiDropped() : 0;
    if (lost > 0)
        text += "    MIDI dropped: " + std::to_string(lost);
    line->setText(QString::fromStdString(text));
}
