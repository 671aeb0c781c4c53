#pragma once

#include <QObject>

class ClockDisplay;
class ViewWidget;

// The main view's window on the real model: where the rows end beside the
// vertical bar, and that the clocks refresh without a repaint of the rows.
class ViewWidgetTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void rowsEndWhereTheVerticalBarBegins();
    void clockFrameDoesNotRecordTheRows();

  private:
    ClockDisplay* clocks = nullptr;
    ViewWidget* widget = nullptr;
};
