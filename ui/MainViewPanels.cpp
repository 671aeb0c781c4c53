// The view's three panels: the sample panel of one line, the popup panel of
// lines that the tab key shows, and the top panel of whole instruments. The
// panels hold only what they show; the window copies it into its widgets
// when PanelsChanged tells it to. Engine lock held; the tab key runs
// ShowPopupVolumePanel and HidePopupVolumePanel in the tick, where nothing
// here allocates.
#include "editing/Line.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "ui/MainView.h"

void MainView::RefreshPanels() {
    samplePanel.RefreshPanel();
    popupVolumePanel.RefreshPanel();
    topVolumePanel.RefreshPanel();
    host->PanelsChanged();
}

void MainView::RefreshInstrumentAndNames() {
    RefreshInstrument();
    SelectInstrument(currentInstrument);
    Repaint();
}

void MainView::ShowPopupVolumePanel() {
    popupShown = 1;
    popupVolumePanel.ResetList();
    AddHighlightedToPanel();
    host->PanelsChanged();
    Repaint();
}

void MainView::HidePopupVolumePanel() {
    popupShown = 0;
    host->PanelsChanged();
    Repaint();
}

void MainView::AddHighlightedToPanel() {
    const int32_t multi = static_cast<uint8_t>(rowList.highlightedCount - 1);
    for (int32_t i = 0; i < rowList.Count(); ++i) {
        const RowSlot& e = rowList.At(i);
        if (e.highlighted && e.type == Row::LineRow)
            popupVolumePanel.AddLine(static_cast<Line*>(e.row), multi);
    }
}

void MainView::MakePopupLine(Line* line) {
    popupVolumePanel.ResetList();
    popupVolumePanel.AddLine(line, 0);
    host->PanelsChanged();
}

bool MainView::IsLineOfAny(const Line* line) const {
    for (const Instrument* inst : instruments) {
        const PatternBank* bank = inst->GetBank();
        for (int32_t i = 0; i < bank->GetLineCount(); ++i)
            if (bank->GetLine(i) == line)
                return true;
    }
    return false;
}

// Runs after every change of the instruments or their lines, before a line
// or an instrument that went is touched again: the panels compare the
// pointers they hold and never read through one that is gone.
void MainView::RefreshPanelLists() {
    popupVolumePanel.Forget(
        [this](const void* line) { return !IsLineOfAny(static_cast<const Line*>(line)); });
    if (samplePanel.attached && !IsLineOfAny(samplePanel.line))
        samplePanel.Forget(samplePanel.line);
    topVolumePanel.ResetList();
    for (Instrument* inst : instruments)
        topVolumePanel.AddInstrument(inst);
    RefreshPanels();
}
