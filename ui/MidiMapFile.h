#pragma once

#include <string>
#include <vector>

class MidiMap;

// The MIDI map's file: plain text, one mapping a line, which a performer may
// also write by hand. GUI thread, no lock held: blocking I/O.
namespace MidiMapFile {
// The map file in the program's settings folder.
std::string DefaultPath();

// Reads the file into map (replacing it; a map of the caller's, since this
// does I/O and the engine's map is only changed under the lock): the messages name each line that
// was skipped, "FILE: line N: ...", or the file that could not be read. A
// file that is not there gives an empty map, and a message only when it is
// required.
std::vector<std::string> Load(const std::string& path, MidiMap& map, bool required);

// Writes the map, the old file staying whole until the new one is complete.
// Empty when it was written, else why not.
std::string Save(const std::string& path, const MidiMap& map);
} // namespace MidiMapFile
