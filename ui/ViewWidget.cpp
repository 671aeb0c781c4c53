#include "ui/ViewWidget.h"

#include "editing/Line.h"
#include "engine/EngineLock.h"
#include "engine/SoundBuffer.h"
#include "engine/SoundSystem.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PatternRow.h"
#include "ui/CMainFrame.h"
#include "ui/CanvasPainter.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <mutex>

namespace {
using Guard = std::lock_guard<EngineMutex>;

// The poll's pace: fast while the view has work, slow once this many polls
// in a row found none.
constexpr int FastPollMs = 5;
constexpr int SlowPollMs = 250;
constexpr int32_t QuietPollsBeforeSlow = 200;

MainView::ScrollEvent EventOf(int action) {
    switch (action) {
    case QAbstractSlider::SliderSingleStepSub:
        return MainView::LineUp;
    case QAbstractSlider::SliderSingleStepAdd:
        return MainView::LineDown;
    case QAbstractSlider::SliderPageStepSub:
        return MainView::PageUp;
    case QAbstractSlider::SliderPageStepAdd:
        return MainView::PageDown;
    default:
        return MainView::ThumbTrack;
    }
}
} // namespace

ViewWidget::ViewWidget(QWidget* parent)
    : QWidget(parent), hBar(new QScrollBar(Qt::Horizontal, this)),
      vBar(new QScrollBar(Qt::Vertical, this)), poll(new QTimer(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    hBar->setFocusPolicy(Qt::NoFocus);
    vBar->setFocusPolicy(Qt::NoFocus);
    connect(hBar, &QScrollBar::actionTriggered, this, [this](int a) { OnHorizontal(a); });
    connect(vBar, &QScrollBar::actionTriggered, this, [this](int a) { OnVertical(a); });
    connect(poll, &QTimer::timeout, this, [this] { Poll(); });
    poll->start(FastPollMs);
    QCoreApplication::instance()->installEventFilter(this);
}

ViewWidget::~ViewWidget() {
    DeleteView();
}

void ViewWidget::DeleteView() {
    poll->stop();
    Guard guard(theEngineLock);
    delete view;
    view = nullptr;
}

void ViewWidget::CreateView() {
    Guard guard(theEngineLock);
    view = new MainView(this);
}

// Does the window work that requests made under the engine lock asked for.
void ViewWidget::Poll() {
    if (view == nullptr)
        return;
    bool busy = false;
    if (repaintWanted.exchange(false) | canvas.TakeRequest()) {
        update();
        busy = true;
    }
    if (barsChanged.exchange(false)) {
        MirrorScrollBars();
        busy = true;
    }
    if (panelsChanged.exchange(false)) {
        SyncPanels();
        busy = true;
    }
    if (theClockDisplay != nullptr && theClockDisplay->TakeFrame(clocks)) {
        UpdateClocks();
        busy = true;
    }
    if (frame != nullptr && DoFrameAsks())
        busy = true;
    if (theSoundSystem != nullptr)
        theSoundSystem->CollectRetired(); // samples of closed instruments and deleted lines
    PacePoll(busy);
}

// Keeps the poll fast while it finds work and slows it after a quiet while;
// an instrument that plays sends clock frames, which keep it fast. A poll
// stopped with the view stays stopped.
void ViewWidget::PacePoll(bool busy) {
    if (!poll->isActive())
        return;
    if (busy) {
        quietPolls = 0;
        if (poll->interval() != FastPollMs)
            poll->start(FastPollMs);
    } else if (quietPolls < QuietPollsBeforeSlow && ++quietPolls == QuietPollsBeforeSlow) {
        poll->start(SlowPollMs);
    }
}

void ViewWidget::Wake() {
    QMetaObject::invokeMethod(
        this, [this] { PacePoll(true); }, Qt::QueuedConnection);
}

// Watches every event of the application, taking none: user input makes the
// poll fast, for the requests that the input's handlers leave.
bool ViewWidget::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
        PacePoll(true);
        break;
    default:
        break;
    }
    return QWidget::eventFilter(watched, event);
}

