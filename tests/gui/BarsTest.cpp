#include "BarsTest.h"
#include "FakeFrameCommands.h"

#include "ui/CMainFrame.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSlider>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

namespace {

// Counts the times a widget is shown or hidden.
class ShowHideCounter : public QObject {
  public:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Show || event->type() == QEvent::Hide)
            ++count;
        return false;
    }
    int count = 0;
};

// A control of a bar by its object name, or a label or button by its text.
QWidget* FindControl(QWidget* bar, const QString& key) {
    if (auto* named = bar->findChild<QWidget*>(key))
        return named;
    for (auto* label : bar->findChildren<QLabel*>())
        if (label->text() == key)
            return label;
    for (auto* button : bar->findChildren<QAbstractButton*>())
        if (button->text() == key)
            return button;
    return nullptr;
}

QString FieldText(QWidget* bar, const char* name) {
    auto* field = bar->findChild<QLineEdit*>(name);
    return field ? field->text() : QStringLiteral("<no field>");
}

// "name=text" for each field named, joined by spaces.
QString Fields(QWidget* bar, const QStringList& names) {
    QStringList out;
    for (const QString& name : names)
        out << name + "=" + FieldText(bar, qPrintable(name));
    return out.join(' ');
}

// The object names of the bars not hidden, in creation order.
QStringList ShownBars(CMainFrame& frame) {
    QStringList shown;
    for (auto* bar : frame.bottomDock->findChildren<BottomBar*>(Qt::FindDirectChildrenOnly))
        if (!bar->isHidden())
            shown << bar->objectName();
    return shown;
}

} // namespace

void BarsTest::init() {
    commands = new FakeFrameCommands;
    frame = new CMainFrame(new QWidget, commands);
    frame->show();
}

void BarsTest::cleanup() {
    delete frame;
    delete commands;
}

void BarsTest::barSizes_data() {
    QTest::addColumn<QString>("bar");
    QTest::addColumn<int>("panelWidth");
    QTest::newRow("empty") << "emptyBar" << 494;
    QTest::newRow("view") << "viewBar" << 779;
    QTest::newRow("timers") << "timersBar" << 789;
    QTest::newRow("line") << "lineBar" << 795;
    QTest::newRow("instrument") << "instrumentBar" << 1139;
    QTest::newRow("pattern") << "patternBar" << 713;
    QTest::newRow("note") << "noteBar" << 777;
}

// All bars are 30 dialog units (49 pixels) high, so the view keeps its size.
void BarsTest::barSizes() {
    QFETCH(QString, bar);
    QFETCH(int, panelWidth);
    auto* found = frame->bottomDock->findChild<BottomBar*>(bar);
    QVERIFY(found);
    QCOMPARE(found->panel->size(), QSize(panelWidth, 49));
    QCOMPARE(found->height(), frame->bottomDock->height());
}

void BarsTest::controlRects_data() {
    QTest::addColumn<QString>("bar");
    QTest::addColumn<QString>("control");
    QTest::addColumn<QRect>("rect");
    auto row = [](const char* name, const char* bar, const char* control, QRect rect) {
        QTest::newRow(name) << bar << control << rect;
    };
    row("line name", "lineBar", "nameField", {66, 3, 198, 20});
    row("line group spin", "lineBar", "controlGroupSpin", {731, 3, 17, 41});
    row("line delete", "lineBar", "Delete Line(s)", {384, 18, 86, 26});
    row("pattern length spin", "patternBar", "lengthSpin", {596, 3, 29, 33});
    row("pattern length label", "patternBar", "Length of Pattern (measures) :", {389, 7, 153, 18});
    row("inst name", "instrumentBar", "nameField", {95, 3, 263, 20});
    row("inst touch spin", "instrumentBar", "nudgeTouchSpin", {1031, 3, 33, 28});
    row("inst close", "instrumentBar", "CLOSE", {537, 3, 71, 20});
    row("timers bpm", "timersBar", "bpmField", {455, 21, 63, 20});
    row("timers slider", "timersBar", "tempoSlider", {543, 2, 224, 46});
    row("timers 1/64 label", "timersBar", "<--1/64", {383, 15, 39, 16});
    row("note title", "noteBar", "titleField", {11, 3, 86, 16});
    row("note volume", "noteBar", "volumeSlider", {99, 3, 149, 26});
    row("note pan", "noteBar", "panSlider", {585, 24, 74, 18});
    row("note zero", "noteBar", "Zero", {665, 24, 33, 20});
    row("view ok", "viewBar", "OK", {17, 5, 75, 23});
    row("view zoom 3", "viewBar", "zoom3Field", {539, 24, 35, 20});
    row("view max zoom", "viewBar", "max\nzm3", {608, 8, 29, 31});
    row("view fractions", "viewBar", "Notational Fractions", {662, 5, 114, 21});
}

