#pragma once

#include "engine/Schedule.h"

#include <cstdint>
#include <string>

class FileArchive;
class InstrumentView;
class Line;
class PatternBank;
class SampleRegistry;
class SequencerRow;
class SoundBuffer;
struct RowSlot;

// The unit a performer opens, plays and saves: lines with their samples,
// sixteen patterns, a cue sequencer and a playhead of its own, and the levels
// that act on all its lines. Runs with the engine lock held; an instrument
// being read from a file is known to nobody yet and needs no lock.
class Instrument {
  public:
    static constexpr int32_t MaxGroups = 30;
    static constexpr int32_t PathSlots = 90;
    static constexpr double StartLevel = 0.93;

    explicit Instrument(InstrumentView* view = nullptr);
    virtual ~Instrument();
    Instrument(const Instrument&) = delete;
    Instrument& operator=(const Instrument&) = delete;

    void SetName(const std::string& text) {
        name = text;
        displayName = text;
    }
    std::string GetName() const { return name; }
    Schedule* GetSchedule() { return &schedule; }
    SequencerRow* GetSequencer() const { return sequencer; }
    PatternBank* GetBank() const { return bank; }
    int32_t NextRow(RowSlot& slot, bool first);
    // Writes or reads the whole instrument file, by the archive's direction
    // (song/InstrumentFile.cpp). Reading fills a new instrument nobody knows.
    virtual void Serialize(FileArchive& archive);
    int32_t GetControlCount() const { return controlCount; }
    int32_t GetLastControlGroup() const { return controlCount - 1; }
    void SetLevel(int32_t which, double value);
    void Mute();
    void Unmute();
    void AddControlGroup();
    void RemoveControlGroup();
    SoundBuffer* NewBufferForNewLine();
    SoundBuffer* NewBufferForLine(int32_t line);
    void SampleLoaded(SoundBuffer* buffer);
    void SampleFailed() { loadTarget = 0; }
    void AttachView(InstrumentView* newView);
    void SetNumber(int32_t number);
    void RemoveLineSamples(int32_t line);
    void RemoveEntry(const std::string& name, const std::string& path, SoundBuffer* buffer,
                     int32_t line);

    // Upward calls to the view, skipped without one.
    void RefreshInstrument();
    void PatternLengthChanged();
    void LineSelected(Line* line);
    void FocusSequencer(SequencerRow* row);
    void AddFocusSequencer(SequencerRow* row);

    uint8_t hasFile = 0;
    std::string filePath;
    std::string displayName = " ";
    int32_t sampleEntries = 0;
    std::string samplePaths[PathSlots];
    InstrumentView* view;
    Schedule schedule;
    PatternBank* bank;
    SampleRegistry* registry;
    int8_t on = 1;
    int32_t controlCount = 1;
    double groupLevels[MaxGroups] = {StartLevel};
    double level = 0.0;
    int32_t loadTarget = 0;
    SequencerRow* sequencer;
    std::string name = " ";

  private:
    void SetOuterLevels(int32_t which, double value, int32_t group);
    int32_t rowCursor = 0;
};
