#pragma once

#include <cstdint>

// Base of everything that stands in the view's stack of rows. The kind is a
// plain integer tested directly.
class Row {
  public:
    enum Kind : int32_t { LineRow = 3, SequencerRowKind = 4, PatternRowKind = 5 };

    explicit Row(int32_t kind) : type(kind) {}
    ~Row() = default;
    Row(const Row&) = delete;
    Row& operator=(const Row&) = delete;

    int32_t type;
    int32_t left = 0, top = 0, right = 0, bottom = 0;
};
