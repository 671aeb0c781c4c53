#pragma once

#include <cstdint>

struct Rect {
    int32_t left, top, right, bottom;
    bool Contains(int32_t x, int32_t y) const {
        return x >= left && x < right && y >= top && y < bottom;
    }
    bool operator==(const Rect&) const = default;
};

struct Point2 {
    int32_t x, y;
    bool operator==(const Point2&) const = default;
};

// An RGB colour; `none` marks a shape drawn without fill or without outline.
struct Color {
    uint8_t r, g, b;
    bool none = false;
    bool operator==(const Color&) const = default;
};

inline constexpr Color White{255, 255, 255};
inline constexpr Color Gray{200, 200, 200};
inline constexpr Color Black{0, 0, 0};
inline constexpr Color NoColor{0, 0, 0, true};

// A font by family name and size in tenths of a point. An empty name is the
// canvas's current font.
struct Font {
    const char* name;
    int32_t pointSize10;
};
inline constexpr Font CurrentFont{"", 0};

// Text placement flags; combine with |. Without a flag text stands top left,
// wraps at the rectangle's right edge and is clipped to the rectangle.
enum TextFlags : uint32_t {
    TextLeft = 0,
    TextCenter = 0x1,  // centred across
    TextVCenter = 0x4, // centred down (single line only)
    TextBottom = 0x8,  // at the bottom (single line only)
    TextSingleLine = 0x20,
    TextOpaque = 0x1000, // the text's own extent is filled white behind it
    // The rectangle is measured to the text from its top left corner, as
    // wide and as tall as one line of it, before it is filled and drawn; the
    // text is then clipped to that, not to the rectangle given.
    TextFitted = 0x2000,
};

// What the rows draw on. The view lets rows record on it while it holds the
// engine lock and replays the records on the screen after letting go; tests
// record and compare. RequestRepaint asks for a rectangle to be drawn anew
// and may be called by whoever holds the engine lock, the tick included.
class Canvas {
  public:
    virtual ~Canvas() = default;
    virtual void FillRect(const Rect& r, Color fill) = 0;
    virtual void FrameRect(const Rect& r, Color pen) = 0;
    virtual void DrawLine(Point2 from, Point2 to, Color pen) = 0;
    virtual void Polyline(const Point2* points, int32_t n, Color pen) = 0;
    virtual void Polygon(const Point2* points, int32_t n, Color pen, Color fill) = 0;
    virtual void RoundRect(const Rect& r, int32_t ellipseWidth, int32_t ellipseHeight, Color pen,
                           Color fill) = 0;
    virtual void Text(const Rect& r, const char* text, Font font, uint32_t flags, Color color) = 0;
    virtual void RequestRepaint(const Rect& r) = 0;
};
