#pragma once

#include "ui/Row.h"

#include <cstdint>

class PatternBank;

// The row of sixteen numbered ovals below an instrument's sequencer box: the
// grey oval is the pattern on display, a black box behind an oval marks the
// pattern that plays. A click on an oval brings that pattern on display. Runs
// with the engine lock held: the mouse on the GUI thread, number keys and
// pattern switches (SetPlaying) also in the tick.
class PatternRow : public Row {
  public:
    static constexpr int32_t OvalCount = 16;

    explicit PatternRow(PatternBank* bank);
    virtual ~PatternRow() = default;

    // "  Pattern  %i  (%i measures)", made anew on each call in one buffer
    // shared by all pattern rows; the caller uses it at once.
    const char* GetName() override;
    // A click in an oval shows that pattern; flags are not looked at.
    void OnLButtonDown(uint32_t flags, int32_t x, int32_t y) override;
    void Paint() override;
    // Called by the bank whenever the playing pattern changes; -1 for none.
    void SetPlaying(int32_t number);
    // The number keys' way to a pattern: 0 to 9 act as a click on that oval,
    // other numbers are ignored.
    void ShowPattern(int32_t number);

    int8_t playing = -1;
    // The instrument's "Save on switch": a switch first stores the edits of
    // the pattern left. Not in the file, so every instrument starts with it on.
    uint8_t saveOnSwitch = 1;
    int8_t shown = 0;
    // The ovals as last painted; the click is tested against them.
    Rect ovals[OvalCount] = {};
    PatternBank* bank;

  private:
    void Switch(int32_t number);
};
