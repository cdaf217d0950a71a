#pragma once

#include "scheibe/Paarliste.h"

#include <cstddef>
#include <cstdint>

// The pairs of one particle: its list in the disc's pair list, which is
// shared by a disc and its copies and rebuilt at every pair search, so a
// view is valid until the next force_init of a disc that shares the list.
// Copying a particle copies the view: the copy lists the same pairs. W is
// the pair type of the disc class.
template <class W> class PaarSicht {
public:
    std::size_t size() const { return liste ? liste->anzahl(platz) : 0; }
    bool empty() const { return size() == 0; }
    // The particle's slot in the grid, and the slot of its k-th partner.
    std::uint32_t slot() const { return platz; }
    std::uint32_t partner(std::size_t k) const {
        const auto& b = liste->block(platz);
        return b.partner[liste->erster(platz) + k] & ~Partnerliste::naehert;
    }
    Partnerliste* paarliste() const { return liste; }

    void clear() { liste = nullptr; }
    void zeige(Partnerliste* l, std::uint32_t s) {
        liste = l;
        platz = s;
    }

private:
    Partnerliste* liste = nullptr;
    std::uint32_t platz = 0;
};