void BarsTest::controlRects() {
    QFETCH(QString, bar);
    QFETCH(QString, control);
    QFETCH(QRect, rect);
    auto* found = frame->bottomDock->findChild<BottomBar*>(bar);
    QVERIFY(found);
    QWidget* widget = FindControl(found->panel, control);
    QVERIFY2(widget, qPrintable(control));
    QCOMPARE(widget->geometry(), rect);
}

void BarsTest::controlsTakeNoFocus() {
    int controls = 0;
    for (QWidget* root : {frame->bottomDock, static_cast<QWidget*>(frame->commandToolBar),
                          static_cast<QWidget*>(frame->stockToolBar)})
        for (QWidget* widget : root->findChildren<QWidget*>()) {
            if (!qobject_cast<QAbstractButton*>(widget) && !qobject_cast<QLineEdit*>(widget) &&
                !qobject_cast<QSlider*>(widget))
                continue;
            ++controls;
            QVERIFY2(widget->focusPolicy() == Qt::NoFocus, qPrintable(widget->objectName()));
        }
    QVERIFY(controls > 100);
}

void BarsTest::barSwitching_data() {
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<int>("barState");
    QTest::addColumn<QStringList>("shown");
    QTest::newRow("start") << QStringList{} << 0 << QStringList{"emptyBar"};
    QTest::newRow("screen twice over timers")
        << QStringList{"timers", "screen", "screen"} << 0 << QStringList{"emptyBar"};
    QTest::newRow("screen over line")
        << QStringList{"line", "screen"} << 1 << QStringList{"viewBar"};
    QTest::newRow("timers") << QStringList{"timers"} << 2 << QStringList{"timersBar"};
    QTest::newRow("line") << QStringList{"line"} << 3 << QStringList{"lineBar"};
    QTest::newRow("pattern") << QStringList{"pattern"} << 5 << QStringList{"patternBar"};
    QTest::newRow("note") << QStringList{"note"} << 7 << QStringList{"noteBar"};
    QTest::newRow("note leaves for instrument")
        << QStringList{"note", "instrument"} << 4 << QStringList{"instrumentBar"};
    QTest::newRow("note leaves for empty")
        << QStringList{"note", "empty"} << 0 << QStringList{"emptyBar"};
    QTest::newRow("hide keeps the state") << QStringList{"line", "hide"} << 3 << QStringList{};
    QTest::newRow("pattern refresh elsewhere")
        << QStringList{"line", "refreshPattern"} << 3 << QStringList{"lineBar"};
    QTest::newRow("pattern refresh")
        << QStringList{"pattern", "refreshPattern"} << 5 << QStringList{"patternBar"};
}

void BarsTest::barSwitching() {
    QFETCH(QStringList, steps);
    QFETCH(int, barState);
    QFETCH(QStringList, shown);
    for (const QString& step : steps)
        Apply(step);
    QCOMPARE(int(frame->barState), barState);
    QCOMPARE(ShownBars(*frame), shown);
}

