#include "engine/AlsaClockOut.h"

#include "engine/AlsaSequencer.h"

#include <RtMidi.h>
#include <time.h>

namespace {

// Sleeps until ns on the steady clock (CLOCK_MONOTONIC on Linux).
void SleepUntil(int64_t ns) {
    timespec until{};
    until.tv_sec = static_cast<time_t>(ns / 1000000000);
    until.tv_nsec = static_cast<long>(ns % 1000000000);
    while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &until, nullptr) != 0) {
    }
}

} // namespace

AlsaClockOut::AlsaClockOut() = default;

AlsaClockOut::~AlsaClockOut() {
    Close();
}

bool AlsaClockOut::Open() {
    if (out != nullptr)
        return true;
    if (!AlsaSequencerPresent()) {
        failure = "no ALSA sequencer for MIDI clock";
        return false;
    }
    try {
        out = std::make_unique<RtMidiOut>(RtMidi::LINUX_ALSA, "oxbowlantern");
        out->openVirtualPort("midi out");
    } catch (const RtMidiError& e) {
        out.reset();
        failure = "no ALSA sequencer for MIDI clock: " + e.getMessage();
        return false;
    }
    running.store(true, std::memory_order_release);
    sender = std::thread([this] { Run(); });
    return true;
}

void AlsaClockOut::Close() {
    if (out == nullptr)
        return;
    running.store(false, std::memory_order_release);
    wake.release();
    sender.join();
    Due dropped{};
    while (queue.Pop(dropped)) {
    }
    out.reset();
}

void AlsaClockOut::Queue(int64_t dueNs, uint8_t byte) {
    if (queue.Push(Due{dueNs, byte}))
        wake.release();
}

// The sender's thread: one wake-up for each byte queued.
void AlsaClockOut::Run() {
    for (;;) {
        wake.acquire();
        if (!running.load(std::memory_order_acquire))
            return;
        Due due{};
        if (!queue.Pop(due))
            continue;
        SleepUntil(due.ns);
        try {
            out->sendMessage(&due.byte, 1);
        } catch (const RtMidiError&) {
            // A port that went away loses the pulse; the next one tries again.
        }
    }
}
