#include "editing/SamplePanel.h"

#include "editing/Line.h"

#include <cstdio>

int32_t SamplePanel::CodeOf(int32_t row) {
    return row == 0 ? Line::VolumeCode : Line::FirstSampleVolume + row - 1;
}

void SamplePanel::AttachLine(Line* newLine) {
    if (attached)
        line->PanelDetached(this);
    newLine->PanelAttached(this);
    line = newLine;
    attached = 1;
    view->RefreshPanels();
    shown = 1;
}

void SamplePanel::OnOK() {
    if (attached)
        line->PanelDetached(this);
    attached = 0;
    shown = 0;
}

// The window stays on the screen, empty of commands, until "OK".
void SamplePanel::Forget(const Line* gone) {
    if (attached && line == gone) {
        attached = 0;
        line = nullptr;
    }
}

// A value below 0.6 stands at the slider's end, -4000.
void SamplePanel::RefreshPanel() {
    if (!attached)
        return;
    std::snprintf(rows[0].name.text, sizeof rows[0].name.text, "%s", line->name.c_str());
    for (int32_t s = 0; s < Line::MaxSamples; ++s)
        std::snprintf(rows[s + 1].name.text, sizeof rows[s + 1].name.text, "%s",
                      line->SampleName(s).c_str());
    for (int32_t r = 0; r < Rows; ++r) {
        const double v = line->GetValue(CodeOf(r));
        std::snprintf(rows[r].value.text, sizeof rows[r].value.text, "%f", v);
        const int32_t p = -10000 - static_cast<int32_t>(v * -10000.0);
        rows[r].position = p < SliderMinimum ? SliderMinimum : p;
    }
    rows[0].checked = line->audible == 0;
    for (int32_t s = 0; s < Line::MaxSamples; ++s)
        rows[s + 1].checked = line->sampleEnabled[Line::MaxSamples - 1 - s] == 0;
}

void SamplePanel::OnRelease(int32_t row, int32_t position) {
    if (!attached || row < 0 || row >= Rows)
        return;
    line->SetValue(CodeOf(row), (position + 10000) * 0.0001, 0);
    view->RefreshPanels();
}

void SamplePanel::OnSpin(int32_t row, bool up) {
    if (!attached || row < 0 || row >= Rows)
        return;
    line->SetValue(CodeOf(row), line->GetValue(CodeOf(row)), up ? 1 : -1);
    view->RefreshPanels();
}

void SamplePanel::OnCheck(int32_t row, bool checked) {
    if (!attached || row < 0 || row >= Rows)
        return;
    if (row == 0)
        checked ? line->Mute() : line->Unmute();
    else
        line->SetValue(CodeOf(row), 0, checked ? -2 : 2);
    view->RefreshPanels();
}

void SamplePanel::OnClear(int32_t slot) {
    if (!attached)
        return;
    line->RemoveSample(slot);
    view->RefreshPanels();
}
