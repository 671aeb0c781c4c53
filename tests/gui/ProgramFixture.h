#pragma once

#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/SoundSystem.h"
#include "ui/CMainFrame.h"
#include "ui/ViewWidget.h"

// The program's services, view and frame as the application sets them up,
// without a sound device: the three globals point at them while it lives.
struct ProgramFixture {
    ProgramFixture() {
        theEngine = &engine;
        theClockDisplay = &clocks;
        theSoundSystem = &sounds;
        view = new ViewWidget;
        view->CreateView();
        frame = new CMainFrame(view, view);
        view->SetFrame(frame);
        frame->show();
    }
    ~ProgramFixture() {
        delete frame; // and the view with every instrument
        theSoundSystem = nullptr;
        theClockDisplay = nullptr;
        theEngine = nullptr;
    }
    ProgramFixture(const ProgramFixture&) = delete;
    ProgramFixture& operator=(const ProgramFixture&) = delete;

    Engine engine;
    ClockDisplay clocks;
    SoundSystem sounds;
    ViewWidget* view;
    CMainFrame* frame;
};
