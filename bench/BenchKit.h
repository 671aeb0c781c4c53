#pragma once

#include "engine/MixerCommand.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"

// Gives an instrument `lines` lines bound to voices of one command queue, and
// a first pattern of `points` notes spread evenly over four measures, then
// starts that pattern. voice counts on across instruments.
inline void FillAndStart(Instrument& inst, int lines, int points, MixerCommandQueue& queue,
                         int32_t& voice) {
    for (int l = 0; l < lines; ++l) {
        SoundBuffer* b = inst.NewBufferForNewLine();
        b->SetLoaded(voice++, &queue, "s", "/s.wav", 1000, 44100, 88200);
        b->MarkReady();
    }
    PlayPointList pattern(1024);
    for (int p = 0; p < points; ++p) {
        PlayPoint point{};
        point.time = p * 1024 / points;
        point.line = static_cast<uint8_t>(p % lines);
        pattern.Insert(point);
    }
    inst.GetBank()->SetPattern(0, pattern);
    inst.GetSequencer()->Restart();
}
