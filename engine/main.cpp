#include "engine/AudioCallback.h"
#include "engine/Engine.h"
#include "engine/RenderCommand.h"
#include "engine/RtAudioOutput.h"
#include "engine/SoundSystem.h"

#include <csignal>
#include <cstdio>
#include <pthread.h>

// Opens the sound output, runs the tick on its clock and plays until SIGINT
// or SIGTERM. Without a usable sound device: one line on standard error and
// exit code 255. Any argument makes it a command line tool (--render,
// --help), which needs no display and no sound device.
int main(int argc, char** argv) {
    if (argc > 1)
        return RenderMain(argc, argv);
    // The signals are taken by sigwait on this thread only; every thread made
    // from here on (the audio threads too) inherits the blocked mask.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);

    Engine engine;
    SoundSystem soundSystem;
    AudioCallback callback(&engine, soundSystem.GetMixer());
    RtAudioOutput output;
    if (!output.Start(callback)) {
        std::fprintf(stderr, "oxbowlantern: no usable sound device (no JACK server, PulseAudio or "
                             "ALSA default output)\n");
        return 255;
    }
    std::printf("oxbowlantern: sound through %s; the windows come in a later version.\n",
                output.Describe().c_str());
    std::fflush(stdout);

    int received = 0;
    sigwait(&stopSignals, &received);
    output.Stop();
    return 0;
}