void BarsTest::Apply(const QString& step) {
    if (step == "screen")
        frame->ToggleViewBar();
    else if (step == "timers")
        frame->ShowTimersBar();
    else if (step == "line")
        frame->ShowLineBar(nullptr);
    else if (step == "multi")
        frame->ShowMultiLineBar();
    else if (step == "instrument")
        frame->ShowInstrumentBar();
    else if (step == "pattern")
        frame->ShowPatternBar();
    else if (step == "refreshPattern")
        frame->RefreshPatternBar();
    else if (step == "note")
        frame->ShowNoteBar(nullptr, false);
    else if (step == "empty")
        frame->ShowEmptyBar();
    else if (step == "hide")
        frame->HideBars();
    else
        QFAIL(qPrintable("unknown step " + step));
}

void BarsTest::showAgainOnlyRefreshes_data() {
    QTest::addColumn<QString>("step");
    QTest::addColumn<QString>("bar");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("text");
    auto row = [](const char* step, const char* bar, const char* field, const char* text) {
        QTest::newRow(step) << step << bar << field << text;
    };
    row("line", "lineBar", "nameField", "Snare");
    row("pattern", "patternBar", "patternField", "7");
    row("note", "noteBar", "sampleLengthField", "250ms");
    row("instrument", "instrumentBar", "nameField", "Bass");
}

// A second Show... of the bar that is up neither hides nor shows it, and
// still takes the model's new values.
void BarsTest::showAgainOnlyRefreshes() {
    QFETCH(QString, step);
    QFETCH(QString, bar);
    QFETCH(QString, field);
    QFETCH(QString, text);
    Apply(step);
    auto* target = frame->bottomDock->findChild<BottomBar*>(bar);
    ShowHideCounter counter;
    target->installEventFilter(&counter);
    commands->line.name = "Snare";
    commands->pattern.patternIndex = 6;
    commands->note.sampleLengthMs = 250;
    commands->instrument.name = "Bass";
    Apply(step);
    QCOMPARE(counter.count, 0);
    QCOMPARE(FieldText(target, qPrintable(field)), text);
}

void BarsTest::lineBarFields() {
    const QStringList names{"nameField", "filterField", "controlGroupField"};
    frame->ShowLineBar(nullptr);
    QCOMPARE(Fields(frame->lineBar, names),
             "nameField=Kick filterField=Quarter Notes controlGroupField=-2");
    frame->ShowMultiLineBar();
    QCOMPARE(Fields(frame->lineBar, names),
             "nameField=Multi filterField=Eighth Notes controlGroupField=multi");
    commands->line.controlGroup = 3;
    frame->ShowLineBar(nullptr);
    QCOMPARE(Fields(frame->lineBar, {"nameField", "controlGroupField"}),
             "nameField=Kick controlGroupField=3");
}

void BarsTest::otherBarFields() {
    frame->ToggleViewBar();
    QCOMPARE(Fields(frame->viewBar,
                    {"splitField", "linesField", "zoom1Field", "zoom2Field", "zoom3Field"}),
             "splitField=0.225000 linesField=5 zoom1Field=4 zoom2Field=32 zoom3Field=all");
    QVERIFY(frame->viewBar->fractionsCheck->isChecked());
    commands->view.zoom3Measures = 128;
    commands->view.notationalFractions = false;
    frame->barState = CMainFrame::EmptyBarUp; // refill as the view bar's own spins do
    frame->ToggleViewBar();
    QCOMPARE(FieldText(frame->viewBar, "zoom3Field"), QStringLiteral("128"));
    QVERIFY(!frame->viewBar->fractionsCheck->isChecked());

    frame->ShowInstrumentBar();
    QCOMPARE(Fields(frame->instrumentBar, {"nameField", "controlsField"}),
             "nameField=Inst 1 controlsField=1");

    commands->pattern = PatternBarFields{15, 16, 3, false};
    frame->ShowPatternBar();
    QCOMPARE(Fields(frame->patternBar, {"patternField", "lengthField", "repeatField"}),
             "patternField=16 lengthField=16 repeatField=3");
    QVERIFY(!frame->patternBar->saveOnSwitchCheck->isChecked());
}

