#pragma once

// The program with its windows: puts the services and the windows together
// in their order, runs until the window closes, and takes them apart again.
// Instrument files named in files are loaded after the first instrument.
// Returns the process's exit code: 0, or 255 without a usable sound device.
int RunApplication(int argc, char** argv);
