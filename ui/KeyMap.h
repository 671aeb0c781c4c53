#pragma once

#include "engine/Engine.h"

#include <cstdint>

class MainView;

// The map of keys: what each key position does on press and release, by
// what is highlighted (nothing, a line, or sequencers). The engine hands it
// each key event in the tick. Audio thread, engine lock held: every call it
// makes is a model operation, and window work is only asked for through the
// view's host.
class KeyMap : public KeyTarget {
  public:
    // Key positions, as the keyboard's scan codes number them.
    enum Key : uint32_t {
        Escape = 1,
        Digit1 = 2,
        Digit0 = 11,
        Minus = 12,
        Equals = 13,
        Back = 14,
        Tab = 15,
        T = 20,
        I = 23,
        Return = 28,
        LControl = 29,
        S = 31,
        Grave = 41,
        LShift = 42,
        Backslash = 43,
        X = 45,
        C = 46,
        V = 47,
        B = 48,
        RShift = 54,
        Multiply = 55,
        Space = 57,
        F5 = 63,
        F8 = 66,
        Numpad7 = 71,
        Numpad8 = 72,
        Numpad9 = 73,
        Numpad4 = 75,
        Numpad5 = 76,
        Numpad6 = 77,
        Add = 78,
        Numpad1 = 79,
        Numpad2 = 80,
        Numpad3 = 81,
        Numpad0 = 82,
        Decimal = 83,
        RControl = 157,
        Up = 200,
        Left = 203,
        Right = 205,
        Down = 208,
    };

    KeyMap(Engine* engine, MainView* view) : engine(engine), view(view) {}

    void OnKey(uint8_t pressed, uint32_t scanCode) override;

    // The digit 1 to 9 of a numpad key, 0 for any other key.
    static int32_t NumpadDigit(uint32_t scanCode);

    uint8_t shiftDown = 0;
    uint8_t controlDown = 0;
    uint8_t popupShown = 0;

  private:
    void PressAlways(uint32_t code);
    void PressNothingHighlighted(uint32_t code);
    void PressLine(uint32_t code);
    void PressSequencers(uint32_t code);
    void PressLast(uint32_t code);
    void Release(uint32_t code);
    void ForEachSequencer(void (*action)(class SequencerRow*, uint32_t), uint32_t code);

    Engine* engine;
    MainView* view;
};
