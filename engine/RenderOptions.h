#pragma once

#include <cstdint>
#include <string>
#include <vector>

// What a `--render` command line asks for.
struct RenderOptions {
    std::string output;             // the WAV file to write
    std::vector<std::string> files; // the instrument files, in order
    int32_t pattern = 1;            // the pattern every instrument starts, 1 to 16
    double seconds = 0.0;           // 0: one pass of the longest pattern
    double bpm = 120.0;
    int32_t rate = 48000;
    double level = 0.9;     // each instrument's own level
    double gainDb = 0.0;    // added to the whole output
    bool normalize = false; // the output's peak put at -1 dBFS, before the gain
    bool help = false;
    bool version = false;
};

// Whether the program's arguments ask for the command line rather than the
// windows: only when the first one is --render, --help or --version.
bool IsCommandLine(int argc, const char* const* argv);

// The text of --help.
std::string RenderUsage();

// Reads the arguments after the program's name into options. Returns an
// empty string, or the one-line reason the command line is refused.
std::string ParseRenderOptions(int argc, const char* const* argv, RenderOptions& options);
