#pragma once

#include "engine/WaveFile.h"
#include "song/InstrumentFile.h"
#include "song/PlayPoint.h"

#include <cstdint>
#include <string>
#include <vector>

class Instrument;
class Line;

// Copies of the model values that the bottom bars show, taken under the
// engine lock by whoever implements FrameCommands.

struct ViewBarFields {
    double split;
    int32_t slotCount;
    int32_t zoom1Measures;
    int32_t zoom2Measures;
    int32_t zoom3Measures; // -1 is the whole pattern
    bool notationalFractions;
};

struct LineBarFields {
    std::string name;
    std::string filterText;
    int32_t controlGroup; // of the first highlighted line, -2 with none highlighted
};

struct InstrumentBarFields {
    std::string name;
    int32_t controlCount;
};

struct PatternBarFields {
    int32_t patternIndex; // from 0
    int32_t measures;
    int32_t repeatCount;
    bool saveOnSwitch;
};

struct NoteBarFields {
    PlayPoint note;         // the first selected note, or the line's default note
    int32_t sampleLengthMs; // of the line's longest sample, 0 with none
};

// The pattern bar's buttons.
enum class PatternAction {
    Save,
    Restore,
    Clear,
    Double,
    Longer,
    Shorter,
    MoreRepeats,
    FewerRepeats
};

// What lies under a point of the view for a drop of files.
enum class DropPlace { Nothing, EmptyRow, LineName };

// The frame's way to the model, implemented by the main view. The menus and
// the command toolbar call the commands; the frame's Show... operations read
// what the bars show through the queries. GUI thread only: an implementation
// takes the engine lock around each call and returns copies.
class FrameCommands {
  public:
    virtual ~FrameCommands() = default;

    // "&New Instrument"
    virtual void NewInstrument() = 0;
    // "Close Instrument"
    virtual void CloseInstrument() = 0;
    // "LINE DETAIL (L)" with 1, "INSTS" with 2
    virtual void SetViewMode(int32_t mode) = 0;

    virtual ViewBarFields ViewBarValues() = 0;
    // stepMs of the first instrument, 0.0 with none
    virtual double TempoStepMs() = 0;
    virtual LineBarFields LineBarValues(Line* line) = 0;
    // The filter text of the highlighted lines
    virtual std::string MultiLineFilterText() = 0;
    virtual InstrumentBarFields InstrumentBarValues() = 0;
    // The pattern on display of the current instrument
    virtual PatternBarFields PatternBarValues() = 0;
    virtual NoteBarFields NoteBarValues(Line* line, bool isSelection) = 0;

    // The timers bar: one tempo for every instrument in the list, and the
    // nudge of every playhead by ticks.
    virtual void SetTempoAll(double stepMs) = 0;
    virtual void SkipAll(int32_t ticks) = 0;

    // The view bar. SetSplit takes a value strictly between 0.0 and 1.0 and
    // has the slots laid out anew at the next paint.
    virtual void SetSplit(double split) = 0;
    virtual void SetSlotCount(int32_t count) = 0;
    virtual void ChangeZoom(int32_t which, int32_t direction) = 0;
    // Flips notationalFractions, gives every line the new value and returns it.
    virtual bool FlipNotationalFractions() = 0;

    // The line bar, on the highlighted lines of the current instrument.
    virtual void DeleteHighlighted() = 0;
    virtual void StepControlGroup(int32_t direction) = 0;
    // The control group of the first highlighted line, -2 with none.
    virtual int32_t ControlGroup() = 0;
    // The filter of the highlighted lines: 1 to 8, or -1 for 64.
    virtual void SetFilter(int32_t value) = 0;

    // The note bar: one field of a note (code as PlayPointField) on the
    // target line's selection, or on its default note while no line has the
    // key focus. Returns the target line's longest sample in ms, -1 with no
    // target line.
    virtual int32_t SetNoteValue(int32_t code, int16_t value) = 0;

    // Reads the wave file at path into a new line of the current instrument
    // named name. Takes the engine lock only around the model's steps, not
    // while the file is read. Returns why the file was refused, or Ok.
    virtual WaveStatus LoadWaveAsLine(const std::string& path, const std::string& name) = 0;
    // The same into a line of the current instrument, as one more sample; full
    // tells whether the line now has all its samples. A line that went
    // meanwhile takes nothing: the result is Missing and full is set.
    virtual WaveStatus LoadWaveIntoLine(Line* line, const std::string& path,
                                        const std::string& name, bool& full) = 0;
    // The line of the sample panel, null with none attached.
    virtual Line* SamplePanelLine() = 0;
    // What a drop at (x, y) of the view would land on; line is set for
    // LineName.
    virtual DropPlace DropPlaceAt(int32_t x, int32_t y, Line*& line) = 0;

    // The instrument commands. Reads the instrument file at path without the
    // lock and adds the instrument as "&Load Instrument" does; a refused file
    // raises FileError and adds nothing. missing gets the waves it names that
    // could not be loaded.
    virtual void LoadInstrumentFile(const std::string& path, std::vector<MissingWave>& missing) = 0;
    // The current instrument, for the save commands, which take the lock
    // themselves where they read what the tick may change.
    virtual Instrument* CurrentInstrument() = 0;
    // "Change Name": the name the dialog starts with, and the end of the
    // dialog, with the new name or null when cancelled.
    virtual std::string InstrumentName() = 0;
    virtual void EndRename(const std::string* name) = 0;
    // The instrument bar's spins: control 0 the number of control groups,
    // 1 to 5 the nudges of a step down to a touch; direction +1 for the up
    // arrow.
    virtual void InstrumentSpin(int32_t control, int32_t direction) = 0;
    virtual void PatternCommand(PatternAction action) = 0;
    virtual void SetSaveOnSwitch(bool on) = 0;
};
