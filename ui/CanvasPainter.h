#pragma once

#include "ui/RecordingCanvas.h"

#include <QFont>
#include <vector>

class QPainter;

// Replays the drawing calls that rows recorded on a RecordingCanvas with a
// QPainter, pixel for pixel as the rows mean them: fills and frames cover
// their rectangle without its right and bottom edges, lines and polylines
// stop one pixel short of their last point, text is clipped to its
// rectangle (or to the rectangle measured to it). Repaint requests are not drawing and are skipped.
// GUI thread only, without the engine lock: the records are a copy.
class CanvasPainter {
  public:
    explicit CanvasPainter(QPainter& painter);

    void Replay(const std::vector<CanvasRecord>& records);
    void Draw(const CanvasRecord& record);

    // The font for a name and a size in tenths of a point. "Times" reaches a
    // Times-compatible serif through Qt's font matching; "Small Fonts", a
    // font for tiny sizes, becomes a sans font drawn for small sizes. An empty
    // name is the canvas's current font.
    static QFont FontFor(const std::string& name, int32_t pointSize10);
    // The font that text in the current font is drawn with.
    static QFont CurrentQFont();

  private:
    void DrawPolyline(const std::vector<Point2>& points, Color pen);
    void DrawText(const CanvasRecord& record);

    QPainter& painter;
};
