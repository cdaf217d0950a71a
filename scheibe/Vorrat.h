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

// The same for a vector whose contents are about to be overwritten (stage
// storage, a copy's target): the old block is freed before the new one is
// taken, so that growing never holds both (for a large disc, the peak memory).
template <class V> void frischMitVorrat(V& v, std::size_t n) {
    if (v.capacity() < n) {
        V().swap(v);
        v.reserve(n + n / 8);
    }
}
