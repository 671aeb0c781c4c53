#pragma once

#include <QFont>
#include <QRect>

// Dialog units to pixels, for the layouts of the bars and dialogs. A dialog
// unit is a quarter of the average character width and an eighth of the
// character height of the 8-point dialog font: at 96 dpi, 1.5 pixels across
// and 1.625 down. Qt lays widgets out in device-independent pixels of 96 to
// the inch and scales them to the screen itself, so these factors hold on
// every screen. Each value is converted on its own and rounded half up, so a
// control's size does not depend on where it stands. Any thread.

inline int DluToPixelsX(int x) {
    return (x * 3 + 1) / 2;
}

inline int DluToPixelsY(int y) {
    return (y * 13 + 4) / 8;
}

// A rectangle given as left, top, width and height in dialog units.
inline QRect DluRect(int x, int y, int width, int height) {
    return QRect(DluToPixelsX(x), DluToPixelsY(y), DluToPixelsX(width), DluToPixelsY(height));
}

// The 8-point sans font of the bars and dialogs, which the dialog units are
// measured in. Liberation Sans has the widths of the font the layouts were
// made for, so the labels fit their rectangles.
inline QFont DialogFont() {
    QFont font(QStringLiteral("Liberation Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPointSize(8);
    return font;
}
