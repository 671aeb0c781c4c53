#include "song/InstrumentFile.h"

#include "editing/Line.h"
#include "engine/EngineLock.h"
#include "engine/SoundBuffer.h"
#include "engine/SoundSystem.h"
#include "song/DiskFile.h"
#include "song/FileArchive.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/SamplePath.h"
#include "song/SetSave.h"

#include <algorithm>
#include <mutex>

namespace {

constexpr int32_t FileLines = Instrument::PathSlots / Line::MaxSamples;

void CheckCounts(const FileArchive& archive, int32_t controls, int32_t entries) {
    if (controls < 0 || controls > Instrument::MaxGroups)
        archive.Refuse("it claims " + std::to_string(controls) +
                       " control groups; an instrument has 0 to 30");
    if (entries < 0 || entries > Instrument::PathSlots || entries % Line::MaxSamples != 0)
        archive.Refuse("it claims " + std::to_string(entries) +
                       " sample places; an instrument has 0 to 90, three for each line");
}

// The reason a pattern cannot go into a file.
std::string Unstorable(int32_t pattern, const PlayPointList& list) {
    const std::string name = "pattern " + std::to_string(pattern + 1);
    if (list.count > SetSave::MaxRecords)
        return name + " has " + std::to_string(list.count) +
               " notes, and a file holds at most 10000 a pattern; thin it out, nothing was saved";
    return name + " is too long to be stored; shorten it, nothing was saved";
}

void WriteInstrumentFile(Instrument& instrument, const std::string& target) {
    FileArchive archive(target);
    instrument.Serialize(archive);
    ReplacingFile file(target);
    file.Write(archive.Bytes().data(), archive.Bytes().size());
    file.Commit();
}

// Room for the largest file: untouched, the reserve costs nothing, and the
// bytes are never moved while they grow.
size_t LargestFile(const Instrument& instrument) {
    size_t bytes = 14 + instrument.name.size() + instrument.displayName.size() + 8;
    for (const std::string& path : instrument.samplePaths)
        bytes += 7 + path.size();
    return bytes + PatternBank::PatternCount *
                       (SetSave::HeadBytes + SetSave::MaxRecords * SetSave::RecordBytes);
}

// The table of paths from the lines that fit in a file. A slot without a
// sample stores an empty path, so that a sample the performer removed does
// not come back at the next load.
void RefreshSamplePaths(Instrument& instrument) {
    PatternBank* bank = instrument.bank;
    const int32_t n = std::min(bank->GetLineCount(), FileLines);
    for (int32_t l = 0; l < n; ++l)
        for (int32_t s = 0; s < Line::MaxSamples; ++s)
            instrument.samplePaths[Line::MaxSamples * l + s] = bank->GetLine(l)->SamplePath(s);
    instrument.sampleEntries = Line::MaxSamples * n;
}

// Each pattern is copied under the engine lock, the tick editing patterns
// too; the lock is thus held for microseconds, never while encoding.
void WritePatterns(PatternBank* bank, FileArchive& archive) {
    auto save = std::make_unique<SetSave>();
    for (int32_t i = 0; i < PatternBank::PatternCount; ++i) {
        std::unique_lock<EngineMutex> hold(theEngineLock);
        const PlayPointList list = bank->GetPattern(i);
        hold.unlock();
        if (!save->FromList(list))
            archive.Refuse(Unstorable(i, list));
        save->Serialize(archive);
    }
}

// The lines a file names, each joining the last control group.
void AddFileLines(Instrument& instrument) {
    for (int32_t l = 0; l < instrument.sampleEntries / Line::MaxSamples; ++l) {
        Line* line = instrument.bank->GetLine(instrument.bank->AddLine());
        line->SetOuterLevel(0, instrument.on * instrument.level);
        const int32_t group = line->controlGroup;
        line->SetOuterLevel(
            1, group >= 0 && group < Instrument::MaxGroups ? instrument.groupLevels[group] : 0.0);
    }
}

void ReadPatterns(PatternBank* bank, FileArchive& archive) {
    auto save = std::make_unique<SetSave>();
    for (int32_t i = 0; i < PatternBank::PatternCount; ++i) {
        save->Serialize(archive);
        bank->SetPattern(i, save->ToList());
    }
}

// Each named wave joins its line in the next free slot; one that cannot be
// used leaves its slot empty and its buffer to be destroyed here.
void LoadWaves(Instrument& instrument, FileArchive& archive) {
    for (int32_t i = 0; i < instrument.sampleEntries; ++i) {
        const std::string& path = instrument.samplePaths[i];
        if (path.empty())
            continue;
        SoundBuffer* buffer = instrument.NewBufferForLine(i / Line::MaxSamples);
        archive.sounds->LoadWave(ResolveSamplePath(path, archive.FileName()),
                                 SampleDisplayName(path), buffer);
        if (archive.sounds->lastStatus == WaveStatus::Ok)
            continue;
        delete buffer;
        if (archive.missing != nullptr)
            archive.missing->push_back(MissingWave{path, archive.sounds->lastStatus});
    }
}

} // namespace