// A line named in an ask may have been deleted since; such an ask shows the
// bar without a line.
// True when there was one.
bool ViewWidget::DoFrameAsks() {
    FrameAskRecord r;
    bool any = false;
    while (frameAsks.Pop(r)) {
        any = true;
        if (r.line != nullptr) {
            Guard guard(theEngineLock);
            if (!view->HoldsLine(r.line))
                r.line = nullptr;
        }
        switch (r.ask) {
        case FrameAsk::EmptyBar:
            frame->ShowEmptyBar();
            break;
        case FrameAsk::ToggleViewBar:
            frame->ToggleViewBar();
            break;
        case FrameAsk::TimersBar:
            frame->ShowTimersBar();
            break;
        case FrameAsk::LineBar:
            frame->ShowLineBar(r.line);
            break;
        case FrameAsk::MultiLineBar:
            frame->ShowMultiLineBar();
            break;
        case FrameAsk::InstrumentBar:
            frame->ShowInstrumentBar();
            break;
        case FrameAsk::PatternBar:
            frame->ShowPatternBar();
            break;
        case FrameAsk::RefreshPatternBar:
            frame->RefreshPatternBar();
            break;
        case FrameAsk::DefaultNoteBar:
            frame->ShowNoteBar(r.line, false);
            break;
        case FrameAsk::SelectionNoteBar:
            frame->ShowNoteBar(r.line, true);
            break;
        case FrameAsk::LoadWaves:
            frame->LoadWaves();
            break;
        case FrameAsk::LoadSamples:
            frame->LoadSamples();
            break;
        }
    }
    return any;
}

// Qt's bars hold the position between minimum and maximum; the view's hold it
// between minimum and maximum - page + 1, so the mirrored maximum is that.
void ViewWidget::MirrorScrollBars() {
    ScrollBar h, v;
    Rect place{}, topPanel{};
    {
        Guard guard(theEngineLock);
        if (view == nullptr)
            return;
        h = view->hScrollBar;
        v = view->vScrollBar;
        place = view->hScrollRect;
        topPanel = view->topPanelRect;
    }
    mirroring = true;
    hBar->setRange(h.minimum, h.maximum - h.page + 1);
    hBar->setPageStep(h.page);
    hBar->setValue(h.position);
    vBar->setRange(v.minimum, std::max(v.minimum, v.maximum - v.page + 1));
    vBar->setPageStep(std::max(1, v.page));
    vBar->setValue(v.position);
    mirroring = false;
    hBar->setGeometry(place.left, place.top, place.right - place.left, place.bottom - place.top);
    vBar->setGeometry(PaintWidth(), place.bottom, vBar->sizeHint().width(),
                      height() - place.bottom);
    PlacePanels(topPanel);
}

// The width the view is painted in: the window's, less the vertical bar.
int ViewWidget::PaintWidth() const {
    return width() - vBar->sizeHint().width();
}

void ViewWidget::OnHorizontal(int action) {
    if (mirroring)
        return;
    {
        Guard guard(theEngineLock);
        view->HorizontalScroll(EventOf(action), hBar->sliderPosition());
    }
    MirrorScrollBars();
}

void ViewWidget::OnVertical(int action) {
    if (mirroring)
        return;
    {
        Guard guard(theEngineLock);
        view->VerticalScroll(EventOf(action), vBar->sliderPosition());
    }
    MirrorScrollBars();
}

// The paint that follows places the bars for the new size.
void ViewWidget::resizeEvent(QResizeEvent*) {
    barsChanged.store(true, std::memory_order_release);
    update();
}

// Asks for the cells of the newest clock frame to be drawn again, and only
// them.
void ViewWidget::UpdateClocks() {
    clockRegion = QRegion();
    for (int32_t i = 0; i < clocks.count; ++i) {
        const Rect& r = clocks.texts[i].rect;
        clockRegion += QRect(r.left, r.top, r.right - r.left, r.bottom - r.top);
    }
    update(clockRegion);
}

