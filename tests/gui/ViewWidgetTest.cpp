#include "ViewWidgetTest.h"

#include "engine/ClockDisplay.h"
#include "engine/EngineLock.h"
#include "ui/ViewWidget.h"

#include <QScrollBar>
#include <QTest>
#include <mutex>

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
