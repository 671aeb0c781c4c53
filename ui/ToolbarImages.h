#pragma once

#include <QPixmap>
#include <QString>

// The toolbar images, drawn at run time so that no bitmap files are needed.
// GUI thread only.

// A command button of 122 x 31 pixels with its label drawn on a raised face.
QPixmap CommandButtonImage(const QString& label);

// The stock buttons of 16 x 15 pixels.
enum class StockImage { Cut, Copy, Paste, Print, About };
QPixmap StockButtonImage(StockImage which);
