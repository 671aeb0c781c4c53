#include "ui/Bars.h"

#include <QSlider>

ViewBar::ViewBar(QWidget* parent) : BottomBar("viewBar", 519, parent) {
    okButton = AddButton("OK", 11, 3, 50, 14);
    AddLabel("Split:", 69, 3, 19, 11);
    splitField = AddField("splitField", 90, 3, 26, 12);
    narrowerButton = AddButton("<", 122, 3, 13, 13);
    widerButton = AddButton(">", 138, 3, 13, 13);
    AddLabel("Lines:", 161, 3, 21, 12);
    linesField = AddField("linesField", 185, 3, 27, 12);
    moreSlotsButton = AddButton("+", 219, 3, 22, 10);
    fewerSlotsButton = AddButton("---", 219, 14, 22, 10);
    AddLabel("Zoom 1:", 251, 3, 28, 11);
    zoom1Field = AddField("zoom1Field", 251, 14, 23, 12);
    zoom1Spin = AddSpin("zoom1Spin", Qt::Vertical, 283, 3, 11, 24);
    AddLabel("Zoom 2:", 305, 3, 28, 11);
    zoom2Field = AddField("zoom2Field", 307, 14, 23, 12);
    zoom2Spin = AddSpin("zoom2Spin", Qt::Vertical, 337, 3, 11, 24);
    AddLabel("Zoom 3:", 359, 3, 28, 10);
    zoom3Field = AddField("zoom3Field", 359, 15, 23, 12);
    zoom3Spin = AddSpin("zoom3Spin", Qt::Vertical, 391, 3, 11, 24);
    maxZoom3Button = AddButton("max\nzm3", 405, 5, 19, 19);
    fractionsCheck = AddCheck("Notational Fractions", 441, 3, 76, 13);
}

TimersBar::TimersBar(QWidget* parent) : BottomBar("timersBar", 526, parent) {
    AddLabel("TIMERS:", 4, 1, 33, 9);
    AddButton("TOGGLE TAPPING", 55, 1, 65, 20);
    AddButton("Done", 124, 1, 22, 20);
    AddLabel("Skip Half", 150, 1, 30, 14);
    skipHalfSpin = AddSpin("skipHalfSpin", Qt::Vertical, 183, 1, 11, 28);
    AddLabel("Skip 8th", 195, 10, 27, 9);
    skipEighthSpin = AddSpin("skipEighthSpin", Qt::Vertical, 224, 1, 11, 28);
    skipTickSpin = AddSpin("skipTickSpin", Qt::Vertical, 244, 1, 11, 28);
    AddLabel("<--1/64", 255, 9, 26, 10);
    AddLabel("+1 bpm", 263, 1, 24, 9);
    AddLabel("-1 bpm", 258, 18, 29, 11);
    bpmSpin = AddSpin("bpmSpin", Qt::Vertical, 290, 1, 11, 28);
    AddLabel("BPM", 304, 1, 18, 10);
    bpmField = AddField("bpmField", 303, 13, 42, 12);
    fineTempoSpin = AddSpin("fineTempoSpin", Qt::Vertical, 347, 1, 11, 28);
    tempoSlider = AddSlider("tempoSlider", 362, 1, 149, 28);
}

LineBar::LineBar(QWidget* parent) : BottomBar("lineBar", 530, parent) {
    AddLabel("LINE:", 4, 2, 37, 9);
    nameField = AddField("nameField", 44, 2, 132, 12);
    AddCheck("Disabled", 19, 16, 49, 11);
    AddLabel("Playpoint Filter:", 67, 17, 53, 10);
    filterField = AddField("filterField", 120, 15, 60, 12);
    filterSpin = AddSpin("filterSpin", Qt::Horizontal, 183, 15, 25, 12);
    deleteButton = AddButton("Delete Line(s)", 256, 11, 57, 16);
    AddLabel("Control Group:", 437, 2, 46, 11);
    controlGroupField = AddField("controlGroupField", 439, 15, 42, 12);
    controlGroupSpin = AddSpin("controlGroupSpin", Qt::Vertical, 487, 2, 11, 25);
}

