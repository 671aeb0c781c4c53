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
    void SetTempoAll(double ms) override { stepMs = ms; }
    void SkipAll(int32_t) override {}
    void SetSplit(double split) override { view.split = split; }
    void SetSlotCount(int32_t count) override { view.slotCount = count; }
    void ChangeZoom(int32_t, int32_t) override {}
    bool FlipNotationalFractions() override { return view.notationalFractions ^= true; }
    void DeleteHighlighted() override { calls << "DeleteHighlighted"; }
    void StepControlGroup(int32_t direction) override {
        calls << QString("StepControlGroup %1").arg(direction);
        line.controlGroup += direction;
    }
    int32_t ControlGroup() override { return line.controlGroup; }
    void SetFilter(int32_t value) override {
        calls << QString("SetFilter %1").arg(value);
        multiFilter = filterAfterSet;
    }
    int32_t SetNoteValue(int32_t code, int16_t value) override {
        calls << QString("SetNoteValue %1 %2").arg(code).arg(value);
        return longestMs;
    }
    WaveStatus LoadWaveAsLine(const std::string& path, const std::string&) override {
        calls << QString("LoadWaveAsLine %1").arg(QString::fromStdString(path));
        return WaveStatus::Ok;
    }

    WaveStatus LoadWaveIntoLine(Line*, const std::string& path, const std::string&,
                                bool& full) override {
        calls << QString("LoadWaveIntoLine %1").arg(QString::fromStdString(path));
        full = false;
        return WaveStatus::Ok;
    }
    Line* SamplePanelLine() override { return nullptr; }
    DropPlace DropPlaceAt(int32_t, int32_t, Line*& l) override {
        l = nullptr;
        return DropPlace::Nothing;
    }
    void LoadInstrumentFile(const std::string& path, std::vector<MissingWave>&) override {
        calls << QString("LoadInstrumentFile %1").arg(QString::fromStdString(path));
    }
    Instrument* CurrentInstrument() override { return nullptr; }
    std::string InstrumentName() override { return instrument.name; }
    void EndRename(const std::string* name) override {
        calls << (name != nullptr ? QString("EndRename %1").arg(QString::fromStdString(*name))
                                  : QString("EndRename"));
    }
    void InstrumentSpin(int32_t control, int32_t direction) override {
        calls << QString("InstrumentSpin %1 %2").arg(control).arg(direction);
    }
    void PatternCommand(PatternAction action) override {
        calls << QString("PatternCommand %1").arg(static_cast<int>(action));
    }
    void SetSaveOnSwitch(bool on) override { pattern.saveOnSwitch = on; }

    QStringList calls;
    ViewBarFields view{0.225, 5, 4, 32, -1, true};
    double stepMs = 500.0;
    LineBarFields line{"Kick", "Quarter Notes", -2};
    std::string multiFilter = "Eighth Notes";
    std::string filterAfterSet = "16th Notes";
    int32_t longestMs = 2000; // -1: no target line
    InstrumentBarFields instrument{"Inst 1", 1};
    PatternBarFields pattern{0, 2, 1, true};
    NoteBarFields note{PlayPoint{0, 0, 0, 0, 0, 0, 0, 0}, 1000};
};
