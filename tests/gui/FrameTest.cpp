#include "FrameTest.h"
#include "FakeFrameCommands.h"

#include "ui/CMainFrame.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLabel>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QToolBar>

namespace {

QAction* FindAction(QWidget* container, const QString& text) {
    for (QAction* action : container->findChildren<QAction*>())
        if (action->text() == text)
            return action;
    return nullptr;
}

QAction* FindMenuAction(QMenuBar* bar, const QString& text) {
    for (QAction* menu : bar->actions())
        for (QAction* action : menu->menu()->actions())
            if (action->text() == text)
                return action;
    return nullptr;
}

} // namespace

void FrameTest::init() {
    commands = new FakeFrameCommands;
    frame = new CMainFrame(new QWidget, commands);
    frame->wavePrompts.pickFiles = [](QWidget*, const QString&) {
        return QStringList{"/w/kick.wav"};
    };
    frame->show();
}

void FrameTest::cleanup() {
    delete frame;
    delete commands;
}

void FrameTest::windowCoversScreen() {
    QCOMPARE(frame->pos(), QPoint(0, 0));
    QCOMPARE(frame->size(), QGuiApplication::primaryScreen()->size());
    QVERIFY(!frame->findChild<QStatusBar*>());
}

void FrameTest::menuTexts_data() {
    QTest::addColumn<QString>("menu");
    QTest::addColumn<QStringList>("entries");
    QTest::newRow("file") << "&File" << QStringList{"E&xit"};
    QTest::newRow("instruments") << "Instruments" << QStringList{"-",
                                                                 "&New Instrument",
                                                                 "&Load Instrument",
                                                                 "Save Instrument",
                                                                 "Save As",
                                                                 "Close Instrument"};
    QTest::newRow("view") << "&View" << QStringList{"&Toolbar"};
    QTest::newRow("help") << "&Help"
                          << QStringList{"&About program...",       "Tutorial 1 (firsttime users)",
                                         "Tutorial 2 (volume)",     "Tutorial 3 (editing)",
                                         "Tutorial 4 (sequencing)", "Tutorial 5 (notes)"};
}

void FrameTest::menuTexts() {
    QFETCH(QString, menu);
    QFETCH(QStringList, entries);
    QStringList titles;
    QMenu* found = nullptr;
    for (QAction* action : frame->menuBar()->actions()) {
        titles << action->text();
        if (action->text() == menu)
            found = action->menu();
    }
    // Sync (playing with others) is filled by its own class, not the frame.
    QCOMPARE(titles, (QStringList{"&File", "Instruments", "&View", "&Sync", "&Help"}));
    QVERIFY(found);
    QStringList texts;
    for (QAction* action : found->actions())
        texts << (action->isSeparator() ? QStringLiteral("-") : action->text());
    QCOMPARE(texts, entries);
}

void FrameTest::commandButtons() {
    const QStringList labels{"SCREEN", "LOAD WAVES",      "LINE DETAIL (L)",
                             "INSTS",  "LINE DETAIL (R)", "TIMERS"};
    QStringList texts;
    for (QAction* action : frame->commandToolBar->actions()) {
        texts << action->text();
        QCOMPARE(action->isEnabled(), action->text() != "LINE DETAIL (R)");
        QCOMPARE(action->icon().availableSizes().value(0), QSize(122, 31));
    }
    QCOMPARE(texts, labels);
    QCOMPARE(frame->commandToolBar->iconSize(), QSize(122, 31));
    QVERIFY(frame->commandToolBar->isVisible());
}

void FrameTest::commandRouting_data() {
    QTest::addColumn<bool>("isButton");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("barState");
    auto row = [](const char* name, bool isButton, const char* text, QStringList calls, int bar) {
        QTest::newRow(name) << isButton << text << calls << bar;
    };
    row("new instrument", false, "&New Instrument", {"NewInstrument"}, 0);
    row("close instrument", false, "Close Instrument", {"CloseInstrument"}, 0);
    row("line detail", true, "LINE DETAIL (L)", {"SetViewMode 1"}, 0);
    row("insts", true, "INSTS", {"SetViewMode 2"}, 0);
    row("line detail right, greyed", true, "LINE DETAIL (R)", {}, 0);
    row("load waves", true, "LOAD WAVES", {"LoadWaveAsLine /w/kick.wav"}, 0);
    row("screen", true, "SCREEN", {}, 1);
    row("timers", true, "TIMERS", {}, 2);
}

void FrameTest::commandRouting() {
    QFETCH(bool, isButton);
    QFETCH(QString, text);
    QFETCH(QStringList, calls);
    QFETCH(int, barState);
    if (isButton) {
        QAction* action = FindAction(frame->commandToolBar, text);
        QVERIFY(action);
        QTest::mouseClick(frame->commandToolBar->widgetForAction(action), Qt::LeftButton);
    } else {
        QAction* action = FindMenuAction(frame->menuBar(), text);
        QVERIFY(action);
        action->trigger();
    }
    QCOMPARE(commands->calls, calls);
    QCOMPARE(int(frame->barState), barState);
}

void FrameTest::exitClosesFrame() {
    FindMenuAction(frame->menuBar(), "E&xit")->trigger();
    QVERIFY(!frame->isVisible());
}

void FrameTest::stockToolBar() {
    QVERIFY(frame->stockToolBar->isHidden());
    QStringList texts;
    for (QAction* action : frame->stockToolBar->actions()) {
        texts << action->text();
        QCOMPARE(action->isEnabled(), action->text() == "About");
    }
    QCOMPARE(texts, (QStringList{"Cut", "Copy", "Paste", "Print", "About"}));
    QCOMPARE(frame->stockToolBar->iconSize(), QSize(16, 15));

    QAction* toggle = FindMenuAction(frame->menuBar(), "&Toolbar");
    QVERIFY(!toggle->isChecked());
    toggle->trigger();
    QVERIFY(frame->stockToolBar->isVisible());
    QVERIFY(toggle->isChecked());
    toggle->trigger();
    QVERIFY(frame->stockToolBar->isHidden());
    QVERIFY(!toggle->isChecked());
}

void FrameTest::aboutOpens_data() {
    QTest::addColumn<bool>("fromToolBar");
    QTest::newRow("help menu") << false;
    QTest::newRow("stock toolbar") << true;
}

void FrameTest::aboutOpens() {
    QFETCH(bool, fromToolBar);
    QString title;
    QStringList texts;
    QTimer::singleShot(0, [&] {
        QWidget* dialog = QApplication::activeModalWidget();
        if (!dialog)
            return;
        title = dialog->windowTitle();
        for (auto* label : dialog->findChildren<QLabel*>())
            if (!label->text().isEmpty())
                texts << label->text();
        for (auto* button : dialog->findChildren<QAbstractButton*>())
            texts << button->text();
        dialog->close();
    });
    if (fromToolBar)
        FindAction(frame->stockToolBar, "About")->trigger();
    else
        FindMenuAction(frame->menuBar(), "&About program...")->trigger();
    QCOMPARE(title, QStringLiteral("About oxbowlantern"));
    QCOMPARE(texts, (QStringList{"oxbowlantern   Version 1.0 ",
                                 "\"Take all you want,  but eat all you take\"", "OK"}));
}
