#pragma once

#include <cstdint>

// Receives the clock values of the running instruments every 32nd tick.
// Audio thread: Update must not wait, allocate or call the GUI toolkit; the
// screen side copies the values and draws them on its own thread.
class ClockDisplay {
  public:
    virtual ~ClockDisplay() = default;
    virtual void Update(const int32_t* measures, const int32_t* beats, const int32_t* instrumentIds,
                        int32_t n) = 0;
};
