#pragma once

#include "ui/Canvas.h"

#include <string>
#include <vector>

// One drawing call as recorded.
struct CanvasRecord {
    enum Kind { Fill, Frame, Line, Polyline, Polygon, RoundRect, Text, Repaint };
    Kind kind;
    Rect rect{};
    std::vector<Point2> points{};
    Color pen{};
    Color fill{};
    std::string text{};
    std::string font{};
    int32_t pointSize10 = 0;
    uint32_t flags = 0;
    int32_t ellipseWidth = 0;
    int32_t ellipseHeight = 0;
    bool operator==(const CanvasRecord&) const = default;
};

// A canvas that keeps every call in order, for the view to replay on the
// screen after the engine lock is let go, and for tests to compare. It
// allocates: only the GUI thread draws on it.
class RecordingCanvas : public Canvas {
  public:
    void FillRect(const Rect& r, Color fill) override {
        records.push_back(CanvasRecord{CanvasRecord::Fill, r, {}, {}, fill});
    }
    void FrameRect(const Rect& r, Color pen) override {
        records.push_back(CanvasRecord{CanvasRecord::Frame, r, {}, pen});
    }
    void DrawLine(Point2 from, Point2 to, Color pen) override {
        records.push_back(CanvasRecord{CanvasRecord::Line, {}, {from, to}, pen});
    }
    void Polyline(const Point2* p, int32_t n, Color pen) override {
        records.push_back(CanvasRecord{CanvasRecord::Polyline, {}, {p, p + n}, pen});
    }
    void Polygon(const Point2* p, int32_t n, Color pen, Color fill) override {
        records.push_back(CanvasRecord{CanvasRecord::Polygon, {}, {p, p + n}, pen, fill});
    }
    void RoundRect(const Rect& r, int32_t w, int32_t h, Color pen, Color fill) override {
        CanvasRecord record{CanvasRecord::RoundRect, r, {}, pen, fill};
        record.ellipseWidth = w;
        record.ellipseHeight = h;
        records.push_back(record);
    }
    void Text(const Rect& r, const char* text, Font font, uint32_t flags, Color color) override {
        CanvasRecord record{CanvasRecord::Text, r, {}, color};
        record.text = text;
        record.font = font.name;
        record.pointSize10 = font.pointSize10;
        record.flags = flags;
        records.push_back(record);
    }
    void RequestRepaint(const Rect& r) override {
        records.push_back(CanvasRecord{CanvasRecord::Repaint, r});
    }

    std::vector<CanvasRecord> records;
};
