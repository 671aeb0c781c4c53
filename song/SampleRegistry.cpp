#include "song/SampleRegistry.h"

#include "editing/Line.h"
#include "engine/Schedule.h"
#include "engine/SoundBuffer.h"
#include "song/PatternBank.h"

#include <cstring>
#include <utility>

SampleRegistry::SampleRegistry(Schedule* s, PatternBank* b, Instrument* o)
    : owner(o), bank(b), schedule(s), entries(new SampleEntry[20]) {}

SampleRegistry::~SampleRegistry() {
    for (int32_t i = 0; i < count; ++i)
        delete entries[i].buffer;
    delete[] entries;
    FreeTable();
}

void SampleRegistry::Add(const std::string& name, const std::string& path, SoundBuffer* buffer,
                         int32_t line) {
    entries[count] = SampleEntry{name, path, buffer, static_cast<int16_t>(line)};
    if (++count == capacity) {
        SampleEntry* grown = new SampleEntry[capacity + 5];
        for (int32_t i = 0; i < count; ++i)
            grown[i] = std::move(entries[i]);
        delete[] entries;
        entries = grown;
        capacity += 5;
    }
    RebuildTable();
    if (Line* l = bank->GetLine(line))
        l->AddSample(name, path, buffer, line);
}

void SampleRegistry::RemoveAt(int32_t i) {
    for (int32_t k = i; k < count - 1; ++k)
        entries[k] = std::move(entries[k + 1]);
    entries[--count] = SampleEntry{};
}

void SampleRegistry::RemoveEntry(const std::string&, const std::string&, SoundBuffer* buffer,
                                 int32_t) {
    for (int32_t i = count - 1; i >= 0; --i) {
        if (entries[i].buffer == buffer) {
            RemoveAt(i);
            break;
        }
    }
    RebuildTable();
}

void SampleRegistry::RemoveLine(int32_t line) {
    for (int round = 0; round < 3; ++round) {
        for (int32_t i = count - 1; i >= 0; --i) {
            if (entries[i].line != line)
                continue;
            SoundBuffer* gone = entries[i].buffer;
            RemoveAt(i);
            // The table still points at the buffer until it is rebuilt; the
            // tick cannot run meanwhile, as the engine lock is held.
            delete gone;
            break;
        }
    }
    for (int32_t i = 0; i < count; ++i)
        if (entries[i].line > line)
            --entries[i].line;
    RebuildTable();
}

// The new table replaces the old one while the engine lock is held, and the
// tick reads tables only under that lock, so the old one can go at once.
void SampleRegistry::RebuildTable() {
    int8_t* counts = new int8_t[TableLines]();
    SoundBuffer*** samples = new SoundBuffer**[TableLines];
    SoundBuffer** buffers = new SoundBuffer*[count > 0 ? count : 1];
    int32_t perLine[TableLines] = {};
    for (int32_t i = 0; i < count; ++i)
        ++perLine[static_cast<uint8_t>(entries[i].line)];
    int32_t start = 0;
    for (int32_t line = 0; line < TableLines; ++line) {
        samples[line] = buffers + start;
        start += perLine[line];
    }
    for (int32_t i = 0; i < count; ++i) {
        const uint8_t line = static_cast<uint8_t>(entries[i].line);
        samples[line][counts[line]++] = entries[i].buffer;
    }
    schedule->SetLineTable(samples, counts);
    FreeTable();
    tableCounts = counts;
    tableSamples = samples;
    tableBuffers = buffers;
}

void SampleRegistry::FreeTable() {
    delete[] tableCounts;
    delete[] tableSamples;
    delete[] tableBuffers;
}
