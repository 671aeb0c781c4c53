#include "ui/ScanCodes.h"

#include "engine/Engine.h"

namespace {

constexpr uint32_t EvdevOffset = 8;
constexpr uint32_t LastPlainEvdev = 88; // F12; 1..88 equal their scan codes

struct Extended {
    uint32_t evdev;
    uint32_t scanCode;
};

constexpr Extended ExtendedKeys[] = {
    {96, 156},  // numpad Enter
    {97, 157},  // right Control
    {98, 181},  // numpad divide
    {100, 184}, // right Alt
    {102, 199}, // Home
    {103, 200}, // Up
    {104, 201}, // Page Up
    {105, 203}, // Left
    {106, 205}, // Right
    {107, 207}, // End
    {108, 208}, // Down
    {109, 209}, // Page Down
    {110, 210}, // Insert
    {111, 211}, // Delete
};

} // namespace

uint32_t ScanCodeFromNative(uint32_t nativeScanCode) {
    if (nativeScanCode <= EvdevOffset)
        return 0;
    const uint32_t evdev = nativeScanCode - EvdevOffset;
    if (evdev <= LastPlainEvdev)
        return evdev;
    for (const Extended& key : ExtendedKeys)
        if (key.evdev == evdev)
            return key.scanCode;
    return 0;
}

void KeyPoster::Post(bool pressed, uint32_t nativeScanCode) {
    const uint32_t code = ScanCodeFromNative(nativeScanCode);
    if (code == 0 || down.test(code) == pressed)
        return;
    down.set(code, pressed);
    engine.PostKey(pressed ? 1 : 0, code);
}

void KeyPoster::ReleaseHeld() {
    for (uint32_t code = 1; code < down.size(); ++code)
        if (down.test(code)) {
            down.reset(code);
            engine.PostKey(0, code);
        }
}
