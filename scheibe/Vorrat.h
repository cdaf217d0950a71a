#pragma once

#include <cstddef>

// Grows a vector's capacity ahead of need: when n does not fit, room for an
// eighth more is reserved. The pair index and the cell table follow the
// disc's pair count and extent, which drift from step to step; with the
// margin a run reaches its steady state (no heap allocation per step) after
// a few steps instead of reallocating at every new maximum.
template <class V> void mitVorrat(V& v, std::size_t n) {
    if (v.capacity() < n)
        v.reserve(n + n / 8);
}
