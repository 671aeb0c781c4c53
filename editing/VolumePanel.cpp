#include "editing/VolumePanel.h"

#include "editing/Line.h"
#include "song/Instrument.h"

#include <algorithm>
#include <cstdio>

namespace {

int32_t Trunc(double v) {
    return static_cast<int32_t>(v);
}

void Put(PanelText& to, const char* text) {
    std::snprintf(to.text, sizeof to.text, "%s", text);
}

const char* LineTitle(int32_t code) {
    static const char* const titles[] = {"Vol", "Pch", "Pan", "Len", "Toe"};
    return titles[code - 1];
}

} // namespace

VolumePanel::VolumePanel(PanelView* v, bool linePanel) : view(v), isLinePanel(linePanel ? 1 : 0) {}

void VolumePanel::ResetList() {
    listCount = 0;
    rowCount = 0;
}

void VolumePanel::AddInstrument(Instrument* instrument) {
    if (isLinePanel || listCount >= MaxInstruments)
        return;
    for (int32_t i = 0; i < listCount; ++i)
        if (instruments[i] == instrument)
            return;
    instruments[listCount++] = instrument;
    Rebuild();
    RefreshPanel();
}

void VolumePanel::AddLine(Line* line, int32_t multi) {
    if (!isLinePanel || listCount >= MaxLines)
        return;
    lines[listCount++] = line;
    showControls = multi == 0 ? 1 : 0;
    Rebuild();
}

void VolumePanel::ToggleControls() {
    showControls = showControls != 0 ? 0 : 1;
    Rebuild();
}

// Gives out the next row, if one is left.
bool VolumePanel::AddRow(int32_t& given, Line* line, Instrument* instrument, int32_t code,
                         const char* label) {
    if (given == MaxRows)
        return false;
    PanelRow& row = rows[given++];
    row.line = line;
    row.instrument = instrument;
    row.code = code;
    Put(row.label, label);
    if (isLinePanel) {
        Put(row.title, LineTitle(code));
        Put(row.checkText, LineTitle(code));
    } else {
        if (code == 1)
            Put(row.title, "Vol");
        else
            std::snprintf(row.title.text, sizeof row.title.text, "C%i", code - 10);
        Put(row.checkText, "mute");
    }
    row.minimum = 0;
    row.maximum = 4000;
    if (isLinePanel && code == Line::PitchCode)
        row.maximum = 2000;
    else if (isLinePanel && code == Line::PanCode)
        row.minimum = -100, row.maximum = 100;
    else if (isLinePanel && code >= Line::LengthCode)
        row.maximum = 10000;
    return true;
}

// An entry whose rows do not all fit is dropped whole.
void VolumePanel::Rebuild() {
    int32_t given = 0;
    int32_t instrumentsGiven = 0;
    const char* lastLine = "";
    for (int32_t i = 0; i < listCount; ++i) {
        const int32_t start = given;
        bool fits;
        if (isLinePanel) {
            Line* line = lines[i];
            fits = AddRow(given, line, nullptr, 1, line->name.c_str());
            for (int32_t code = 2; fits && showControls && code <= 5; ++code)
                fits = AddRow(given, line, nullptr, code, "");
            if (fits)
                lastLine = line->name.c_str();
        } else {
            Instrument* inst = instruments[i];
            fits = AddRow(given, nullptr, inst, 1, inst->displayName.c_str());
            for (int32_t k = 1; fits && showControls && k <= inst->GetControlCount(); ++k)
                fits = AddRow(given, nullptr, inst, 10 + k, "");
            instrumentsGiven += fits ? 1 : 0;
        }
        if (!fits) {
            given = start;
            break;
        }
    }
    rowCount = static_cast<uint8_t>(given);
    shownRows = given;
    LayOut();
    if (isLinePanel)
        std::snprintf(caption.text, sizeof caption.text, "    %s", lastLine);
    else
        std::snprintf(caption.text, sizeof caption.text, "    %i Instruments", instrumentsGiven);
    RefreshPanel();
}

void VolumePanel::SetClientSize(int32_t w, int32_t h) {
    width = w;
    height = h;
    LayOut();
}

void VolumePanel::LayOut() {
    for (int32_t i = 0; i < rowCount; ++i) {
        const int32_t x = RowWidth * i;
        if (x + RowWidth < width - ButtonWidth)
            rows[i].left = x;
    }
}

double VolumePanel::ValueOf(const PanelRow& row) const {
    if (isLinePanel)
        return row.line->GetValue(row.code);
    if (row.code == 1)
        return row.instrument->level;
    return row.instrument->groupLevels[row.code - 11];
}

void VolumePanel::RefreshPanel() {
    for (int32_t i = 0; i < rowCount; ++i) {
        PanelRow& row = rows[i];
        row.name = row.code == 1 ? row.label : row.title; // a group's label is its title
        const double v = ValueOf(row);
        int32_t p = 10000 - Trunc(v * 10000.0);
        double shown = v;
        if (isLinePanel && row.code == Line::PitchCode)
            p = 1000 - Trunc(v * -1000.0);
        else if (isLinePanel && row.code == Line::PanCode)
            p = Trunc(v * 100.0);
        else if (isLinePanel && row.code == Line::LengthCode) {
            shown = v == 0.0 ? 1.0 : v;
            p = Trunc(shown * -10000.0);
        } else if (isLinePanel && row.code == Line::ToeInCode)
            p = Trunc((1.0 - v) * 10000.0);
        row.position = p;
        if (isLinePanel && row.code == Line::ToeInCode)
            std::snprintf(row.value.text, sizeof row.value.text, "%ims", Trunc(v * 10000.0));
        else
            std::snprintf(row.value.text, sizeof row.value.text, "%f", shown);
        row.checked = !isLinePanel && row.instrument->on == 0;
    }
}

void VolumePanel::SetTop(const PanelRow& row, double value) {
    row.instrument->SetLevel(row.code == 1 ? 0 : row.code - 10, value);
}

void VolumePanel::OnRelease(int32_t r, int32_t p) {
    if (r < 0 || r >= rowCount)
        return;
    const PanelRow& row = rows[r];
    if (!isLinePanel) {
        SetTop(row, (10000 - p) * 0.0001);
    } else {
        double value = (10000 - p) * 0.0001;
        if (row.code == Line::PitchCode)
            value = (p - 1000) * 0.001;
        else if (row.code == Line::PanCode)
            value = p * 0.01;
        else if (row.code == Line::LengthCode)
            value = p == 0 ? 0.0 : 1.0 + p * 0.0001;
        row.line->SetValue(row.code, value, 0);
    }
    view->RefreshPanels();
}

void VolumePanel::OnSpin(int32_t r, bool up, int32_t p) {
    if (r < 0 || r >= rowCount)
        return;
    const PanelRow& row = rows[r];
    if (isLinePanel) {
        row.line->SetValue(row.code, row.line->GetValue(row.code), up ? 1 : -1);
    } else {
        const double v = (10000 - p) * 0.0001 + (up ? 0.01 : -0.01);
        SetTop(row, std::clamp(v, 0.0, 1.0));
    }
    view->RefreshPanels();
}

// In the popup panel the box has no command; the refresh sets it back.
void VolumePanel::OnCheck(int32_t r, bool checked) {
    if (r < 0 || r >= rowCount)
        return;
    if (!isLinePanel) {
        if (checked)
            rows[r].instrument->Mute();
        else
            rows[r].instrument->Unmute();
    }
    view->RefreshPanels();
}
