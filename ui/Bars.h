#pragma once

#include "ui/BottomBar.h"

// The bottom bars of the frame, each with its controls at their rectangles.
// The fields are filled by the frame's Show... operations. The frame connects
// the commands of the timers bar, the view bar and the line bar's delete
// button and control group spin (ui/BarCommands.cpp), and of the line bar's
// filter spin and the note bar (ui/NoteBarCommands.cpp); the other controls
// stand in place and do nothing until their commands are connected, and
// "TOGGLE TAPPING" and "Done" never have one. Controls that a bar only holds
// hidden and without any function are left out; the note bar's pitch slider
// stays, hidden, because ShowNoteBar fills it. GUI thread only.

// The view's settings: name column, slots, zooms, notation.
class ViewBar : public BottomBar {
  public:
    explicit ViewBar(QWidget* parent);

    QPushButton* okButton;
    QLineEdit* splitField;
    QPushButton* narrowerButton;
    QPushButton* widerButton;
    QLineEdit* linesField;
    QPushButton* moreSlotsButton;
    QPushButton* fewerSlotsButton;
    QLineEdit* zoom1Field;
    SpinArrows* zoom1Spin;
    QLineEdit* zoom2Field;
    SpinArrows* zoom2Spin;
    QLineEdit* zoom3Field;
    SpinArrows* zoom3Spin;
    QPushButton* maxZoom3Button;
    QCheckBox* fractionsCheck;
};

// Tempo and the nudges of all playheads.
class TimersBar : public BottomBar {
  public:
    explicit TimersBar(QWidget* parent);

    SpinArrows* skipHalfSpin;
    SpinArrows* skipEighthSpin;
    SpinArrows* skipTickSpin;
    SpinArrows* bpmSpin;
    QLineEdit* bpmField;
    SpinArrows* fineTempoSpin;
    QSlider* tempoSlider;
};

// One line, or several highlighted lines.
class LineBar : public BottomBar {
  public:
    explicit LineBar(QWidget* parent);

    QLineEdit* nameField;
    QLineEdit* filterField;
    SpinArrows* filterSpin;
    QPushButton* deleteButton;
    QLineEdit* controlGroupField;
    SpinArrows* controlGroupSpin;
};

// The current instrument: name, control groups, file, nudges.
class InstrumentBar : public BottomBar {
  public:
    explicit InstrumentBar(QWidget* parent);

    QLineEdit* nameField;
    QPushButton* changeNameButton;
    QLineEdit* controlsField;
    SpinArrows* controlsSpin;
    QPushButton* saveButton;
    QPushButton* saveAsButton;
    QPushButton* closeButton;
    SpinArrows* nudgeStepSpin;
    SpinArrows* nudgeQuarterSpin;
    SpinArrows* nudgeEighthSpin;
    SpinArrows* nudgeSixteenthSpin;
    SpinArrows* nudgeTouchSpin;
};

// The pattern on display: store, restore, clear, length, repeats.
class PatternBar : public BottomBar {
  public:
    explicit PatternBar(QWidget* parent);

    QLineEdit* patternField;
    QCheckBox* saveOnSwitchCheck;
    QPushButton* saveButton;
    QPushButton* restoreButton;
    QPushButton* clearButton;
    QLineEdit* lengthField;
    SpinArrows* lengthSpin;
    QPushButton* doubleButton;
    QLineEdit* repeatField;
    SpinArrows* repeatSpin;
};

// The values of one note: a line's default note or the first selected one.
class NoteBar : public BottomBar {
  public:
    explicit NoteBar(QWidget* parent);

    QLineEdit* titleField;
    QLineEdit* sampleLengthField;
    QSlider* volumeSlider;
    QLineEdit* volumeField;
    SpinArrows* volumeSpin;
    QLineEdit* toeInField;
    QSlider* toeInSlider;
    SpinArrows* toeInSpin;
    QLineEdit* lengthField;
    QSlider* lengthSlider;
    SpinArrows* lengthSpin;
    QSlider* panSlider;
    QPushButton* zeroButton;
    QSlider* pitchSlider;
};
