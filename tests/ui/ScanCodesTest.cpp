#include "ui/ScanCodes.h"

#include <gtest/gtest.h>

namespace {

struct Translation {
    const char* key;
    uint32_t native; // X11 / Wayland: evdev + 8
    uint32_t scanCode;
};

class ScanCodes : public testing::TestWithParam<Translation> {};

TEST_P(ScanCodes, NativeToKeyPosition) {
    EXPECT_EQ(ScanCodeFromNative(GetParam().native), GetParam().scanCode) << GetParam().key;
}

INSTANTIATE_TEST_SUITE_P(
    Keys, ScanCodes,
    testing::Values(
        // The main block and F1..F12 keep the evdev number.
        Translation{"Escape", 9, 1}, Translation{"top-row 1", 10, 2},
        Translation{"top-row 0", 19, 11}, Translation{"grave", 49, 41},
        Translation{"Enter", 36, 28}, Translation{"left Control", 37, 29},
        Translation{"left Shift", 50, 42}, Translation{"right Shift", 62, 54},
        Translation{"Space", 65, 57}, Translation{"F5", 71, 63}, Translation{"F12", 96, 88},
        // The numpad digits are other keys than the top-row digits.
        Translation{"numpad 7", 79, 71}, Translation{"numpad 1", 87, 79},
        Translation{"numpad 0", 90, 82}, Translation{"numpad period", 91, 83},
        Translation{"numpad asterisk", 63, 55}, Translation{"numpad plus", 86, 78},
        // Extended keys.
        Translation{"numpad Enter", 104, 156}, Translation{"right Control", 105, 157},
        Translation{"numpad divide", 106, 181}, Translation{"right Alt", 108, 184},
        Translation{"Home", 110, 199}, Translation{"Up", 111, 200},
        Translation{"Page Up", 112, 201}, Translation{"Left", 113, 203},
        Translation{"Right", 114, 205}, Translation{"End", 115, 207}, Translation{"Down", 116, 208},
        Translation{"Page Down", 117, 209}, Translation{"Insert", 118, 210},
        Translation{"Delete", 119, 211},
        // No position: no native code, below the offset, unlisted keys.
        Translation{"none", 0, 0}, Translation{"evdev 0", 8, 0}, Translation{"KP Jp comma", 103, 0},
        Translation{"Sys Rq", 107, 0}, Translation{"Pause", 127, 0},
        Translation{"left Meta", 133, 0}, Translation{"huge", 70000, 0}));

} // namespace
