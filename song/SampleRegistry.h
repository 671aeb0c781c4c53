#pragma once

#include <cstdint>
#include <string>

class Instrument;
class PatternBank;
class Schedule;
class SoundBuffer;

// One sample of an instrument: its names, its buffer and its line.
struct SampleEntry {
    std::string name;
    std::string path;
    SoundBuffer* buffer = nullptr;
    int16_t line = 0;
};

// The list of all samples of all lines of an instrument, from which the
// playhead's table of buffers by line is made after every change. Runs on
// the GUI thread with the engine lock held.
class SampleRegistry {
  public:
    // The table has a place for every value a note's line can take, so a
    // note never reaches past it: also lines whose samples all failed to
    // load, or notes of lines that no longer exist, find an entry (empty).
    static constexpr int32_t TableLines = 256;

    SampleRegistry(Schedule* schedule, PatternBank* bank, Instrument* owner);
    virtual ~SampleRegistry();
    SampleRegistry(const SampleRegistry&) = delete;
    SampleRegistry& operator=(const SampleRegistry&) = delete;

    void Add(const std::string& name, const std::string& path, SoundBuffer* buffer, int32_t line);
    void RemoveEntry(const std::string& name, const std::string& path, SoundBuffer* buffer,
                     int32_t line);
    void RemoveLine(int32_t line);

    Instrument* owner;
    PatternBank* bank;
    Schedule* schedule;
    int32_t capacity = 20;
    int32_t count = 0;
    SampleEntry* entries;

  private:
    void RemoveAt(int32_t i);
    void RebuildTable();
    void FreeTable();

    int8_t* tableCounts = nullptr;
    SoundBuffer*** tableSamples = nullptr;
    SoundBuffer** tableBuffers = nullptr;
};
