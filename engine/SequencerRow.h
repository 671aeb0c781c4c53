#pragma once

// The cue sequencer box of an instrument. The schedule tells it one tick
// before each pattern end, and the engine clears its highlight. The cue modes
// that answer these calls come with the box itself; until then they do nothing.
class SequencerRow {
  public:
    virtual ~SequencerRow() = default;
    // Audio thread, engine lock held.
    virtual void OnPatternEnding() {}
    virtual void ClearHighlight() {}
};
