// Measures key-to-sound latency of the running program, as a performer
// meets it: presses Enter through the X server's test extension (the same
// path as a keyboard) and finds the first sounding frame of the program's
// output in a JACK client of its own. Both times are read on JACK's clock.
// Before each press the pattern is stopped (numpad 0) and the output let
// fall silent. The program must run with the demo, its sequencer box
// highlighted by this tool (Grave) first.
//
//     key_latency [PRESSES]    (default 50; DISPLAY and the JACK server from
//                               the environment)
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>
#include <jack/jack.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

jack_client_t* client;
jack_port_t* input;
std::atomic<bool> armed{false};
std::atomic<jack_time_t> onset{0};
std::atomic<int64_t> silentFrames{0};

// JACK process thread: the time of the first sounding frame after arming,
// and how long the output has been silent.
int Process(jack_nframes_t frames, void*) {
    const float* in = static_cast<const float*>(jack_port_get_buffer(input, frames));
    const jack_nframes_t start = jack_last_frame_time(client);
    for (jack_nframes_t i = 0; i < frames; ++i) {
        if (std::fabs(in[i]) < 1e-6f) {
            silentFrames.fetch_add(1, std::memory_order_relaxed);
            continue;
        }
        silentFrames.store(0, std::memory_order_relaxed);
        if (armed.exchange(false))
            onset.store(jack_frames_to_time(client, start + i));
    }
    return 0;
}

void Key(Display* display, KeySym key) {
    const KeyCode code = XKeysymToKeycode(display, key);
    XTestFakeKeyEvent(display, code, True, CurrentTime);
    XSync(display, False);
    XTestFakeKeyEvent(display, code, False, CurrentTime);
    XSync(display, False);
}

void Sleep(int ms) {
    std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}

} // namespace

int main(int argc, char** argv) {
    const int presses = argc > 1 ? std::atoi(argv[1]) : 50;
    Display* display = XOpenDisplay(nullptr);
    client = jack_client_open("key_latency", JackNoStartServer, nullptr);
    if (display == nullptr || client == nullptr) {
        std::fprintf(stderr, "key_latency: needs an X display and a running JACK server\n");
        return 2;
    }
    input = jack_port_register(client, "in", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    jack_set_process_callback(client, Process, nullptr);
    jack_activate(client);
    const char** ports =
        jack_get_ports(client, "^oxbowlantern:", JACK_DEFAULT_AUDIO_TYPE, JackPortIsOutput);
    if (ports == nullptr || jack_connect(client, ports[0], jack_port_name(input)) != 0) {
        std::fprintf(stderr, "key_latency: the program's output ports are not there\n");
        return 2;
    }
    jack_free(ports);
    const int rate = static_cast<int>(jack_get_sample_rate(client));
    Key(display, XK_grave);
    std::vector<double> ms;
    for (int i = 0; i < presses; ++i) {
        Key(display, XK_KP_0);
        while (silentFrames.load() < rate / 4)
            Sleep(20);
        onset.store(0);
        armed.store(true);
        const KeyCode enter = XKeysymToKeycode(display, XK_Return);
        XTestFakeKeyEvent(display, enter, True, CurrentTime);
        XSync(display, False);
        const jack_time_t pressed = jack_get_time();
        XTestFakeKeyEvent(display, enter, False, CurrentTime);
        XSync(display, False);
        for (int wait = 0; onset.load() == 0 && wait < 200; ++wait)
            Sleep(5);
        if (onset.load() == 0) {
            std::fprintf(stderr, "key_latency: press %d was not heard\n", i + 1);
            return 1;
        }
        ms.push_back((static_cast<double>(onset.load()) - static_cast<double>(pressed)) / 1000.0);
    }
    Key(display, XK_KP_0);
    std::sort(ms.begin(), ms.end());
    std::printf("%d presses at %d Hz, %u-frame periods: median %.2f ms, worst %.2f ms, best "
                "%.2f ms\n",
                presses, rate, jack_get_buffer_size(client), ms[ms.size() / 2], ms.back(),
                ms.front());
    jack_client_close(client);
    XCloseDisplay(display);
    return 0;
}