InstrumentBar::InstrumentBar(QWidget* parent) : BottomBar("instrumentBar", 759, parent) {
    AddLabel("INSTRUMENT:", 4, 2, 58, 11);
    nameField = AddField("nameField", 63, 2, 175, 12);
    changeNameButton = AddButton("Change Name", 4, 12, 51, 15);
    AddLabel("Num Controls:", 65, 17, 49, 10);
    controlsField = AddField("controlsField", 117, 15, 27, 12);
    controlsSpin = AddSpin("controlsSpin", Qt::Horizontal, 150, 15, 26, 12);
    saveButton = AddButton("SAVE", 253, 2, 47, 12);
    saveAsButton = AddButton("SAVE AS", 307, 2, 45, 13);
    closeButton = AddButton("CLOSE", 358, 2, 47, 12);
    AddLabel("Nudge 1 Step:", 427, 6, 57, 11);
    nudgeStepSpin = AddSpin("nudgeStepSpin", Qt::Vertical, 490, 2, 22, 17);
    AddLabel("1/4th", 515, 6, 19, 12);
    nudgeQuarterSpin = AddSpin("nudgeQuarterSpin", Qt::Vertical, 535, 2, 22, 17);
    AddLabel("1/8th", 563, 6, 19, 15);
    nudgeEighthSpin = AddSpin("nudgeEighthSpin", Qt::Vertical, 586, 2, 22, 17);
    AddLabel("1/16th", 611, 6, 22, 14);
    nudgeSixteenthSpin = AddSpin("nudgeSixteenthSpin", Qt::Vertical, 636, 2, 22, 17);
    AddLabel("Touch", 661, 6, 22, 14);
    nudgeTouchSpin = AddSpin("nudgeTouchSpin", Qt::Vertical, 687, 2, 22, 17);
}

PatternBar::PatternBar(QWidget* parent) : BottomBar("patternBar", 475, parent) {
    AddLabel("PATTERN:", 2, 2, 48, 10);
    patternField = AddField("patternField", 54, 2, 29, 9);
    saveOnSwitchCheck = AddCheck("Save on switch", 12, 17, 68, 9);
    saveButton = AddButton("SAVE", 85, 5, 45, 19);
    restoreButton = AddButton("RESTORE", 148, 5, 45, 19);
    clearButton = AddButton("CLEAR", 209, 5, 45, 19);
    AddLabel("Length of Pattern (measures) :", 259, 4, 102, 11);
    lengthField = AddField("lengthField", 363, 4, 26, 11);
    lengthSpin = AddSpin("lengthSpin", Qt::Vertical, 397, 2, 19, 20);
    doubleButton = AddButton("2X", 427, 5, 27, 15);
    AddLabel("Repeat", 275, 17, 25, 9);
    repeatField = AddField("repeatField", 303, 16, 18, 10);
    repeatSpin = AddSpin("repeatSpin", Qt::Horizontal, 325, 16, 24, 10);
}

NoteBar::NoteBar(QWidget* parent) : BottomBar("noteBar", 518, parent) {
    titleField = AddField("titleField", 7, 2, 57, 10);
    sampleLengthField = AddField("sampleLengthField", 7, 13, 55, 11);
    volumeSlider = AddSlider("volumeSlider", 66, 2, 99, 16);
    AddLabel("Volume", 66, 19, 24, 9);
    volumeField = AddField("volumeField", 93, 19, 38, 9);
    volumeSpin = AddSpin("volumeSpin", Qt::Horizontal, 133, 19, 32, 9);
    AddLabel("Toe-in", 170, 2, 24, 9);
    toeInField = AddField("toeInField", 197, 2, 46, 12);
    toeInSlider = AddSlider("toeInSlider", 247, 2, 78, 12);
    toeInSpin = AddSpin("toeInSpin", Qt::Horizontal, 330, 2, 21, 12);
    AddLabel("Length", 171, 17, 24, 11);
    lengthField = AddField("lengthField", 197, 15, 46, 12);
    lengthSlider = AddSlider("lengthSlider", 247, 16, 78, 12);
    lengthSpin = AddSpin("lengthSpin", Qt::Horizontal, 330, 17, 21, 11);
    AddLabel("Pan", 362, 18, 19, 10);
    panSlider = AddSlider("panSlider", 390, 15, 49, 11);
    zeroButton = AddButton("Zero", 443, 15, 22, 12);
    pitchSlider = AddSlider("pitchSlider", 0, 0, 0, 0);
    pitchSlider->hide();
}