// The rows record their drawing under the engine lock; the pixels are drawn
// from the copy after the lock is let go. A paint of the clock cells alone
// draws the clocks over what is on the screen.
void ViewWidget::paintEvent(QPaintEvent* event) {
    if (!clockRegion.isEmpty() && event->region().subtracted(clockRegion).isEmpty()) {
        QPainter painter(this);
        PaintClocks(painter);
        return;
    }
    {
        Guard guard(theEngineLock);
        if (view == nullptr)
            return;
        canvas.records.swap(replay);
        canvas.records.clear(); // keeps the room of the paint before
        view->Paint(canvas, PaintWidth(), height());
        replay.swap(canvas.records);
    }
    ++recordedPaints;
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    CanvasPainter(painter).Replay(replay);
    PaintClocks(painter);
    if (barsChanged.exchange(false))
        MirrorScrollBars();
}

// The clock texts of the newest refresh, each over its cell, in 10-point
// Times on an opaque background.
void ViewWidget::PaintClocks(QPainter& painter) {
    painter.setFont(CanvasPainter::FontFor("Times", 100));
    for (int32_t i = 0; i < clocks.count; ++i) {
        const ClockText& t = clocks.texts[i];
        const QRect cell(t.rect.left, t.rect.top, t.rect.right - t.rect.left,
                         t.rect.bottom - t.rect.top);
        const QString text = t.measure != 0 ? QString("%1:%2").arg(t.measure).arg(t.beat)
                                            : QStringLiteral("stopped");
        const QRect extent = painter.boundingRect(cell, Qt::AlignLeft | Qt::AlignTop, text);
        painter.save();
        painter.setClipRect(cell);
        painter.fillRect(extent, Qt::white);
        painter.setPen(Qt::black);
        painter.drawText(cell, Qt::AlignLeft | Qt::AlignTop, text);
        painter.restore();
    }
}

void ViewWidget::NewInstrument() {
    Guard guard(theEngineLock);
    view->NewInstrument();
}

void ViewWidget::CloseInstrument() {
    Guard guard(theEngineLock);
    view->CloseInstrument();
}

void ViewWidget::SetViewMode(int32_t mode) {
    Guard guard(theEngineLock);
    view->SetViewMode(mode);
}

ViewBarFields ViewWidget::ViewBarValues() {
    Guard guard(theEngineLock);
    return ViewBarFields{view->split,         view->slotCount,     view->zoom1Measures,
                         view->zoom2Measures, view->zoom3Measures, view->notationalFractions != 0};
}

double ViewWidget::TempoStepMs() {
    Guard guard(theEngineLock);
    return view->TempoStepMs();
}

LineBarFields ViewWidget::LineBarValues(Line* line) {
    Guard guard(theEngineLock);
    if (line == nullptr || !view->HoldsLine(line))
        return LineBarFields{"", "", view->ControlGroup()};
    return LineBarFields{line->name, line->FilterName(), view->ControlGroup()};
}

std::string ViewWidget::MultiLineFilterText() {
    Guard guard(theEngineLock);
    return view->FilterText();
}

void ViewWidget::SetFilter(int32_t value) {
    Guard guard(theEngineLock);
    view->SetFilter(value);
}

int32_t ViewWidget::SetNoteValue(int32_t code, int16_t value) {
    Guard guard(theEngineLock);
    const Line* line = view->SetNoteValue(code, value);
    return line != nullptr ? line->LongestSampleMs() : -1;
}

InstrumentBarFields ViewWidget::InstrumentBarValues() {
    Guard guard(theEngineLock);
    Instrument* inst = view->Current();
    return InstrumentBarFields{inst->displayName, inst->GetControlCount()};
}

PatternBarFields ViewWidget::PatternBarValues() {
    Guard guard(theEngineLock);
    PatternBank* bank = view->Current()->GetBank();
    return PatternBarFields{bank->GetCurrentPattern(), bank->GetMeasures(), bank->repeat,
                            bank->patternRow->saveOnSwitch != 0};
}

