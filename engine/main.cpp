#include "engine/RenderCommand.h"
#include "engine/RenderOptions.h"
#include "ui/Application.h"

// With --render, --help or --version first, the program is a command line
// tool that needs no display and no sound device. Otherwise it opens its
// windows: Qt takes its own options (-platform, -style) and the instrument
// files named on the command line are loaded at start.
int main(int argc, char** argv) {
    if (IsCommandLine(argc, argv))
        return RenderMain(argc, argv);
    return RunApplication(argc, argv);
}
