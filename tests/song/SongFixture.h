#pragma once

#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/MixerCommand.h"
#include "engine/SequencerRow.h"
#include "engine/SoundBuffer.h"
#include "song/Instrument.h"
#include "song/InstrumentView.h"
#include "song/PatternBank.h"

#include <memory>
#include <string>
#include <vector>

// Counts what instruments tell their view.
struct FakeView : InstrumentView {
    void RefreshInstrument() override { ++refreshes; }
    void PatternLengthChanged() override { ++lengthChanges; }
    void LineSelectionChanged(Line*) override {}
    void FocusSequencer(SequencerRow* s) override { focused = s; }
    void AddFocusSequencer(SequencerRow* s) override { added.push_back(s); }
    int refreshes = 0;
    int lengthChanges = 0;
    SequencerRow* focused = nullptr;
    std::vector<SequencerRow*> added;
};

// Instruments registered with an engine, their samples bound to voices of
// one command queue, and a record of every note started: (tick, voice).
class SongFixture {
  public:
    SongFixture() {
        theEngine = &engine;
        theClockDisplay = &clocks;
    }
    ~SongFixture() {
        for (auto& i : instruments)
            engine.RemovePlayhead(i->GetSchedule()->GetPlayhead());
        instruments.clear();
        theEngine = nullptr;
        theClockDisplay = nullptr;
    }

    // A new instrument at full level with one line, and one sample, for each
    // of `lines`.
    Instrument& AddInstrument(int lines) {
        instruments.push_back(std::make_unique<Instrument>(&view));
        Instrument& inst = *instruments.back();
        inst.SetNumber(static_cast<int32_t>(instruments.size()));
        inst.SetLevel(0, 1.0);
        for (int i = 0; i < lines; ++i)
            LoadSample(inst, -1);
        engine.AddPlayhead(inst.GetSchedule()->GetPlayhead());
        return inst;
    }

    // Loads a sample into a new line (line -1) or onto a line; returns its voice.
    int32_t LoadSample(Instrument& inst, int32_t line) {
        SoundBuffer* b = line < 0 ? inst.NewBufferForNewLine() : inst.NewBufferForLine(line);
        const int32_t voice = nextVoice++;
        b->SetLoaded(voice, &queue, "s" + std::to_string(voice), "/s.wav", 1000, 44100, 88200);
        b->MarkReady();
        return voice;
    }

    static PlayPoint Point(int32_t time, uint8_t line) {
        PlayPoint p{};
        p.time = time;
        p.line = line;
        return p;
    }

    // Stores a pattern of notes (time, line) under a pattern index.
    static void Store(Instrument& inst, int32_t index,
                      const std::vector<std::pair<int32_t, int>>& notes, int32_t units = 512) {
        PlayPointList list(units);
        for (auto [time, line] : notes)
            list.InsertOrReplace(Point(time, static_cast<uint8_t>(line)));
        inst.GetBank()->SetPattern(index, list);
    }

    // Runs ticks; notes are recorded with the tick they started in.
    void Ticks(int n) {
        for (int i = 0; i < n; ++i) {
            engine.OnTimer();
            MixerCommand c;
            while (queue.Pop(c))
                if (c.kind == MixerCommand::Play)
                    plays.emplace_back(tick, c.voice);
            ++tick;
        }
    }

    // Runs ticks and returns the pattern numbers the instrument played, one
    // entry each time the playing pattern changed (0: stopped).
    std::vector<int> Patterns(Instrument& inst, int ticks) {
        std::vector<int> seen{inst.GetBank()->playing + 1};
        for (int i = 0; i < ticks; ++i) {
            Ticks(1);
            const int now = inst.GetBank()->playing + 1;
            if (now != seen.back())
                seen.push_back(now);
        }
        return seen;
    }

    Engine engine;
    ClockDisplay clocks;
    MixerCommandQueue queue;
    FakeView view;
    std::vector<std::unique_ptr<Instrument>> instruments;
    int32_t nextVoice = 0;
    int64_t tick = 0;
    std::vector<std::pair<int64_t, int>> plays;
};
