#pragma once

#include "song/SongFixture.h"
#include "ui/KeyMap.h"
#include "ui/MainView.h"
#include "ui/RecordingCanvas.h"

#include <vector>

// Records what the view asks of its window.
struct HostLog : ViewHost {
    void RequestRepaint() override { ++repaints; }
    void ScrollBarsChanged() override {}
    void AskFrame(FrameAsk ask, Line* line) override { asks.push_back({ask, line}); }
    int Count(FrameAsk ask) const {
        int n = 0;
        for (const auto& a : asks)
            n += a.first == ask;
        return n;
    }
    int repaints = 0;
    std::vector<std::pair<FrameAsk, Line*>> asks;
};

// A view over the fixture's engine, painted once at 1000 x 600, with the key
// map as the engine's key target.
struct ViewFixture {
    ViewFixture() : view(&host), keys(&song.engine, &view) {
        view.RegisterCurrentPlayhead();
        song.engine.SetKeyTarget(&keys);
        Paint();
    }
    void Paint(int32_t w = 1000, int32_t h = 600) {
        canvas.records.clear();
        view.Paint(canvas, w, h);
    }
    // Gives the current instrument lines, each with one sample.
    void AddLines(int n) {
        for (int i = 0; i < n; ++i)
            song.LoadSample(*view.Current(), -1);
        Paint();
    }
    SongFixture song; // the engine and the clock display the view uses
    HostLog host;
    MainView view;
    KeyMap keys;
    RecordingCanvas canvas;
};
