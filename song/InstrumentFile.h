#pragma once

#include "engine/WaveFile.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

class Instrument;
class SoundSystem;

// The instrument file commands, as operations on a path; the dialogs that
// ask for the path stand apart. All run on the GUI thread without the
// engine lock, which they take themselves only where the model is read.
// Every failure raises FileError with the file's name and the reason.

// Larger files are refused unread: a full instrument of sixteen patterns of
// 10000 notes with long paths takes under 3 MB.
constexpr size_t MaxInstrumentFileBytes = 64u << 20;

// The path with ".nst" appended, unless ".nst" stands anywhere in it (the
// case counts), so that a performer can choose another extension that way.
std::string WithInstrumentExtension(const std::string& path);

// A wave file that an instrument file names and that could not be loaded.
struct MissingWave {
    std::string path; // as the file names it
    WaveStatus status;
};

// Reads the file into a new instrument that nobody knows yet, loading its
// wave files through sounds (null: none are loaded), and marks it as having
// that file. A wave that cannot be loaded leaves its slot empty and, with
// missing given, is added to it. A refused file leaves nothing behind: the
// half-read instrument is destroyed and its samples are handed back to the
// mixer.
std::unique_ptr<Instrument> LoadInstrument(const std::string& path, SoundSystem* sounds,
                                           std::vector<MissingWave>* missing = nullptr);

// Save: writes the instrument to its own file and returns true; false, doing
// nothing, when it has none yet and the caller must ask for a path and use
// SaveInstrumentAs.
bool SaveInstrument(Instrument& instrument);

// Save As: writes to the path with its extension, which becomes the
// instrument's file. On failure the instrument's file stays what it was.
void SaveInstrumentAs(Instrument& instrument, const std::string& path);
