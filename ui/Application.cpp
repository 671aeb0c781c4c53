#include "ui/Application.h"

#include "engine/AudioCallback.h"
#include "engine/ClockDisplay.h"
#include "engine/Engine.h"
#include "engine/EngineLock.h"
#include "engine/LinkSync.h"
#include "engine/OutputKeeper.h"
#include "engine/SoundSystem.h"
#include "engine/SyncSwitches.h"
#include "song/Instrument.h"
#include "ui/CMainFrame.h"
#include "ui/KeyFeed.h"
#include "ui/KeyMap.h"
#include "ui/MidiMenu.h"
#include "ui/SignalExit.h"
#include "ui/SoundStatus.h"
#include "ui/SyncMenu.h"
#include "ui/ViewWidget.h"

#include <QApplication>
#include <QFile>
#include <QStatusBar>
#include <csignal>
#include <cstdio>
#include <mutex>
#include <pthread.h>

namespace {

// The stop signals are taken by the window (SignalExit) on the GUI thread;
// every other thread, the audio threads among them, keeps them blocked.
void BlockStopSignals() {
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGINT);
    sigaddset(&stop, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stop, nullptr);
}

// Loads each named instrument file as the Load command does; a refused file
// is named with its reason and the others still load. A loaded instrument
// stands silent on its level slider until the performer moves it; the files
// named at start stand in for the program's first instrument, so they get
// its level and are heard at once.
void LoadNamedFiles(int argc, char** argv, ViewWidget& view, CMainFrame& frame) {
    for (int i = 1; i < argc; ++i) {
        if (!frame.LoadInstrumentPath(QFile::decodeName(argv[i])))
            continue;
        std::lock_guard<EngineMutex> guard(theEngineLock);
        view.View()->Current()->SetLevel(0, MainView::FirstInstrumentLevel);
    }
}

// The test hook of the save command: with OX_SAVE_AS set, the current
// instrument is saved there once at start, through the Save As command with
// the path in place of its dialog.
void SaveAsForTest(CMainFrame& frame) {
    const QString path = qEnvironmentVariable("OX_SAVE_AS");
    if (path.isEmpty())
        return;
    const InstrumentPrompts prompts = frame.instrumentPrompts;
    frame.instrumentPrompts.saveFile = [path](QWidget*) { return path; };
    frame.SaveAsCommand();
    frame.instrumentPrompts = prompts;
}

} // namespace

int RunApplication(int argc, char** argv) {
    BlockStopSignals();
    const SyncSwitches sync = TakeSyncSwitches(argc, argv);
    QApplication app(argc, argv);

    ViewWidget* view = new ViewWidget; // the frame owns it
    view->CreateView();
    CMainFrame frame(view, view);
    view->SetFrame(&frame);
    frame.setWindowTitle("oxbowlantern          Version 1.0 ");
    SignalExit signalExit(&frame);
    frame.show();

    theEngine = new Engine;
    KeyMap keyMap(theEngine, view->View());
    theEngine->SetKeyTarget(&keyMap);
    theClockDisplay = new ClockDisplay;
    theEngine->SetClockDisplay(theClockDisplay);
    if (sync.midiMapWithoutFile)
        std::fputs("oxbowlantern: --midi-map needs a file\n", stderr);
    SoundSystem* sounds = new SoundSystem;
    theSoundSystem = sounds;
    AudioCallback callback(theEngine, sounds->GetMixer());
    LinkSync link; // outlives the output that lays the ticks on it
    OutputKeeper output(callback);
    if (!output.Open()) {
        std::fprintf(stderr,
                     "oxbowlantern: no usable sound device (no JACK server, PulseAudio or "
                     "ALSA default output): %s\n",
                     output.Failure().c_str());
        return 255;
    }
    SoundStatus soundStatus(output, frame.statusBar());
    // A tempo taken from a shared session acts as a tempo command does.
    SyncMenu::Tempo tempo{[view] { return view->TempoStepMs(); },
                          [view, &frame](double stepMs) {
                              view->SetTempoAll(stepMs);
                              if (frame.barState == CMainFrame::TimersBarUp)
                                  frame.ShowTimersBar();
                          }};
    SyncMenu syncMenu(frame.syncMenu, sync, output, link, tempo);
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        theEngine->SetStartGate(link.Gate());
    }
    MidiMenu midiMenu(frame.syncMenu, syncMenu.link, syncMenu.clock, frame, keyMap, sync);
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        MainView* v = view->View();
        v->notationalFractions = 1;
        v->PushNotationalFractions();
        v->RegisterCurrentPlayhead();
        v->RefreshInstrument();
    }
    theEngine->SetKeyWake([](void* v) { static_cast<ViewWidget*>(v)->Wake(); }, view);
    KeyFeed keys(*theEngine);
    keys.Start();
    view->CreatePanels();
    LoadNamedFiles(argc, argv, *view, frame);
    SaveAsForTest(frame);

    const int code = app.exec();

    // No key reaches the queue once the engine is gone.
    keys.Stop();

    // The view removes every playhead and deletes every instrument before
    // the sound goes, and the sound before the engine.
    frame.close();
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        theEngine->SetKeyTarget(nullptr);
    }
    view->DeleteView();
    output.Close();
    theEngine->SetStartGate({});
    theSoundSystem = nullptr;
    delete sounds;
    delete theEngine;
    theEngine = nullptr;
    return code;
}
