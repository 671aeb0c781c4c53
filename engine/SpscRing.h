#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>

// A fixed ring of plain records between exactly one producer thread and one
// consumer thread. Neither side waits or allocates: Push fails when the ring
// is full and Pop fails when it is empty. Capacity is a power of two.
template <typename T, std::size_t Capacity> class SpscRing {
    static_assert(std::is_trivially_copyable_v<T>, "ring records cross threads as plain bytes");
    static_assert(Capacity >= 2 && (Capacity & (Capacity - 1)) == 0, "capacity is a power of two");

  public:
    // Producer thread only. False when the ring is full; the record is not stored.
    bool Push(const T& item) {
        const std::size_t tail = tailIndex.load(std::memory_order_relaxed);
        if (tail - headIndex.load(std::memory_order_acquire) == Capacity)
            return false;
        items[tail & (Capacity - 1)] = item;
        tailIndex.store(tail + 1, std::memory_order_release);
        return true;
    }

    // Consumer thread only. False when the ring is empty.
    bool Pop(T& item) {
        const std::size_t head = headIndex.load(std::memory_order_relaxed);
        if (head == tailIndex.load(std::memory_order_acquire))
            return false;
        item = items[head & (Capacity - 1)];
        headIndex.store(head + 1, std::memory_order_release);
        return true;
    }

    // Either thread; a snapshot that may be stale by the time it is read.
    bool Empty() const {
        return headIndex.load(std::memory_order_acquire) ==
               tailIndex.load(std::memory_order_acquire);
    }

  private:
    alignas(64) std::atomic<std::size_t> headIndex{0};
    alignas(64) std::atomic<std::size_t> tailIndex{0};
    T items[Capacity];
};
