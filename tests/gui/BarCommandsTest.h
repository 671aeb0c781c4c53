#pragma once

#include "ProgramFixture.h"

#include <memory>

#include <QObject>

class CMainFrame;
class ClockDisplay;
class Engine;
class SoundSystem;
class ViewWidget;

// The commands of the timers bar, the view bar and Load Waves, on the real
// view and its model: what each control does to the model and what the bar
// shows afterwards.
class BarCommandsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void tempoControl_data();
    void tempoControl();
    void viewBarControls_data();
    void viewBarControls();
    void fractionsCheck();
    void loadWaves();
    void saveOnSwitchShown();

  private:
    std::unique_ptr<ProgramFixture> program;
    ViewWidget* view = nullptr;
    CMainFrame* frame = nullptr;
};
