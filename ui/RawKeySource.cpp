#include "ui/RawKeySource.h"

#include <X11/Xlib.h>
#include <X11/extensions/XInput2.h>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

// The XInput2 major opcode when the server has version 2.0 or later, else 0.
int XInput2Opcode(Display* display) {
    int opcode = 0, firstEvent = 0, firstError = 0;
    if (!XQueryExtension(display, "XInputExtension", &opcode, &firstEvent, &firstError))
        return 0;
    // Asks for 2.2 (raw events whatever the grabs); the answer is what both
    // sides have.
    int major = 2, minor = 2;
    if (XIQueryVersion(display, &major, &minor) != Success || major < 2)
        return 0;
    return opcode;
}

void SelectRawKeys(Display* display) {
    unsigned char bits[XIMaskLen(XI_LASTEVENT)] = {};
    XISetMask(bits, XI_RawKeyPress);
    XISetMask(bits, XI_RawKeyRelease);
    XIEventMask mask{XIAllMasterDevices, sizeof bits, bits};
    XISelectEvents(display, DefaultRootWindow(display), &mask, 1);
    XFlush(display);
}

} // namespace

bool RawKeySource::Start(Display* sameServerAs) {
    if (display != nullptr)
        return true;
    // Qt's own connection lives on the GUI thread; Xlib is to be told before
    // connections are used from more than one thread.
    XInitThreads();
    Display* connection =
        XOpenDisplay(sameServerAs != nullptr ? XDisplayString(sameServerAs) : nullptr);
    if (connection == nullptr)
        return false;
    xiOpcode = XInput2Opcode(connection);
    if (xiOpcode == 0 || pipe2(wakePipe, O_CLOEXEC) != 0) {
        XCloseDisplay(connection);
        return false;
    }
    SelectRawKeys(connection);
    display = connection;
    thread = std::thread([this] { Run(); });
    return true;
}

void RawKeySource::Stop() {
    if (display == nullptr)
        return;
    const char wake = 1;
    (void)!write(wakePipe[1], &wake, 1);
    thread.join();
    XCloseDisplay(display);
    display = nullptr;
    close(wakePipe[0]);
    close(wakePipe[1]);
    wakePipe[0] = wakePipe[1] = -1;
}

// X thread: reads what has arrived, then sleeps in poll() until the
// connection has more or the wake-up pipe says stop. A connection that hangs
// up ends the thread without touching Xlib again.
void RawKeySource::Run() {
    pollfd fds[2] = {{ConnectionNumber(display), POLLIN, 0}, {wakePipe[0], POLLIN, 0}};
    for (;;) {
        while (XPending(display) > 0) {
            XEvent event;
            XNextEvent(display, &event);
            XGenericEventCookie& cookie = event.xcookie;
            if (cookie.type != GenericEvent || cookie.extension != xiOpcode ||
                !XGetEventData(display, &cookie))
                continue;
            if (cookie.evtype == XI_RawKeyPress || cookie.evtype == XI_RawKeyRelease) {
                const auto* raw = static_cast<const XIRawEvent*>(cookie.data);
                poster.Post(cookie.evtype == XI_RawKeyPress, static_cast<uint32_t>(raw->detail));
            }
            XFreeEventData(display, &cookie);
        }
        if (poll(fds, 2, -1) < 0)
            continue;
        if (fds[1].revents != 0 || (fds[0].revents & (POLLHUP | POLLERR)) != 0)
            return;
    }
}
