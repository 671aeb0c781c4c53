#pragma once

#include <string>

// The command-line switches that turn on playing with others for one run of
// the windowed program, whatever the Sync menu remembers.
struct SyncSwitches {
    bool midiClock = false;          // --midi-clock
    bool jackTransport = false;      // --jack-transport
    bool link = false;               // --link
    bool followMidiClock = false;    // --follow-midi-clock
    std::string midiMapFile;         // --midi-map FILE
    bool midiMapWithoutFile = false; // --midi-map as the last argument
};

// Takes the switches out of the arguments, so that Qt's own options and the
// instrument files are left as they were, in their order. argv keeps its
// closing null.
SyncSwitches TakeSyncSwitches(int& argc, char** argv);

// The lines of --help about them.
std::string SyncUsage();
