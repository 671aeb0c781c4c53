#pragma once

#include <atomic>
#include <mutex>
#include <thread>

// The one lock that guards all model and engine state: instruments, lists,
// schedules, line tables, highlight lists, sequencer state. The GUI thread
// holds it around each model operation, for microseconds, never across I/O,
// a dialog or painting pixels. The audio thread only ever tries it
// (try_lock), never blocks on it.
//
// A thread that holds the lock in a tight loop could take it back before a
// trying tick ever sees it free. So the audio thread announces a tick while
// it tries, and lock() on any other thread lets such a tick go first: it
// waits while a tick is announced, and if a tick was announced just as it
// took the lock, it lets go again at once.
class EngineMutex {
  public:
    // Any thread but the audio thread: waits for an announced tick, then locks.
    void lock() {
        for (;;) {
            while (tickWaiting.load(std::memory_order_acquire))
                std::this_thread::yield();
            mutex.lock();
            if (!tickWaiting.load(std::memory_order_acquire))
                return;
            mutex.unlock();
        }
    }
    void unlock() { mutex.unlock(); }
    bool try_lock() { return mutex.try_lock(); }

    // Audio thread: raised while a tick retries try_lock, lowered after.
    void AnnounceTick(bool waiting) { tickWaiting.store(waiting, std::memory_order_release); }

  private:
    std::mutex mutex;
    std::atomic<bool> tickWaiting{false};
};

inline EngineMutex theEngineLock;
