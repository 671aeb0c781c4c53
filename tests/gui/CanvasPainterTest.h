#pragma once

#include <QObject>

// The replay of recorded drawing on an image: which pixels each kind of
// record covers, the text placement flags and the fonts.
class CanvasPainterTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void pixels_data();
    void pixels();
    void textPlacement_data();
    void textPlacement();
    void textIsClipped();
    void opaqueText();
    void fittedText();
    void repaintDrawsNothing();
    void fonts_data();
    void fonts();
};
