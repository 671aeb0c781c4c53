#pragma once

#include "song/PlayPointList.h"

#include <cstdint>
#include <string>

class Instrument;
class Line;
class PatternRow;
class Schedule;
class SoundBuffer;

// The play points of one instrument: sixteen stored patterns, the working
// pattern the performer edits, and the lines, each showing the working
// pattern's points of that line. The one gate through which a pattern is
// compiled into the schedule. Every operation runs with the engine lock held,
// on the GUI thread or in the tick (keys and pattern ends).
class PatternBank {
  public:
    static constexpr int32_t PatternCount = 16;

    PatternBank(Schedule* schedule, Instrument* owner);
    virtual ~PatternBank();
    PatternBank(const PatternBank&) = delete;
    PatternBank& operator=(const PatternBank&) = delete;

    int32_t AddLine();
    int32_t GetLineCount() const { return lineCount; }
    Line* GetLine(int32_t index) const;
    void DeleteLine(int32_t index);
    void SetLineWindow(int32_t visibleMeasures, int32_t firstMeasure);
    void SetLinesFractions(uint8_t flag);
    bool IsGroupFree(int32_t group) const;

    void SaveWorking();
    void LoadPattern(int32_t index);
    void RestoreWorking();
    void ClearWorking();
    void ChangeLength(int32_t direction);
    void DoublePattern();
    int32_t GetMeasures() const { return working.bound / (stepsPerMeasure * 64); }
    int32_t GetCurrentPattern() const { return current; }
    void Play(int32_t index, int32_t position, uint8_t mode);
    void Stop();
    void SetPattern(int32_t index, const PlayPointList& list);
    // A copy of the stored pattern, or of the working one for the shown index.
    PlayPointList GetPattern(int32_t index) const;

    // Note edits of a line, after it changed its own list.
    void AddPoint(PlayPoint p);
    void ReplacePoint(PlayPoint p);
    void RemovePoint(PlayPoint p);
    void RemovePoints(const PlayPoint* points, int32_t n);
    // AddPoint or ReplacePoint of each of n points of one line, sorted by
    // time, in one pass over the lists.
    void AddPoints(const PlayPoint* points, int32_t n);
    void ReplacePoints(const PlayPoint* points, int32_t n);

    // Passed through to the instrument and the schedule for the lines.
    double GetStepMs() const;
    int32_t GetLastControlGroup() const;
    SoundBuffer* NewBufferForLine(int32_t line);
    void RemoveEntry(const std::string& name, const std::string& path, SoundBuffer* buffer,
                     int32_t line);
    void LineSelected(Line* line);

    int32_t lineCount = 0;
    Line** lines;
    int8_t repeat = 1;
    Instrument* owner;
    int8_t stepsPerMeasure = 4;
    int32_t lineCapacity = 8;
    Schedule* schedule;
    int32_t playing = -1;
    int32_t current = 0;
    PlayPointList working;
    PlayPointList patterns[PatternCount];
    // The row of pattern ovals, made with the bank and never replaced.
    PatternRow* patternRow;

  private:
    void RebuildLines();
    void Refresh();
    void FullRefresh();
    bool ShownIsPlaying() const { return playing == current; }
};
