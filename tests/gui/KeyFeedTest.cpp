#include "KeyFeedTest.h"

#include "engine/Engine.h"
#include "ui/KeyFeed.h"

#include <QDialog>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTest>

namespace {

// What the tick hands on, as "+code" for a press and "-code" for a release.
struct KeyLog : KeyTarget {
    void OnKey(uint8_t pressed, uint32_t scanCode) override {
        keys << QStringLiteral("%1%2").arg(pressed ? '+' : '-').arg(scanCode);
    }
    QStringList keys;
};

// Sends one key event through the application, its event filters included,
// as the window system's would come: native scan code, auto-repeat flag.
bool SendKey(QWidget* to, bool press, quint32 nativeScanCode, bool autoRepeat,
             const QString& text = {}) {
    QKeyEvent event(press ? QEvent::KeyPress : QEvent::KeyRelease, Qt::Key_unknown, Qt::NoModifier,
                    nativeScanCode, 0, 0, text, autoRepeat);
    QCoreApplication::sendEvent(to, &event);
    return event.isAccepted();
}

} // namespace

void KeyFeedTest::init() {
    engine = new Engine;
    window = new QWidget;
    window->show();
    dialog = new QDialog(window);
    nameEdit = new QLineEdit(dialog);
    dialog->show();
    feed = new KeyFeed(*engine);
    QCOMPARE(feed->Start(), KeyFeed::Source::QtEvents);
}

void KeyFeedTest::cleanup() {
    delete feed;
    delete window;
    delete engine;
}

QString KeyFeedTest::Drain() {
    KeyLog log;
    engine->SetKeyTarget(&log);
    for (int tick = 0; tick < 20; ++tick)
        engine->OnTimer();
    engine->SetKeyTarget(nullptr);
    return log.keys.join(' ');
}

// Steps: P or R a press or release of a native scan code, lower case for an
// auto-repeat; a leading d sends to the dialog's field instead of the main
// window; I is the program losing the focus.
void KeyFeedTest::events_data() {
    QTest::addColumn<QString>("steps");
    QTest::addColumn<QString>("queued");
    QTest::newRow("held key repeats") << "P38 r38 p38 r38 p38 R38"
                                      << "+30 -30";
    QTest::newRow("press and release pair") << "R38 P38 P38 R38 R38 P38 R38"
                                            << "+30 -30 +30 -30";
    QTest::newRow("left and right control") << "P37 P105 R105 R37"
                                            << "+29 +157 -157 -29";
    QTest::newRow("numpad and top row digits") << "P10 P87 R87 R10"
                                               << "+2 +79 -79 -2";
    QTest::newRow("arrows and numpad enter") << "P111 R111 P104 R104"
                                             << "+200 -200 +156 -156";
    QTest::newRow("keys without a position") << "P133 P0 R133 R0 P65 R65"
                                             << "+57 -57";
    QTest::newRow("dialog keys count") << "dP49 P50 dR49 R50"
                                       << "+41 +42 -41 -42";
    QTest::newRow("focus lost releases held keys") << "P50 P37 R37 I R50 P50"
                                                   << "+42 +29 -29 -42 +42";
}

void KeyFeedTest::events() {
    QFETCH(QString, steps);
    QFETCH(QString, queued);
    for (QString step : steps.split(' ')) {
        if (step == QLatin1String("I")) {
            Q_EMIT qApp->applicationStateChanged(Qt::ApplicationInactive);
            continue;
        }
        QWidget* to = window;
        if (step.startsWith('d')) {
            to = nameEdit;
            step.remove(0, 1);
        }
        const QChar kind = step[0];
        SendKey(to, kind.toUpper() == 'P', step.mid(1).toUInt(), kind.isLower());
    }
    QCOMPARE(Drain(), queued);
}

void KeyFeedTest::typingStaysWithTheDialog() {
    QVERIFY(SendKey(nameEdit, true, 53, false, QStringLiteral("x")));
    SendKey(nameEdit, false, 53, false, QStringLiteral("x"));
    QCOMPARE(nameEdit->text(), QStringLiteral("x"));
    QCOMPARE(Drain(), QStringLiteral("+45 -45"));
}
