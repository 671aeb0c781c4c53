#pragma once

#include <QLineEdit>
#include <QString>
#include <algorithm>
#include <cstdint>

// How the bars write the model's values into their fields. GUI thread only.

inline QString Int(int32_t value) {
    return QString::asprintf("%i", value);
}

inline QString Float(double value) {
    return QString::asprintf("%f", value);
}

// Shows the text from its start, as a read-only field does, wherever the
// cursor stood.
inline void SetField(QLineEdit* field, const QString& text) {
    field->setText(text);
    field->setCursorPosition(0);
}

// The tempo slider's position for a shown BPM: the value rounded to a float,
// times 100, truncated. The slider keeps its position within 3000..25000
// anyway; clamping before the conversion keeps the conversion defined for
// any tempo.
inline int TempoSliderPosition(double bpm) {
    return int(std::clamp(double(float(bpm)) * 100.0, 3000.0, 25000.0));
}
