#pragma once

#include "editing/PanelView.h"

#include <cstdint>

class Instrument;
class Line;

// One column of a volume panel: what it changes and, after a refresh, what
// its controls show. A window copies these into its widgets; no widget keeps
// a value of its own.
struct PanelRow {
    Line* line = nullptr;             // popup panel
    Instrument* instrument = nullptr; // top panel
    int32_t code = 0;                 // popup: value code 1 to 5; top: 1 the level, 10 + k group k
    PanelText label;                  // the line's or the instrument's name for code 1
    // Filled by Rebuild.
    PanelText title;
    PanelText checkText;
    int32_t minimum = 0, maximum = 0;
    // Filled by RefreshPanel.
    PanelText name;
    PanelText value;
    int32_t position = 0;
    bool checked = false;
    // The row's left edge in the panel in pixels; -1 until it is first laid
    // out. A row that does not fit keeps its last place.
    int32_t left = -1;
};

// A strip of mixer columns: the top panel of whole instruments and their
// control groups, or the popup panel of single lines. It holds a list of what
// it shows and gives out up to 20 rows to it at each Rebuild. Engine lock
// held; the tab key fills the popup panel in the tick, where nothing here
// allocates.
class VolumePanel {
  public:
    static constexpr int32_t MaxRows = 20;
    static constexpr int32_t MaxInstruments = 30;
    static constexpr int32_t MaxLines = 39;
    static constexpr int32_t RowWidth = 65;
    static constexpr int32_t ButtonWidth = 50;

    VolumePanel(PanelView* view, bool isLinePanel);

    void ResetList();
    // Top panel: adds an instrument not yet listed, while there is room.
    void AddInstrument(Instrument* instrument);
    // Popup panel: a single line (multi 0) shows all five columns.
    void AddLine(Line* line, int32_t multi);
    void Rebuild();
    void RefreshPanel();
    // The "Controls" button of the top panel.
    void ToggleControls();
    // Takes out of the list every entry for which gone(entry) holds, the
    // entry being the Line or Instrument pointer, and rebuilds if any went:
    // lines and instruments are removed before they are destroyed.
    template <class Gone> void Forget(Gone gone);
    // The window's client size; the rows are laid out for it at the next
    // Rebuild and at once here.
    void SetClientSize(int32_t width, int32_t height);

    // The controls of row r, which must be in use: a slider let go at
    // position p, an arrow (up true for the upper one, with the slider now at
    // p), a check box now checked or not.
    void OnRelease(int32_t r, int32_t p);
    void OnSpin(int32_t r, bool up, int32_t p);
    void OnCheck(int32_t r, bool checked);

    Instrument* instruments[MaxInstruments] = {};
    PanelView* view;
    int32_t showControls = 0;
    Line* lines[MaxLines] = {};
    PanelRow rows[MaxRows];
    int32_t listCount = 0;
    uint8_t rowCount = 0;
    uint8_t isLinePanel;
    // Rows the window shows: set by Rebuild only, so that a list emptied by
    // ResetList keeps its columns on the screen.
    int32_t shownRows = 0;
    PanelText caption;
    int32_t width = 0, height = 0;

  private:
    bool AddRow(int32_t& given, Line* line, Instrument* instrument, int32_t code,
                const char* label);
    void LayOut();
    double ValueOf(const PanelRow& row) const;
    void SetTop(const PanelRow& row, double value);
};

template <class Gone> void VolumePanel::Forget(Gone gone) {
    int32_t kept = 0;
    for (int32_t i = 0; i < listCount; ++i) {
        if (gone(isLinePanel ? static_cast<const void*>(lines[i])
                             : static_cast<const void*>(instruments[i])))
            continue;
        if (isLinePanel)
            lines[kept] = lines[i];
        else
            instruments[kept] = instruments[i];
        ++kept;
    }
    if (kept == listCount)
        return;
    listCount = kept;
    Rebuild();
}