// Storing: GUI thread, engine lock not held; only the GUI thread changes the
// name, the lines and the samples, so they are read as they stand. Loading,
// into a new instrument nobody knows: the waves come last, once every byte
// of the file has been read and checked, so a broken file costs no wave
// reads and has no samples to undo.
void Instrument::Serialize(FileArchive& archive) {
    if (archive.IsStoring()) {
        RefreshSamplePaths(*this);
        archive.Reserve(LargestFile(*this));
        archive.WriteString(name);
        archive.WriteString(displayName);
        archive.WriteInt32(controlCount);
        archive.WriteInt32(sampleEntries);
        for (const std::string& path : samplePaths)
            archive.WriteString(path);
        WritePatterns(bank, archive);
        return;
    }
    name = archive.ReadString();
    displayName = archive.ReadString();
    controlCount = archive.ReadInt32();
    sampleEntries = archive.ReadInt32();
    CheckCounts(archive, controlCount, sampleEntries);
    for (int32_t g = 1; g < controlCount; ++g)
        groupLevels[g] = StartLevel;
    AddFileLines(*this);
    for (std::string& path : samplePaths)
        path = archive.ReadString();
    ReadPatterns(bank, archive);
    if (archive.sounds != nullptr)
        LoadWaves(*this, archive);
}

std::string WithInstrumentExtension(const std::string& path) {
    return path.find(".nst") == std::string::npos ? path + ".nst" : path;
}

std::unique_ptr<Instrument> LoadInstrument(const std::string& path, SoundSystem* sounds,
                                           std::vector<MissingWave>* missing) {
    const std::vector<uint8_t> bytes = ReadWholeFile(path, MaxInstrumentFileBytes);
    FileArchive archive(bytes.data(), bytes.size(), path);
    archive.sounds = sounds;
    archive.missing = missing;
    auto instrument = std::make_unique<Instrument>();
    try {
        instrument->Serialize(archive);
    } catch (...) {
        // Its sound buffers send their release to the mixer, which only the
        // holder of the engine lock may do.
        std::lock_guard<EngineMutex> hold(theEngineLock);
        instrument.reset();
        throw;
    }
    instrument->filePath = path;
    instrument->hasFile = 1;
    return instrument;
}

bool SaveInstrument(Instrument& instrument) {
    if (instrument.hasFile == 0 || instrument.filePath.empty())
        return false;
    WriteInstrumentFile(instrument, WithInstrumentExtension(instrument.filePath));
    return true;
}

void SaveInstrumentAs(Instrument& instrument, const std::string& path) {
    const std::string target = WithInstrumentExtension(path);
    WriteInstrumentFile(instrument, target);
    instrument.filePath = target;
    instrument.hasFile = 1;
}