NoteBarFields ViewWidget::NoteBarValues(Line* line, bool isSelection) {
    Guard guard(theEngineLock);
    if (line == nullptr)
        return NoteBarFields{PlayPoint{}, 0};
    return NoteBarFields{isSelection ? line->FirstSelectedPoint() : line->defaultNote,
                         line->LongestSampleMs()};
}

void ViewWidget::SetTempoAll(double stepMs) {
    Guard guard(theEngineLock);
    view->SetTempoAll(stepMs);
}

void ViewWidget::SkipAll(int32_t ticks) {
    Guard guard(theEngineLock);
    view->SkipAll(ticks);
}

void ViewWidget::SetSplit(double split) {
    Guard guard(theEngineLock);
    view->split = split;
    view->slotsLaidOut = 0;
}

void ViewWidget::SetSlotCount(int32_t count) {
    Guard guard(theEngineLock);
    view->SetSlotCount(count);
}

void ViewWidget::ChangeZoom(int32_t which, int32_t direction) {
    Guard guard(theEngineLock);
    view->ChangeZoom(which, direction);
}

bool ViewWidget::FlipNotationalFractions() {
    Guard guard(theEngineLock);
    view->notationalFractions = view->notationalFractions != 0 ? 0 : 1;
    view->PushNotationalFractions();
    return view->notationalFractions != 0;
}

void ViewWidget::DeleteHighlighted() {
    Guard guard(theEngineLock);
    view->DeleteHighlighted();
}

void ViewWidget::StepControlGroup(int32_t direction) {
    Guard guard(theEngineLock);
    view->StepControlGroup(direction);
}

int32_t ViewWidget::ControlGroup() {
    Guard guard(theEngineLock);
    return view->ControlGroup();
}

// The sound system takes the engine lock itself once the file is read; the
// line comes into being when the buffer reports back to its instrument. A
// refused buffer was handed to nobody and goes here.
WaveStatus ViewWidget::LoadWaveAsLine(const std::string& path, const std::string& name) {
    SoundBuffer* buffer;
    {
        Guard guard(theEngineLock);
        buffer = view->Current()->NewBufferForNewLine();
    }
    theSoundSystem->LoadWave(path, name, buffer);
    const WaveStatus status = theSoundSystem->lastStatus;
    if (status != WaveStatus::Ok) {
        Guard guard(theEngineLock);
        delete buffer;
    }
    return status;
}

namespace {
// The buttons and modifiers of a mouse event as the rows take them.
uint32_t FlagsOf(const QMouseEvent* event) {
    uint32_t flags = 0;
    if (event->buttons() & Qt::LeftButton)
        flags |= Row::LeftButton;
    if (event->buttons() & Qt::RightButton)
        flags |= Row::RightButton;
    if (event->modifiers() & Qt::ShiftModifier)
        flags |= Row::Shift;
    if (event->modifiers() & Qt::ControlModifier)
        flags |= Row::Control;
    return flags;
}
} // namespace

// The view takes left and right presses, releases and double clicks; the
// flags are the buttons still held and the modifiers.
void ViewWidget::mousePressEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    Guard guard(theEngineLock);
    if (event->button() == Qt::LeftButton)
        view->OnLButtonDown(FlagsOf(event), at.x(), at.y());
    else if (event->button() == Qt::RightButton)
        view->OnRButtonDown(FlagsOf(event), at.x(), at.y());
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    Guard guard(theEngineLock);
    if (event->button() == Qt::LeftButton)
        view->OnLButtonUp(FlagsOf(event), at.x(), at.y());
    else if (event->button() == Qt::RightButton)
        view->OnRButtonUp(FlagsOf(event), at.x(), at.y());
}

void ViewWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const QPoint at = event->position().toPoint();
    Guard guard(theEngineLock);
    if (event->button() == Qt::LeftButton)
        view->OnLButtonDblClk(FlagsOf(event), at.x(), at.y());
    else if (event->button() == Qt::RightButton)
        view->OnRButtonDblClk(FlagsOf(event), at.x(), at.y());
}
