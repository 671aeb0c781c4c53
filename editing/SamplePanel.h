#pragma once

#include "editing/PanelView.h"

#include <cstdint>

class Line;

// The controls of one row of the sample panel after a refresh: the line row
// (volume, mute) or one of the three sample rows.
struct SamplePanelRow {
    PanelText name;
    PanelText value;
    int32_t position = 0; // slider, -4000 to 0
    bool checked = false; // the row is muted
};

// The samples of one line: its name and volume, and for each of its three
// sample slots the sample's name, volume and mute. It holds no value of its
// own; every control reads and writes the attached line. A window shows it
// while shown is 1. Engine lock held, GUI thread.
class SamplePanel {
  public:
    static constexpr int32_t Rows = 4; // the line, then the three samples
    static constexpr int32_t SliderMinimum = -4000;

    explicit SamplePanel(PanelView* view) : view(view) {}

    void AttachLine(Line* newLine);
    void RefreshPanel();
    // "OK": hides the panel and lets the line go.
    void OnOK();
    // Lets the line go, before it is destroyed.
    void Forget(const Line* gone);
    // Row 0 is the line, rows 1 to 3 the samples.
    void OnRelease(int32_t row, int32_t position);
    void OnSpin(int32_t row, bool up);
    void OnCheck(int32_t row, bool checked);
    // slot 1 to 3.
    void OnClear(int32_t slot);

    int32_t attached = 0;
    Line* line = nullptr;
    PanelView* view;
    int32_t shown = 0;
    SamplePanelRow rows[Rows];

  private:
    static int32_t CodeOf(int32_t row);
};
