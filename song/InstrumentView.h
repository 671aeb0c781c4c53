#pragma once

class Line;
class SequencerRow;

// What an instrument tells the view that shows it. The view acts on its
// current instrument, so an instrument still being read from a file changes
// nothing on the screen. Called with the engine lock held, from either thread;
// an implementation must not draw or call the GUI toolkit directly.
class InstrumentView {
  public:
    virtual ~InstrumentView() = default;
    virtual void RefreshInstrument() = 0;
    virtual void PatternLengthChanged() = 0;
    virtual void LineSelectionChanged(Line* line) = 0;
    virtual void FocusSequencer(SequencerRow* sequencer) = 0;
    virtual void AddFocusSequencer(SequencerRow* sequencer) = 0;
};
