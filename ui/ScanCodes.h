#pragma once

#include <bitset>
#include <cstdint>

class Engine;

// The key position as a DirectInput scan code from the native scan code of
// X11 and Wayland (the Linux evdev code + 8). The main block, the numpad and
// F1 to F12 keep their evdev numbers; the extended keys (right Control and
// Alt, the arrows, the editing block, numpad Enter and divide) have their own.
// 0 for any other key: it has no position the key map knows.
uint32_t ScanCodeFromNative(uint32_t nativeScanCode);

// One key source's way into the engine's key queue: translates the native
// scan code, drops what is not a new press or release, and posts the rest.
// A held key gives exactly one press and one release: a press of a key
// already down (an auto-repeat, or one event seen twice) and a release of a
// key not down are dropped. The engine's queue has one producer, so one
// poster is used, by one thread, at a time.
class KeyPoster {
  public:
    explicit KeyPoster(Engine& engine) : engine(engine) {}

    void Post(bool pressed, uint32_t nativeScanCode);

    // Posts a release for every key still down, for when the keys stop
    // reaching the program while some are held.
    void ReleaseHeld();

  private:
    Engine& engine;
    std::bitset<256> down;
};
