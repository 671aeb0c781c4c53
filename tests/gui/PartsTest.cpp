#include "PartsTest.h"

#include "ui/DialogUnits.h"
#include "ui/SignalExit.h"
#include "ui/SpinArrows.h"

#include <QSignalSpy>
#include <QTest>
#include <QToolButton>
#include <csignal>

void PartsTest::dialogUnits_data() {
    QTest::addColumn<int>("units");
    QTest::addColumn<int>("across");
    QTest::addColumn<int>("down");
    QTest::newRow("0") << 0 << 0 << 0;
    QTest::newRow("1, both round up") << 1 << 2 << 2;
    QTest::newRow("2") << 2 << 3 << 3;
    QTest::newRow("4, half rounds up") << 4 << 6 << 7;
    QTest::newRow("bar height") << 30 << 45 << 49;
    QTest::newRow("widest bar") << 759 << 1139 << 1233;
}

void PartsTest::dialogUnits() {
    QFETCH(int, units);
    QFETCH(int, across);
    QFETCH(int, down);
    QCOMPARE(DluToPixelsX(units), across);
    QCOMPARE(DluToPixelsY(units), down);
    QCOMPARE(DluRect(units, units, units, units), QRect(across, down, across, down));
}

void PartsTest::spinDirection_data() {
    QTest::addColumn<bool>("vertical");
    QTest::addColumn<bool>("upper");
    QTest::addColumn<int>("delta");
    QTest::addColumn<QPoint>("arrowAt");
    QTest::newRow("vertical, upper arrow is up") << true << true << -1 << QPoint(0, 0);
    QTest::newRow("vertical, lower arrow") << true << false << 1 << QPoint(0, 20);
    QTest::newRow("horizontal, right arrow is up") << false << true << -1 << QPoint(20, 0);
    QTest::newRow("horizontal, left arrow") << false << false << 1 << QPoint(0, 0);
}

void PartsTest::spinDirection() {
    QFETCH(bool, vertical);
    QFETCH(bool, upper);
    QFETCH(int, delta);
    QFETCH(QPoint, arrowAt);
    QWidget parent;
    SpinArrows spin(vertical ? Qt::Vertical : Qt::Horizontal, &parent);
    spin.resize(40, 40);
    parent.show();
    QSignalSpy spun(&spin, &SpinArrows::Spun);
    QToolButton* arrow = upper ? spin.upArrow : spin.downArrow;
    QCOMPARE(arrow->pos(), arrowAt);
    QTest::mouseClick(arrow, Qt::LeftButton);
    QCOMPARE(spun.count(), 1);
    QCOMPARE(spun.at(0).at(0).toInt(), delta);
    QCOMPARE(arrow->focusPolicy(), Qt::NoFocus);
}

void PartsTest::signalClosesWindow_data() {
    QTest::addColumn<int>("signal");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void PartsTest::signalClosesWindow() {
    QFETCH(int, signal);
    QWidget window;
    window.show();
    {
        // Blocked as the program's start blocks it for the audio threads.
        sigset_t blocked;
        sigemptyset(&blocked);
        sigaddset(&blocked, signal);
        pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
        SignalExit closer(&window);
        raise(signal);
        QTRY_VERIFY(!window.isVisible());
    }
    // The default action is back once the closer is gone.
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    QVERIFY(action.sa_handler == SIG_DFL);
}