// The tempo's texts and clamps are tested with the timers bar's own controls;
// here ShowTimersBar must take the model's tempo and show the field's start.
void BarsTest::timersBarFields() {
    commands->stepMs = 60000.0 / 29.0;
    frame->ShowTimersBar();
    QCOMPARE(FieldText(frame->timersBar, "bpmField"), QStringLiteral("29.000000"));
    QCOMPARE(frame->timersBar->tempoSlider->value(), 3000);
    QCOMPARE(frame->timersBar->bpmField->cursorPosition(), 0);
}

void BarsTest::noteBarFields_data() {
    QTest::addColumn<bool>("isSelection");
    QTest::addColumn<QList<int>>("note"); // length, toe-in, volume, pitch, pan
    QTest::addColumn<int>("sampleMs");
    QTest::addColumn<QStringList>("fields"); // title, sample, volume, toe-in, length
    QTest::addColumn<QList<int>>("sliders"); // volume, toe-in, length, pitch, pan
    QTest::newRow("default note") << false << QList<int>{0, 0, 0, 0, 0} << 1000
                                  << QStringList{"DEFAULT NOTE", "1000ms", "1.000000", "0 ms",
                                                 "1000 ms"}
                                  << QList<int>{0, 0, 10000, 100, 0};
    QTest::newRow("selection") << true << QList<int>{5000, 2500, -2500, 1500, -3000} << 733
                               << QStringList{"SELECTION", "733ms", "0.750000", "183 ms", "366 ms"}
                               << QList<int>{-2500, 2500, 5000, 1500, -3000};
    QTest::newRow("truncated and clamped")
        << true << QList<int>{1, 9999, -10000, 20000, 10000} << 3
        << QStringList{"SELECTION", "3ms", "0.000000", "2 ms", "0 ms"}
        << QList<int>{-5000, 9999, 1, 20000, 5000};
    QTest::newRow("no sample") << false << QList<int>{2000, 5000, 0, 0, 0} << 0
                               << QStringList{"DEFAULT NOTE", "0ms", "1.000000", "0 ms", "0 ms"}
                               << QList<int>{0, 5000, 2000, 100, 0};
}

void BarsTest::noteBarFields() {
    QFETCH(bool, isSelection);
    QFETCH(QList<int>, note);
    QFETCH(int, sampleMs);
    QFETCH(QStringList, fields);
    QFETCH(QList<int>, sliders);
    commands->note = NoteBarFields{PlayPoint{0, 0, 0, int16_t(note[0]), int16_t(note[1]),
                                             int16_t(note[2]), int16_t(note[3]), int16_t(note[4])},
                                   sampleMs};
    frame->ShowNoteBar(nullptr, isSelection);
    NoteBar* bar = frame->noteBar;
    QCOMPARE(
        (QStringList{bar->titleField->text(), bar->sampleLengthField->text(),
                     bar->volumeField->text(), bar->toeInField->text(), bar->lengthField->text()}),
        fields);
    QCOMPARE((QList<int>{bar->volumeSlider->value(), bar->toeInSlider->value(),
                         bar->lengthSlider->value(), bar->pitchSlider->value(),
                         bar->panSlider->value()}),
             sliders);
    QVERIFY(bar->pitchSlider->isHidden());
}

// The delete button leaves the focus on the filter field; the control group
// spin steps the highlighted lines and shows the first one's group.
void BarsTest::lineBarCommands() {
    commands->line.controlGroup = 3;
    frame->ShowLineBar(nullptr);
    frame->lineBar->deleteButton->click();
    QCOMPARE(frame->focusWidget(), frame->lineBar->filterField);
    frame->lineBar->controlGroupSpin->upArrow->click();
    QCOMPARE(FieldText(frame->lineBar, "controlGroupField"), QStringLiteral("4"));
    frame->lineBar->controlGroupSpin->downArrow->click();
    frame->lineBar->controlGroupSpin->downArrow->click();
    QCOMPARE(FieldText(frame->lineBar, "controlGroupField"), QStringLiteral("2"));
    QCOMPARE(commands->calls, (QStringList{"DeleteHighlighted", "StepControlGroup 1",
                                           "StepControlGroup -1", "StepControlGroup -1"}));
}
