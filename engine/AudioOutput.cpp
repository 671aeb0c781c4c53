#include "engine/AudioOutput.h"

#include <cstdio>

std::string DescribeDevice(const std::string& system, int32_t rate, int32_t period) {
    char ms[32];
    std::snprintf(ms, sizeof ms, "%.1f", rate > 0 ? 1000.0 * period / rate : 0.0);
    return system + ", " + std::to_string(rate) + " Hz, " + std::to_string(period) + " frames (" +
           ms + " ms)";
}
