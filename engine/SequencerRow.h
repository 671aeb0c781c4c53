#pragma once

#include "ui/Row.h"

#include <cstdint>

class Instrument;
class PatternBank;

// The cue sequencer box of an instrument: it decides which of the sixteen
// patterns plays next, at each pattern end by its cue mode, from its queue of
// 16 and its program of 8, and can start other highlighted sequencers at its
// own pattern end as their master. Runs with the engine lock held: in the
// tick for keys and pattern ends, on the GUI thread for the mouse.
class SequencerRow : public Row {
  public:
    static constexpr uint8_t Empty = 255;
    static constexpr int QueueSlots = 16;
    static constexpr int ProgramSlots = 8;
    enum CueMode : uint8_t { Lock = 0, Next = 1, Back = 2, Prog = 3 };

    SequencerRow(Instrument* instrument, PatternBank* bank);
    virtual ~SequencerRow() = default;

    void SwitchTo(int32_t pattern);
    void Stop();
    void Restart();
    void SetCueMode(int32_t mode);
    void OnKey(uint32_t scanCode);
    void EnterDigit(int32_t value);
    void RequestPattern(int32_t number);
    void FocusMainBox();
    void ClearHighlight();
    // Audio thread: one tick before the playing pattern wraps. Virtual so
    // that a schedule can be driven and watched without a whole instrument.
    virtual void OnPatternEnding();
    void Launch();
    void SkipForward();

    void OnLButtonDown(uint32_t flags, int32_t x, int32_t y) override;
    void OnLButtonDblClk(uint32_t flags, int32_t x, int32_t y) override;
    const char* GetName() override;
    void Paint() override;
    Instrument* GetInstrument() const { return instrument; }

    int32_t id = 0;
    uint8_t cueFlag = 0;
    uint8_t stopped = 1;
    uint8_t programIndex = 0;
    Rect clockRect{}, numberRect{};
    uint8_t plusPending = 0;
    Rect cueRect{};
    PatternBank* bank;
    uint8_t cueMode = Lock;
    int8_t focus = -1;
    int32_t focusSlot = -1;
    Rect queueRects[QueueSlots] = {};
    Rect programRects[ProgramSlots] = {};
    Rect programArea{}, queueArea{}, mainBox{};
    uint8_t program[ProgramSlots];
    uint8_t currentNumber = 1;
    uint8_t queue[QueueSlots];
    Instrument* instrument;

  private:
    void PopQueue();
    void AdvanceProgram();
    void TakeEntry(bool restart);
    void StoreInSlot(uint8_t* slots, int32_t slotCount, uint8_t entry);
    void Layout();
    void PaintSlots(const Rect* rects, int32_t n, int8_t slotFocus, const uint8_t* entries,
                    int32_t labelled, const char* labelFormat, int32_t entryInset);
};
