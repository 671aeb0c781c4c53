#pragma once

#include "engine/RenderOptions.h"

#include <string>

// The headless render, with which a performer bounces patterns to a file and
// anyone can hear the whole chain without a window or a sound device. It
// loads each instrument file as the Load command does, gives every instrument
// the level of the options and the tempo by the rule of the tempo commands,
// starts the chosen pattern of all of them together at tick 0 as the Enter
// key does, and pulls the tick and the mixer through the offline output into
// a 32-bit float stereo WAV file, written by the temp-and-rename rule. Runs
// on the calling thread, which is the render's audio thread as well.

// The output is scaled by the options' gain, after --normalize has scaled
// it so that its peak is at -1 dBFS (found by a first pass over the whole
// render, which then runs again to be written). Returns 0, with the peak of
// what was written (1 is full scale) in peak when it is not null; or 1, with
// the reason in error, when an instrument file is refused or the output
// cannot be written. No output file is left then.
int Render(const RenderOptions& options, std::string& error, float* peak = nullptr);

// The program's entry for a command line (--render, --help, --version). Prints the usage
// or a one-line error; returns the exit code: 0, 1 for a refused file or a
// failed write, 2 for a bad option or value. An output that goes above full
// scale is written all the same, and a line on standard error says its peak.
int RenderMain(int argc, const char* const* argv);
