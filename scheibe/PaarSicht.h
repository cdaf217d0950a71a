#pragma once

#include <cstddef>
#include <cstdint>

// The pairs of one particle: its stretch of the disc's flat pair index, a
// run of pair pointers in pair-list order. The index belongs to the pair
// list (shared by a disc and its copies) and is rebuilt at every pair
// search, so a view is valid until the next force_init of a disc that shares
// the list, like the pair pointers it holds. Copying a particle copies the
// view: the copy lists the same pairs.
template <class W> class PaarSicht {
public:
    W* const* begin() const { return anfang; }
    W* const* end() const { return anfang + anzahl; }
    std::size_t size() const { return anzahl; }
    bool empty() const { return anzahl == 0; }
    W* operator[](std::size_t i) const { return anfang[i]; }

    void clear() {
        anfang = nullptr;
        anzahl = 0;
    }
    void zeige(W* const* a, std::size_t n) {
        anfang = a;
        anzahl = static_cast<std::uint32_t>(n);
    }

private:
    W* const* anfang = nullptr;
    std::uint32_t anzahl = 0;
};
