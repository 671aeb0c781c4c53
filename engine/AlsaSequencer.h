#pragma once

#include <alsa/asoundlib.h>

// Whether the ALSA sequencer can be opened. Asked before RtMidi is: RtMidi
// prints its own complaint when there is none, and the program says one
// line of its own instead. GUI thread.
inline bool AlsaSequencerPresent() {
    snd_seq_t* seq = nullptr;
    if (snd_seq_open(&seq, "default", SND_SEQ_OPEN_DUPLEX, 0) < 0)
        return false;
    snd_seq_close(seq);
    return true;
}
