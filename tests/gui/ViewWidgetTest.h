#pragma once

#include <QObject>

class ClockDisplay;
class ViewWidget;

// The main view's window on the real model: where the rows end beside the
// vertical bar, that the clocks refresh without a repaint of the rows, and
// the pace of its poll.
class ViewWidgetTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void rowsEndWhereTheVerticalBarBegins();
    void clockFrameDoesNotRecordTheRows();
    void pollSlowsWhenQuietAndSpeedsUpOnAWakeOrInput();

  private:
    ClockDisplay* clocks = nullptr;
    ViewWidget* widget = nullptr;
};
