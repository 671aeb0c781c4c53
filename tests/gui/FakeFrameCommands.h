#pragma once

#include "ui/FrameCommands.h"

#include <QStringList>

// A model stand-in for the frame: answers with the values set in its fields
// and writes down every command it receives.
class FakeFrameCommands : public FrameCommands {
  public:
    void NewInstrument() override { calls << "NewInstrument"; }
    void CloseInstrument() override { calls << "CloseInstrument"; }
    void SetViewMode(int32_t mode) override { calls << QString("SetViewMode %1").arg(mode); }

    ViewBarFields ViewBarValues() override { return view; }
    double TempoStepMs() override { return stepMs; }
    LineBarFields LineBarValues(Line*) override { return line; }
    std::string MultiLineFilterText() override { return multiFilter; }
    InstrumentBarFields InstrumentBarValues() override { return instrument; }
    PatternBarFields PatternBarValues() override { return pattern; }
    NoteBarFields NoteBarValues(Line*, bool) override { return note; }

    QStringList calls;
    ViewBarFields view{0.225, 5, 4, 32, -1, true};
    double stepMs = 500.0;
    LineBarFields line{"Kick", "Quarter Notes", -2};
    std::string multiFilter = "Eighth Notes";
    InstrumentBarFields instrument{"Inst 1", 1};
    PatternBarFields pattern{0, 2, 1, true};
    NoteBarFields note{PlayPoint{0, 0, 0, 0, 0, 0, 0, 0}, 1000};
};
