#include "ui/SoundStatus.h"

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

void SoundStatus::Refresh() {
    keeper.Check();
    line->setText(QString::fromStdString(keeper.StatusText()));
}
