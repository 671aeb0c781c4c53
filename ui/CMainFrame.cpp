#include "ui/CMainFrame.h"

#include "ui/AboutDialog.h"
#include "ui/BarText.h"
#include "ui/ToolbarImages.h"

#include <QCheckBox>
#include <QFrame>
#include <QGuiApplication>
#include <QLineEdit>
#include <QMenuBar>
#include <QScreen>
#include <QSlider>
#include <QToolBar>
#include <QVBoxLayout>

namespace {

void SetSlider(QSlider* slider, int minimum, int maximum, int position) {
    slider->setRange(minimum, maximum);
    slider->setValue(position);
}

} // namespace

CMainFrame::CMainFrame(QWidget* mainView, FrameCommands* frameCommands)
    : view(mainView), commands(frameCommands) {
    auto* client = new QWidget(this);
    auto* layout = new QVBoxLayout(client);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(view, 1);
    auto* topBorder = new QFrame(client);
    topBorder->setFrameShape(QFrame::HLine);
    topBorder->setFrameShadow(QFrame::Sunken);
    layout->addWidget(topBorder);
    bottomDock = new QWidget(client);
    layout->addWidget(bottomDock);
    setCentralWidget(client);
    setFocusProxy(view);
    // No menu of toolbars on a right click: the toolbars come and go only
    // through "&Toolbar".
    setContextMenuPolicy(Qt::NoContextMenu);

    const QSize screen = QGuiApplication::primaryScreen()->size();
    move(0, 0);
    resize(screen);

    CreateStockToolBar();
    CreateCommandToolBar();
    CreateMenus();
    CreateBars();
    ConnectTimersBar();
    ConnectViewBar();
    ConnectLineBar();
    ConnectInstrumentBar();
    ConnectPatternBar();
    ConnectNoteBar();
    setAcceptDrops(true);
}

void CMainFrame::CreateMenus() {
    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    connect(file->addAction(QStringLiteral("E&xit")), &QAction::triggered, this, &QWidget::close);

    QMenu* instruments = menuBar()->addMenu(QStringLiteral("Instruments"));
    instruments->addSeparator();
    connect(instruments->addAction(QStringLiteral("&New Instrument")), &QAction::triggered, this,
            [this] { commands->NewInstrument(); });
    connect(instruments->addAction(QStringLiteral("&Load Instrument")), &QAction::triggered, this,
            &CMainFrame::LoadInstrumentCommand);
    connect(instruments->addAction(QStringLiteral("Save Instrument")), &QAction::triggered, this,
            &CMainFrame::SaveInstrumentCommand);
    connect(instruments->addAction(QStringLiteral("Save As")), &QAction::triggered, this,
            &CMainFrame::SaveAsCommand);
    connect(instruments->addAction(QStringLiteral("Close Instrument")), &QAction::triggered, this,
            [this] { commands->CloseInstrument(); });

    QAction* toolbar = stockToolBar->toggleViewAction();
    toolbar->setText(QStringLiteral("&Toolbar"));
    menuBar()->addMenu(QStringLiteral("&View"))->addAction(toolbar);
    syncMenu = menuBar()->addMenu(QStringLiteral("&Sync"));

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    connect(help->addAction(QStringLiteral("&About program...")), &QAction::triggered, this,
            &CMainFrame::ShowAbout);
    int number = 0;
    for (const char* tutorial :
         {"Tutorial 1 (firsttime users)", "Tutorial 2 (volume)", "Tutorial 3 (editing)",
          "Tutorial 4 (sequencing)", "Tutorial 5 (notes)"})
        connect(help->addAction(QString::fromLatin1(tutorial)), &QAction::triggered, this,
                [this, n = ++number] { ShowTutorial(n); });
}

