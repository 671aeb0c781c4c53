#pragma once

#include "song/PlayPoint.h"
#include "ui/Row.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

class PatternBank;
class PlayPointList;
class SoundBuffer;

// One place for a sample on a line.
struct SampleSlot {
    std::string name;
    std::string path; // empty while the slot is free
    SoundBuffer* buffer = nullptr;
    int16_t lineIndex = 0;
};

// One track of an instrument: a row on the screen, the play points of the
// shown pattern on this line, up to three samples that always sound together,
// and the values acting on the whole line, which it keeps sent to its sound
// buffers. Every operation runs with the engine lock held, on the GUI thread;
// Mute, Unmute and the volume operations also in the tick (mute keys), where
// they neither allocate nor wait, and so do the key commands on the
// selection (Nudge, DeleteSelection, CopySelection, CutSelection,
// FillFromSelection), which reuse the line's scratch arrays.
//
// A selection is a range of time, selectionFirst to selectionLast, not a list
// of points: it covers whatever points of the shown pattern lie in it, also
// after a pattern switch. The mouse gestures are in editing/LineGestures.cpp,
// the edits of points and selections in editing/LineEdit.cpp.
class Line : public Row {
  public:
    // Value codes of GetValue and SetValue, also used by the panels.
    enum Code : int32_t {
        VolumeCode = 1,
        PitchCode = 2,
        PanCode = 3,
        LengthCode = 4,
        ToeInCode = 5,
        FirstSampleVolume = 6,
        SecondSampleVolume = 7,
        ThirdSampleVolume = 8,
    };
    static constexpr int32_t MaxSamples = 3;
    static constexpr double StartLevel = 0.93;

    // The bank may be null (a line on its own): the control group is then 0.
    Line(PatternBank* bank, int32_t index, int8_t stepsPerMeasure);
    // Destroys the points; the sample buffers belong to the instrument's
    // registry and stay.
    virtual ~Line();

    const char* GetName() override { return name.c_str(); }
    // Draws the axis with its ticks and measure numbers, the points with
    // their length bars, and the position of the selection's first point
    // (editing/LinePaint.cpp).
    void Paint() override;

    // Mouse gestures on the row (editing/LineGestures.cpp). flags as Row's.
    void OnLButtonDown(uint32_t flags, int32_t x, int32_t y) override;
    void OnLButtonUp(uint32_t flags, int32_t x, int32_t y) override;
    void OnRButtonDown(uint32_t flags, int32_t x, int32_t y) override;
    void OnRButtonUp(uint32_t flags, int32_t x, int32_t y) override;
    void OnRButtonDblClk(uint32_t flags, int32_t x, int32_t y) override;
    // A plain left press on the grid of division parts of a step.
    void DropWithDivision(int32_t division, int32_t x, int32_t y);
    // Pastes count notes, times from the start of their first measure, at
    // the step (free 1) or the measure (free 0) under x.
    void PasteAt(uint8_t free, const PlayPoint* notes, int32_t count, int32_t x, int32_t y);

    // Placing notes (editing/LineEdit.cpp). A point on time is selected, else
    // a new one with the default note's values is made there.
    void DropPoint(int32_t time);
    void ErasePoint(int32_t time);
    // The label of filter, as a note value or as a part of a step.
    static const char* FilterName(int32_t filter, uint8_t notational);
    const char* FilterName() const { return FilterName(filter, notationalFractions); }

    // The selection.
    // Tells the view that this line holds the highlighted points.
    void Highlight();
    // Drops the range, remembering it for a press on its first point.
    void Unhighlight();
    void ClearSelection();
    int32_t SelectionMeasure() const;
    // The first point in the range; the default note when none lies there.
    PlayPoint FirstSelectedPoint() const;
    // direction 1, -1 by a unit, 2, -2 by an eighth of a step.
    void Nudge(int32_t direction);
    void DeleteSelection();
    // The selected points into out, times from the start of the first one's
    // measure; returns their number. Cut also removes them.
    int32_t CopySelection(std::vector<PlayPoint>& out);
    int32_t CutSelection(std::vector<PlayPoint>& out);
    // Copies the selected points from their block of measures on to the
    // pattern's end; destructive clears the place first. times 0: as many
    // copies as the pattern needs.
    void FillFromSelection(uint8_t destructive, int32_t times);
    // A field of the default note (toDefault) or of every selected point;
    // code as PlayPointField.
    void SetNoteValue(int32_t code, int16_t value, bool toDefault);

    // Stores the window of measures shown; draws nothing.
    void SetWindow(int32_t visible, int32_t first);
    // Takes ownership of a heap list, destroys the old one and repaints.
    void SetPoints(PlayPointList* list);
    // After a line before this one went away.
    void SetIndex(int32_t newIndex) { index = newIndex; }
    void SetFractions(uint8_t flag) { notationalFractions = flag; }

