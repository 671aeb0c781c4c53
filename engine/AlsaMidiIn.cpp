#include "engine/AlsaMidiIn.h"

#include "engine/Engine.h"

#include "engine/AlsaSequencer.h"

#include <RtMidi.h>

AlsaMidiIn::AlsaMidiIn() = default;

AlsaMidiIn::~AlsaMidiIn() {
    Close();
}

bool AlsaMidiIn::Open(Engine& target) {
    if (in != nullptr)
        return true;
    engine = &target;
    if (!AlsaSequencerPresent()) {
        failure = "no ALSA sequencer for MIDI input";
        return false;
    }
    try {
        in = std::make_unique<RtMidiIn>(RtMidi::LINUX_ALSA, "oxbowlantern");
        // SysEx and active sensing are of no use here; the clock is.
        in->ignoreTypes(true, false, true);
        in->setCallback(OnMessage, this);
        in->openVirtualPort("midi in");
    } catch (const RtMidiError& e) {
        in.reset();
        failure = "no ALSA sequencer for MIDI input: " + e.getMessage();
        return false;
    }
    return true;
}

void AlsaMidiIn::Close() {
    // Closing the port joins RtMidi's thread, the one that calls OnMessage.
    in.reset();
}

// RtMidi's thread: whole messages, which the parser checks as it would a
// stream.
void AlsaMidiIn::OnMessage(double, std::vector<unsigned char>* bytes, void* arg) {
    AlsaMidiIn& self = *static_cast<AlsaMidiIn*>(arg);
    MidiMessage message{};
    for (const unsigned char byte : *bytes)
        if (self.parser.Feed(byte, message))
            self.engine->PostMidi(Engine::MidiFromAlsa, -1, message);
}
