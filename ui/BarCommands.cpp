// The commands of the bottom bars' controls: the timers bar, the view bar,
// the line bar's delete button and control group spin, and Load Waves. GUI
// thread only; the model is reached through FrameCommands, which takes the
// engine lock around each call.
#include "song/SamplePath.h"
#include "ui/BarText.h"
#include "ui/CMainFrame.h"

#include <QCheckBox>
#include <QFile>
#include <QMouseEvent>
#include <QPushButton>
#include <QSlider>

namespace {

// The direction of a spin click as the commands take it: +1 for the upper
// (or right) arrow, which reports a negative change, -1 for the other.
int32_t Direction(int spinDelta) {
    return spinDelta < 0 ? 1 : -1;
}

} // namespace

void CMainFrame::ConnectTimersBar() {
    QSlider* slider = timersBar->tempoSlider;
    connect(slider, &QSlider::sliderReleased, this, [this] { OnTempoControl(0, 0); });
    slider->installEventFilter(this);
    const std::pair<SpinArrows*, int32_t> spins[] = {{timersBar->bpmSpin, 1},
                                                     {timersBar->fineTempoSpin, 2},
                                                     {timersBar->skipTickSpin, 3},
                                                     {timersBar->skipEighthSpin, 4},
                                                     {timersBar->skipHalfSpin, 5}};
    for (const auto& entry : spins) {
        const int32_t mode = entry.second;
        connect(entry.first, &SpinArrows::Spun, this,
                [this, mode](int delta) { OnTempoControl(mode, Direction(delta)); });
    }
}

// A click on the slider's groove pages the handle without a drag, so it ends
// without sliderReleased; its release sets the tempo all the same. The
// release of a drag is left to sliderReleased.
bool CMainFrame::eventFilter(QObject* watched, QEvent* event) {
    QSlider* slider = timersBar->tempoSlider;
    if (watched == slider && event->type() == QEvent::MouseButtonRelease &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton && !slider->isSliderDown())
        OnTempoControl(0, 0);
    return QMainWindow::eventFilter(watched, event);
}

// The BPM of a tempo command starts from the slider, not from stepMs, so it
// has a grain of a hundredth; the slider keeps within its range, so a spin
// at either end sets the same value again on every click.
void CMainFrame::OnTempoControl(int32_t mode, int32_t d) {
    QSlider* slider = timersBar->tempoSlider;
    if (mode <= 2) {
        double bpm = slider->value() * 0.01;
        if (mode == 1)
            bpm += d;
        else if (mode == 2)
            bpm += d * 0.1;
        commands->SetTempoAll(60000.0 / bpm);
    } else {
        static constexpr int32_t ticks[] = {1, 8, 32};
        commands->SkipAll(d * ticks[mode - 3]);
    }
    ShowTempo(mode == 1 || mode == 2);
}

void CMainFrame::TakeTempo(double bpm) {
    commands->SetTempoAll(60000.0 / bpm);
    ShowTempo(true);
}

void CMainFrame::ShowTempo(bool moveSlider) {
    const double shown = 60000.0 / commands->TempoStepMs();
    SetField(timersBar->bpmField, Float(shown));
    if (moveSlider)
        timersBar->tempoSlider->setValue(TempoSliderPosition(shown));
}

void CMainFrame::ConnectViewBar() {
    connect(viewBar->okButton, &QPushButton::clicked, this, [this] {
        if (barState == ViewBarUp)
            ToggleViewBar();
    });
    connect(viewBar->narrowerButton, &QPushButton::clicked, this, [this] { OnSplitButton(-1); });
    connect(viewBar->widerButton, &QPushButton::clicked, this, [this] { OnSplitButton(1); });
    connect(viewBar->moreSlotsButton, &QPushButton::clicked, this, [this] { OnSlotButton(1); });
    connect(viewBar->fewerSlotsButton, &QPushButton::clicked, this, [this] { OnSlotButton(-1); });
    const SpinArrows* zooms[] = {viewBar->zoom1Spin, viewBar->zoom2Spin, viewBar->zoom3Spin};
    for (int32_t n = 1; n <= 3; ++n)
        connect(zooms[n - 1], &SpinArrows::Spun, this,
                [this, n](int delta) { OnZoomSpin(n, delta); });
    connect(viewBar->maxZoom3Button, &QPushButton::clicked, this, &CMainFrame::OnMaxZoom3);
    connect(viewBar->fractionsCheck, &QCheckBox::clicked, this, &CMainFrame::OnFractionsCheck);
}