// Cut, Copy, Paste and Print have no command anywhere in the program and stay
// greyed; About opens the about box.
void CMainFrame::CreateStockToolBar() {
    stockToolBar = new QToolBar(QStringLiteral("Standard"), this);
    stockToolBar->setObjectName(QStringLiteral("stockToolBar"));
    stockToolBar->setIconSize(QSize(16, 15));
    stockToolBar->setMovable(false);
    const std::pair<StockImage, const char*> buttons[] = {{StockImage::Cut, "Cut"},
                                                          {StockImage::Copy, "Copy"},
                                                          {StockImage::Paste, "Paste"},
                                                          {StockImage::Print, "Print"},
                                                          {StockImage::About, "About"}};
    for (const auto& [image, text] : buttons) {
        QAction* action =
            stockToolBar->addAction(QIcon(StockButtonImage(image)), QString::fromLatin1(text));
        action->setEnabled(image == StockImage::About);
    }
    connect(stockToolBar->actions().back(), &QAction::triggered, this, &CMainFrame::ShowAbout);
    addToolBar(Qt::TopToolBarArea, stockToolBar);
    stockToolBar->hide();
}

// "LINE DETAIL (R)" never has a command and stays greyed.
void CMainFrame::CreateCommandToolBar() {
    commandToolBar = new QToolBar(QStringLiteral("Commands"), this);
    commandToolBar->setObjectName(QStringLiteral("commandToolBar"));
    commandToolBar->setIconSize(QSize(122, 31));
    commandToolBar->setMovable(false);
    auto add = [this](const char* label) {
        const QString text = QString::fromLatin1(label);
        QAction* action = commandToolBar->addAction(QIcon(CommandButtonImage(text)), text);
        commandToolBar->widgetForAction(action)->setFocusPolicy(Qt::NoFocus);
        return action;
    };
    connect(add("SCREEN"), &QAction::triggered, this, &CMainFrame::ToggleViewBar);
    connect(add("LOAD WAVES"), &QAction::triggered, this, &CMainFrame::LoadWaves);
    connect(add("LINE DETAIL (L)"), &QAction::triggered, this,
            [this] { commands->SetViewMode(1); });
    connect(add("INSTS"), &QAction::triggered, this, [this] { commands->SetViewMode(2); });
    add("LINE DETAIL (R)")->setEnabled(false);
    connect(add("TIMERS"), &QAction::triggered, this, &CMainFrame::ShowTimersBar);
    addToolBar(Qt::TopToolBarArea, commandToolBar);
}

// All bars stand at the left of one strip of the bar height below the view,
// so the view keeps its size whichever bar is up.
void CMainFrame::CreateBars() {
    viewBar = new ViewBar(bottomDock);
    emptyBar = new BottomBar("emptyBar", 329, bottomDock);
    timersBar = new TimersBar(bottomDock);
    lineBar = new LineBar(bottomDock);
    instrumentBar = new InstrumentBar(bottomDock);
    patternBar = new PatternBar(bottomDock);
    noteBar = new NoteBar(bottomDock);
    bottomDock->setFixedHeight(emptyBar->height());
    emptyBar->show();
}

// Hides every bar, the note bar too: the bottom shows one bar, the one that
// barState names. A note bar left up beside another would show values that
// nothing refreshes, and its commands, which need barState 7, would do
// nothing.
void CMainFrame::HideBars() {
    for (QWidget* bar : std::initializer_list<QWidget*>{viewBar, emptyBar, instrumentBar, lineBar,
                                                        patternBar, timersBar, noteBar})
        bar->hide();
}

// The shared start of every Show...: a bar that is already up is left alone,
// so showing it again only refreshes its fields.
void CMainFrame::BringUp(BottomBar* bar, BarState state) {
    if (barState == state)
        return;
    HideBars();
    bar->show();
    barState = state;
}

// Asks for the frame and the view to be painted anew. It does not paint at
// once: a caller may hold the engine lock, which the view's painting takes.
void CMainFrame::RepaintFrame() {
    update();
    view->update();
}

void CMainFrame::ShowEmptyBar() {
    HideBars();
    emptyBar->show();
    barState = EmptyBarUp;
    RepaintFrame();
}

