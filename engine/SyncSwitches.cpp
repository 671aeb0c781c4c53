#include "engine/SyncSwitches.h"

#include <cstring>

SyncSwitches TakeSyncSwitches(int& argc, char** argv) {
    SyncSwitches s;
    int kept = 1;
    for (int i = 1; i < argc; ++i) {
        bool* flag = std::strcmp(argv[i], "--midi-clock") == 0          ? &s.midiClock
                     : std::strcmp(argv[i], "--jack-transport") == 0    ? &s.jackTransport
                     : std::strcmp(argv[i], "--link") == 0              ? &s.link
                     : std::strcmp(argv[i], "--follow-midi-clock") == 0 ? &s.followMidiClock
                                                                        : nullptr;
        if (flag != nullptr)
            *flag = true;
        else if (std::strcmp(argv[i], "--midi-map") != 0)
            argv[kept++] = argv[i];
        else if (i + 1 < argc)
            s.midiMapFile = argv[++i];
        else
            s.midiMapWithoutFile = true;
    }
    argv[kept] = nullptr;
    argc = kept;
    return s;
}

std::string SyncUsage() {
    return "\n"
           "Usage: oxbowlantern [--midi-clock] [--jack-transport] [--link]\n"
           "                    [--follow-midi-clock] [--midi-map FILE] [FILE.nst...]\n"
           "Opens the windows with the instrument files loaded. For this run only, and\n"
           "beside what the Sync menu remembers:\n"
           "  --midi-clock         send MIDI clock on the JACK port \"midi out\"\n"
           "  --jack-transport     be the JACK transport's timebase master\n"
           "  --link               share tempo and bars with Ableton Link peers\n"
           "  --follow-midi-clock  take the tempo, start and stop from incoming MIDI clock\n"
           "  --midi-map FILE      play keys by MIDI notes and controllers as FILE maps them\n";
}
