#pragma once

#include <QObject>

// The small pieces under the frame: dialog units, the spin arrows and the
// closing of a window on a stop signal.
class PartsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void dialogUnits_data();
    void dialogUnits();
    void spinDirection_data();
    void spinDirection();
    void signalClosesWindow_data();
    void signalClosesWindow();
};
