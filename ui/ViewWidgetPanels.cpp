// The view window's side of the panels and of the instrument commands: the
// panels' windows, and the FrameCommands of the instrument bar, the pattern
// bar, the instrument files and the samples of a line. GUI thread; the engine
// lock is taken around each model step and never while a file is read or a
// widget is drawn.
#include "editing/Line.h"
#include "engine/EngineLock.h"
#include "engine/SoundBuffer.h"
#include "engine/SoundSystem.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PatternRow.h"
#include "ui/CMainFrame.h"
#include "ui/PanelWindows.h"
#include "ui/ViewWidget.h"

#include <mutex>

namespace {
using Guard = std::lock_guard<EngineMutex>;
constexpr int PopupHeight = 75;
} // namespace

void ViewWidget::CreatePanels() {
    auto with = [this](const std::function<void(MainView&)>& f) { WithViewLocked(f); };
    popupWindow = new VolumePanelWindow(this, true, with);
    sampleWindow = new SamplePanelWindow(this, with, [this] {
        if (frame != nullptr)
            frame->LoadSamples();
    });
    topWindow = new VolumePanelWindow(this, false, with);
    {
        Guard guard(theEngineLock);
        view->RefreshPanelLists();
    }
    barsChanged.store(true, std::memory_order_release);
    MirrorScrollBars();
    SyncPanels();
}

void ViewWidget::hideEvent(QHideEvent*) {
    for (QWidget* panel : std::initializer_list<QWidget*>{topWindow, popupWindow, sampleWindow})
        if (panel != nullptr)
            panel->hide();
}

void ViewWidget::WithViewLocked(const std::function<void(MainView&)>& f) {
    {
        Guard guard(theEngineLock);
        if (view == nullptr)
            return;
        f(*view);
    }
    panelsChanged.store(false, std::memory_order_relaxed);
    SyncPanels();
}

// The copies are taken under the lock; the widgets are set after it.
void ViewWidget::SyncPanels() {
    if (topWindow == nullptr)
        return;
    VolumePanel top(nullptr, false), popup(nullptr, true);
    SamplePanel sample(nullptr);
    bool popupShown;
    {
        Guard guard(theEngineLock);
        if (view == nullptr)
            return;
        top = view->topVolumePanel;
        popup = view->popupVolumePanel;
        sample = view->samplePanel;
        popupShown = view->popupShown != 0;
    }
    topWindow->Show(top);
    popupWindow->Show(popup);
    sampleWindow->Show(sample);
    if (isVisible() && !topWindow->isVisible())
        topWindow->show();
    if (popupWindow->isVisible() != popupShown)
        popupWindow->setVisible(popupShown);
    if (sampleWindow->isVisible() != (sample.shown != 0))
        sampleWindow->setVisible(sample.shown != 0);
}

// The top panel covers the panel's rectangle of the top band; the popup
// panel spans the view's width, its top at 0.7 of the view's height.
void ViewWidget::PlacePanels(const Rect& topPanel) {
    if (topWindow == nullptr)
        return;
    const QPoint corner = mapToGlobal(QPoint(topPanel.left, topPanel.top));
    const QRect top(corner, QSize(topPanel.right - topPanel.left, topPanel.bottom - topPanel.top));
    if (top.isValid() && topWindow->geometry() != top)
        topWindow->setGeometry(top);
    const QRect popup(mapToGlobal(QPoint(0, static_cast<int>(height() * 0.7))),
                      QSize(width(), PopupHeight));
    if (popupWindow->geometry() != popup)
        popupWindow->setGeometry(popup);
}

WaveStatus ViewWidget::LoadWaveIntoLine(Line* line, const std::string& path,
                                        const std::string& name, bool& full) {
    SoundBuffer* buffer;
    {
        Guard guard(theEngineLock);
        full = true;
        if (!view->IsLineOfAny(line))
            return WaveStatus::Missing;
        buffer = line->NewSampleBuffer();
    }
    theSoundSystem->LoadWave(path, name, buffer);
    const WaveStatus status = theSoundSystem->lastStatus;
    {
        Guard guard(theEngineLock);
        if (status != WaveStatus::Ok)
            delete buffer;
        full = !view->IsLineOfAny(line) || line->sampleCount >= Line::MaxSamples;
        view->RefreshPanels();
    }
    SyncPanels();
    return status;
}

Line* ViewWidget::SamplePanelLine() {
    Guard guard(theEngineLock);
    return view->samplePanel.attached ? view->samplePanel.line : nullptr;
}

DropPlace ViewWidget::DropPlaceAt(int32_t x, int32_t y, Line*& line) {
    Guard guard(theEngineLock);
    line = view->NameCellLine(x, y);
    if (line != nullptr)
        return DropPlace::LineName;
    return view->IsEmptyNameCell(x, y) ? DropPlace::EmptyRow : DropPlace::Nothing;
}

// The file and its waves are read before the lock is taken: nobody knows
// the instrument until it joins the view's list.
void ViewWidget::LoadInstrumentFile(const std::string& path, std::vector<MissingWave>& missing) {
    std::unique_ptr<Instrument> loaded = LoadInstrument(path, theSoundSystem, &missing);
    Guard guard(theEngineLock);
    Instrument* inst = loaded.release();
    view->AddInstrument(inst);
    inst->Mute();
    inst->Unmute();
}

Instrument* ViewWidget::CurrentInstrument() {
    Guard guard(theEngineLock);
    return view->Current();
}

std::string ViewWidget::InstrumentName() {
    Guard guard(theEngineLock);
    return view->Current()->GetName();
}

void ViewWidget::EndRename(const std::string* name) {
    Guard guard(theEngineLock);
    if (name != nullptr)
        view->Current()->SetName(*name);
    view->RefreshInstrumentAndNames();
}

void ViewWidget::InstrumentSpin(int32_t control, int32_t direction) {
    static constexpr int32_t ticks[] = {0, 64, 16, 8, 4, 1};
    if (control < 0 || control > 5)
        return;
    Guard guard(theEngineLock);
    Instrument* inst = view->Current();
    if (control == 0 && direction > 0)
        inst->AddControlGroup();
    else if (control == 0)
        inst->RemoveControlGroup();
    else
        inst->GetSchedule()->playhead.Skip(direction * ticks[control]);
}

void ViewWidget::PatternCommand(PatternAction action) {
    Guard guard(theEngineLock);
    PatternBank* bank = view->Current()->GetBank();
    switch (action) {
    case PatternAction::Save:
        bank->SaveWorking();
        break;
    case PatternAction::Restore:
        bank->RestoreWorking();
        break;
    case PatternAction::Clear:
        bank->ClearWorking();
        break;
    case PatternAction::Double:
        bank->DoublePattern();
        break;
    case PatternAction::Longer:
        bank->ChangeLength(1);
        break;
    case PatternAction::Shorter:
        bank->ChangeLength(-1);
        break;
    case PatternAction::MoreRepeats:
        bank->repeat = static_cast<int8_t>(std::min(bank->repeat + 1, 16));
        break;
    case PatternAction::FewerRepeats:
        bank->repeat = static_cast<int8_t>(std::max(bank->repeat - 1, 1));
        break;
    }
}

void ViewWidget::SetSaveOnSwitch(bool on) {
    Guard guard(theEngineLock);
    view->Current()->GetBank()->patternRow->saveOnSwitch = on ? 1 : 0;
}
