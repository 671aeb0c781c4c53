#include "ViewWidgetTest.h"

#include "engine/ClockDisplay.h"
#include "engine/EngineLock.h"
#include "ui/ViewWidget.h"

#include <QScrollBar>
#include <QTest>
#include <QTimer>
#include <mutex>
#include <thread>

void ViewWidgetTest::init() {
    clocks = new ClockDisplay;
    theClockDisplay = clocks;
    widget = new ViewWidget;
    widget->CreateView();
    widget->resize(800, 600);
    widget->show();
    QVERIFY(QTest::qWaitForWindowExposed(widget));
}

void ViewWidgetTest::cleanup() {
    delete widget;
    theClockDisplay = nullptr;
    delete clocks;
}

void ViewWidgetTest::rowsEndWhereTheVerticalBarBegins() {
    QScrollBar* bar = nullptr;
    for (QScrollBar* b : widget->findChildren<QScrollBar*>())
        if (b->orientation() == Qt::Vertical)
            bar = b;
    QVERIFY(bar != nullptr);
    QTRY_COMPARE(bar->geometry().right(), widget->width() - 1);
    std::lock_guard<EngineMutex> guard(theEngineLock);
    QCOMPARE(widget->View()->clientRect.right, bar->x());
    QCOMPARE(widget->View()->rowColumnRect.right, bar->x());
}

void ViewWidgetTest::clockFrameDoesNotRecordTheRows() {
    widget->SetViewMode(2); // the instruments' sequencer boxes, with their clocks
    widget->update();
    QTRY_VERIFY(clocks->count > 0);
    QTest::qWait(50);
    const int64_t painted = widget->RecordedPaints();
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        int32_t measure = 2, beat = 3, id = clocks->ids[0];
        clocks->Update(&measure, &beat, &id, 1);
    }
    QTest::qWait(100);
    QCOMPARE(widget->RecordedPaints(), painted);
    // A row's request still repaints the view.
    widget->RequestRepaint();
    QTRY_VERIFY(widget->RecordedPaints() > painted);
}

// With nothing to do for a second the poll slows; a key posted from another
// thread (Wake) or input to any window makes it fast again.
void ViewWidgetTest::pollSlowsWhenQuietAndSpeedsUpOnAWakeOrInput() {
    const QList<QTimer*> timers = widget->findChildren<QTimer*>(Qt::FindDirectChildrenOnly);
    QCOMPARE(timers.size(), 1);
    QTimer* poll = timers[0];
    QCOMPARE(poll->interval(), 5);
    QTRY_VERIFY_WITH_TIMEOUT(poll->interval() > 5, 3000);
    std::thread([this] { widget->Wake(); }).join();
    QTRY_COMPARE(poll->interval(), 5);
    QTRY_VERIFY_WITH_TIMEOUT(poll->interval() > 5, 3000);
    QTest::keyClick(widget, Qt::Key_Shift);
    QCOMPARE(poll->interval(), 5);
}