    void AddSample(const std::string& sampleName, const std::string& samplePath,
                   SoundBuffer* buffer, int32_t lineIndex);
    // slot counts from 1.
    void RemoveSample(int32_t slot);
    // slot counts from 0; an empty text for a slot not in use.
    std::string SampleName(int32_t slot) const;
    std::string SamplePath(int32_t slot) const;
    // A new buffer that reports to this line once its wave file is read.
    SoundBuffer* NewSampleBuffer();
    int32_t LongestSampleMs() const;

    // -2.0 for an unknown code.
    double GetValue(int32_t code) const;
    // step 0 sets, +-1 nudges within the code's range, +-2 switches on or off.
    void SetValue(int32_t code, double value, int32_t step);
    // which 0: the instrument's level, 1: the control group's level.
    void SetOuterLevel(int32_t which, double value);
    // Either thread: sends each sample's combined level if it changed.
    void ApplyVolumes() { SendVolumes(false); }
    // Either thread: sends each sample's combined level.
    void ForceVolumes() { SendVolumes(true); }
    void ApplySoundParameters();
    // Either thread (space bar in the tick).
    void Mute() { SetAudible(0); }
    void Unmute() { SetAudible(1); }
    // Changes only the group number; groupLevel stays until that group's
    // level is next set.
    void StepControlGroup(int32_t direction);
    // Takes the line out of its bank, then destroys it: the line must have
    // been made with new, and the caller must not use it afterwards.
    void Remove();

    // The instrument sets both outer levels right after it makes a line; 1.0
    // until then, so that the line's own values alone decide its level.
    double instrumentLevel = 1.0;
    double groupLevel = 1.0;
    int32_t controlGroup;
    double pitch = 0.0;
    double pan = 0.0;
    double length = 0.0;
    double toeIn = 0.0;
    // The three per-sample arrays hold the third, second and first sample in
    // this order: slot i is at 2 - i. Unset (NaN) levels never compare
    // equal, so the first ApplyVolumes sends.
    double appliedLevel[MaxSamples] = {std::numeric_limits<double>::quiet_NaN(),
                                       std::numeric_limits<double>::quiet_NaN(),
                                       std::numeric_limits<double>::quiet_NaN()};
    uint8_t sampleEnabled[MaxSamples] = {1, 1, 1};
    double sampleVolume[MaxSamples] = {StartLevel, StartLevel, StartLevel};
    double volume = StartLevel;
    PlayPoint defaultNote{};
    int32_t rememberedFirst = -1, rememberedLast = -1;
    uint8_t dragArmed = 0;
    int8_t measureDrag = 0;
    uint8_t pointsHighlighted = 0;
    uint8_t notationalFractions = 1;
    int32_t filter = 8;
    int32_t selectionFirst = -1, selectionLast = -1;
    int32_t eraseStart = -1;
    int32_t firstMeasure = 0;
    int32_t visibleMeasures = 0;
    int8_t stepsPerMeasure;
    PlayPointList* points;
    std::string name = "Empty";
    uint8_t audible = 1;
    int8_t sampleCount = 0;
    SampleSlot samples[MaxSamples];
    int32_t index;
    PatternBank* bank;

  private:
    // Where a press lies on the time axis: a from above 0 to below 1.
    struct AxisHit {
        bool counts;
        double a;
    };
    AxisHit AxisAt(int32_t x, int32_t y) const;
    int32_t TimeAtPoint(double a, int32_t division) const;
    // The time of the last point in [first, last], or -1.
    int32_t LastTimeIn(int32_t first, int32_t last) const;
    // The point before or at t within the catch distance, else the last one
    // after it within that distance, else t.
    int32_t CatchNeighbour(int32_t t) const;
    // selectionFirst moves to the first point of the range, if one lies in it.
    void StartRangeOnPoint();
    void MoveSelection(int32_t t);
    // The points in [first, last] into out; their number.
    int32_t CopyRangeInto(int32_t first, int32_t last, std::vector<PlayPoint>& out) const;
    // Takes the n points of out, just copied from [first, last], off the
    // line and the bank; puts n points back (with replace, over points of
    // their times).
    void TakeOff(const std::vector<PlayPoint>& out, int32_t n);
    void PutOn(const PlayPoint* sorted, int32_t n, bool replace);
    void FillCopies(int32_t n, int32_t times, int32_t spanUnits);

    // Scratch arrays of the edits, grown and never shrunk, so that key
    // commands in the tick allocate only when a selection is larger than any
    // before.
    std::vector<PlayPoint> work;
    std::vector<PlayPoint> spare;
    // Keeps a nudge from running into itself.
    uint8_t nudgeGate = 1;

    // Index of slot i in the per-sample arrays.
    static int32_t Reversed(int32_t slot) { return MaxSamples - 1 - slot; }
    const double* ValueOf(int32_t code) const;
    double* ValueOf(int32_t code);
    double LevelOf(int32_t slot) const;
    void SendVolumes(bool always);
    void SetAudible(uint8_t value);
    void Switch(int32_t code, uint8_t on);
};
