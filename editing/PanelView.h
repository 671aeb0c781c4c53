#pragma once

// What the panels ask of the view that owns them: after a panel changed the
// model, every panel is refilled from it. Engine lock held.
class PanelView {
  public:
    virtual ~PanelView() = default;
    virtual void RefreshPanels() = 0;
};

// The text of one control of a panel, held in place so that a refresh in the
// tick (the tab key) does not allocate.
struct PanelText {
    char text[64] = {};
};
