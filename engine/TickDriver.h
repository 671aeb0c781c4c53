#pragma once

#include "engine/Engine.h"
#include "engine/EngineLock.h"

#include <cstdint>
#include <mutex>

// Runs ticks by hand, each under the engine lock, as the audio clock would.
// For tests, benchmarks and offline work on one thread.
class TickDriver {
  public:
    explicit TickDriver(Engine& e) : engine(e) {}

    void Run(int64_t ticks) {
        for (int64_t i = 0; i < ticks; ++i) {
            std::lock_guard<EngineMutex> guard(theEngineLock);
            engine.OnTimer();
        }
    }

  private:
    Engine& engine;
};