// The test comes before the step: "<" stops at 0.06 and ">" at 0.96, and a
// press at the limit does not even repaint.
void CMainFrame::OnSplitButton(int32_t direction) {
    if (barState != ViewBarUp)
        return;
    const double split = commands->ViewBarValues().split;
    if (direction < 0 ? split <= 0.07 : split >= 0.95)
        return;
    const double v = split + direction * 0.015;
    if (v > 0.0 && v < 1.0)
        commands->SetSplit(v);
    SetField(viewBar->splitField, Float(commands->ViewBarValues().split));
    RepaintFrame();
}

// The view keeps at least one slot; "+" has no upper limit.
void CMainFrame::OnSlotButton(int32_t delta) {
    commands->SetSlotCount(commands->ViewBarValues().slotCount + delta);
    SetField(viewBar->linesField, Int(commands->ViewBarValues().slotCount));
    RepaintFrame();
}

// After a zoom change the bar is filled again by showing it anew, which also
// repaints the view with the zoom's window.
void CMainFrame::OnZoomSpin(int32_t which, int spinDelta) {
    if (barState != ViewBarUp)
        return;
    commands->ChangeZoom(which, spinDelta < 0 ? 1 : 0);
    barState = EmptyBarUp;
    ToggleViewBar();
}

void CMainFrame::OnMaxZoom3() {
    if (barState != ViewBarUp)
        return;
    commands->ChangeZoom(3, 3);
    barState = EmptyBarUp;
    ToggleViewBar();
}

// The check box has already turned itself over on the click; it is set from
// the model either way, so that it never shows a value the model lacks.
void CMainFrame::OnFractionsCheck() {
    if (barState != ViewBarUp) {
        viewBar->fractionsCheck->setChecked(commands->ViewBarValues().notationalFractions);
        return;
    }
    viewBar->fractionsCheck->setChecked(commands->FlipNotationalFractions());
    RepaintFrame();
}

void CMainFrame::ConnectLineBar() {
    connect(lineBar->deleteButton, &QPushButton::clicked, this, &CMainFrame::OnDeleteLines);
    connect(lineBar->controlGroupSpin, &SpinArrows::Spun, this, &CMainFrame::OnControlGroupSpin);
    connect(lineBar->filterSpin, &SpinArrows::Spun, this, &CMainFrame::OnFilterSpin);
}

// The filter field becomes the focus widget but keeps its NoFocus policy, so
// neither Tab nor a click brings it back later; the key map reads every key
// before any widget does (KeyFeed), and the read-only field does nothing with
// the keys it gets.
void CMainFrame::OnDeleteLines() {
    commands->DeleteHighlighted();
    lineBar->filterField->setFocus(Qt::OtherFocusReason);
}

void CMainFrame::OnControlGroupSpin(int spinDelta) {
    commands->StepControlGroup(Direction(spinDelta));
    SetField(lineBar->controlGroupField, Int(commands->ControlGroup()));
}

// Playback goes on while the dialog is open: no lock is held here.
void CMainFrame::LoadWaves() {
    LoadWaveFiles(wavePrompts.pickFiles(this, QString::fromStdString(DefaultSoundFolder())),
                  nullptr);
}

void CMainFrame::LoadSamples() {
    Line* line = commands->SamplePanelLine();
    if (line == nullptr)
        return;
    LoadWaveFiles(wavePrompts.pickFiles(this, QString::fromStdString(DefaultSoundFolder())), line);
}

// A line takes files until it has three samples; the test comes after each
// load, so a line that is full already still reads one.
void CMainFrame::LoadWaveFiles(const QStringList& files, Line* line) {
    QStringList refused;
    for (const QString& file : files) {
        const std::string path = QFile::encodeName(file).toStdString();
        bool full = false;
        const WaveStatus status =
            line == nullptr ? commands->LoadWaveAsLine(path, WaveLineName(path))
                            : commands->LoadWaveIntoLine(line, path, WaveLineName(path), full);
        if (status != WaveStatus::Ok)
            refused << QStringLiteral("%1: %2").arg(file, WaveRefusalReason(status));
        if (full)
            break;
    }
    if (!refused.isEmpty())
        wavePrompts.warn(this, QStringLiteral("These wave files were not loaded:\n\n") +
                                   refused.join(QLatin1Char('\n')));
}
