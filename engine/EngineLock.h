#pragma once

#include <mutex>

// The one mutex that guards all model and engine state: instruments, lists,
// schedules, line tables, highlight lists, sequencer state. The GUI thread
// holds it around each model operation, for microseconds, never across I/O, a
// dialog or painting pixels. The audio thread only ever takes it with try_lock.
inline std::mutex theEngineLock;
