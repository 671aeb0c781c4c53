#include "engine/RenderCommand.h"
#include "ui/Application.h"

// With an option first (--render, --help) the program is a command line tool that
// needs no display and no sound device. Otherwise it opens its windows, and
// the instrument files named on the command line are loaded at start.
int main(int argc, char** argv) {
    if (argc > 1 && argv[1][0] == '-')
        return RenderMain(argc, argv);
    return RunApplication(argc, argv);
}