void CMainFrame::ToggleViewBar() {
    if (barState == ViewBarUp) {
        ShowEmptyBar();
        return;
    }
    BringUp(viewBar, ViewBarUp);
    const ViewBarFields f = commands->ViewBarValues();
    SetField(viewBar->linesField, Int(f.slotCount));
    SetField(viewBar->splitField, Float(f.split));
    SetField(viewBar->zoom1Field, Int(f.zoom1Measures));
    SetField(viewBar->zoom2Field, Int(f.zoom2Measures));
    SetField(viewBar->zoom3Field,
             f.zoom3Measures == -1 ? QStringLiteral("all") : Int(f.zoom3Measures));
    viewBar->fractionsCheck->setChecked(f.notationalFractions);
    RepaintFrame();
}

void CMainFrame::ShowTimersBar() {
    BringUp(timersBar, TimersBarUp);
    const double bpm = 60000.0 / commands->TempoStepMs();
    SetField(timersBar->bpmField, Float(bpm));
    SetSlider(timersBar->tempoSlider, 3000, 25000, TempoSliderPosition(bpm));
    RepaintFrame();
}

void CMainFrame::ShowLineBar(Line* line) {
    BringUp(lineBar, LineBarUp);
    const LineBarFields f = commands->LineBarValues(line);
    SetField(lineBar->nameField, QString::fromStdString(f.name));
    SetField(lineBar->filterField, QString::fromStdString(f.filterText));
    SetField(lineBar->controlGroupField, Int(f.controlGroup));
    RepaintFrame();
}

void CMainFrame::ShowMultiLineBar() {
    BringUp(lineBar, LineBarUp);
    SetField(lineBar->nameField, QStringLiteral("Multi"));
    SetField(lineBar->filterField, QString::fromStdString(commands->MultiLineFilterText()));
    SetField(lineBar->controlGroupField, QStringLiteral("multi"));
    RepaintFrame();
}

void CMainFrame::ShowInstrumentBar() {
    BringUp(instrumentBar, InstrumentBarUp);
    const InstrumentBarFields f = commands->InstrumentBarValues();
    SetField(instrumentBar->nameField, QString::fromStdString(f.name));
    SetField(instrumentBar->controlsField, Int(f.controlCount));
    RepaintFrame();
}

void CMainFrame::ShowPatternBar() {
    BringUp(patternBar, PatternBarUp);
    const PatternBarFields f = commands->PatternBarValues();
    SetField(patternBar->patternField, Int(f.patternIndex + 1));
    SetField(patternBar->lengthField, Int(f.measures));
    SetField(patternBar->repeatField, Int(f.repeatCount));
    patternBar->saveOnSwitchCheck->setChecked(f.saveOnSwitch);
    RepaintFrame();
}

void CMainFrame::RefreshPatternBar() {
    if (barState == PatternBarUp)
        ShowPatternBar();
    else
        RepaintFrame();
}

void CMainFrame::ShowNoteBar(Line* line, bool isSelection) {
    BringUp(noteBar, NoteBarUp);
    const NoteBarFields f = commands->NoteBarValues(line, isSelection);
    const PlayPoint& n = f.note;
    const double ms = f.sampleLengthMs;
    SetField(noteBar->titleField,
             isSelection ? QStringLiteral("SELECTION") : QStringLiteral("DEFAULT NOTE"));
    SetField(noteBar->volumeField, Float((n.volume + 10000) * 0.0001));
    SetSlider(noteBar->volumeSlider, -5000, 0, n.volume);
    SetField(noteBar->toeInField, QString::asprintf("%i ms", int32_t(ms * n.toeIn * 0.0001)));
    SetSlider(noteBar->toeInSlider, 0, 10000, n.toeIn);
    const double lengthFraction = n.length == 0 ? 1.0 : n.length * 0.0001;
    SetField(noteBar->lengthField, QString::asprintf("%i ms", int32_t(ms * lengthFraction)));
    SetSlider(noteBar->lengthSlider, 0, 10000, n.length == 0 ? 10000 : n.length);
    SetField(noteBar->sampleLengthField, QString::asprintf("%ims", f.sampleLengthMs));
    SetSlider(noteBar->pitchSlider, 100, 100000, n.pitch);
    SetSlider(noteBar->panSlider, -5000, 5000, n.pan);
    RepaintFrame();
}

void CMainFrame::ShowAbout() {
    AboutDialog about(this);
    about.exec();
}
