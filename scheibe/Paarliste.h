#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <vector>

// Storage for the pairs that one slab of the cell grid finds: pairs in the
// order they were appended, at addresses that stay valid while pairs are
// appended. clear() keeps the storage, so the pairs of the next evaluation
// reuse the same records and a force evaluation in the steady state
// allocates nothing. A reused pair keeps the values of its last use in the
// fields that every pass computes before reading them; the pair search
// overwrites all the others.
//
// Storage grows in blocks of 64, 128, ... up to 8192 pairs, so a small disc
// builds few pairs and a large one few blocks.
template <class W> class Paarspeicher {
    static std::size_t groesse(std::size_t block) {
        return block < 7 ? std::size_t(64) << block : std::size_t(8192);
    }

public:
    // Appends a pair and returns it.
    W& emplace_back() {
        if (stelle == groesse(block) || bloecke.empty()) {
            if (!bloecke.empty())
                ++block;
            stelle = 0;
            if (block == bloecke.size())
                bloecke.push_back(std::make_unique<W[]>(groesse(block)));
        }
        ++anzahl;
        return bloecke[block][stelle++];
    }
    void clear() {
        anzahl = 0;
        block = 0;
        stelle = 0;
    }
    std::size_t size() const { return anzahl; }

    // Calls f(pair) for every pair in order.
    template <class F> void fuer_alle(F f) {
        std::size_t rest = anzahl;
        for (std::size_t b = 0; rest > 0; ++b) {
            const std::size_t n = rest < groesse(b) ? rest : groesse(b);
            W* p = bloecke[b].get();
            for (std::size_t k = 0; k < n; ++k)
                f(p[k]);
            rest -= n;
        }
    }
    W& an(std::size_t i) {
        std::size_t b = 0;
        while (i >= groesse(b)) {
            i -= groesse(b);
            ++b;
        }
        return bloecke[b][i];
    }
    // Pair k of block b (b < number of blocks, k < groesse(b)).
    W& an(std::size_t b, std::size_t k) { return bloecke[b][k]; }
    static std::size_t blockgroesse(std::size_t b) { return groesse(b); }

private:
    std::vector<std::unique_ptr<W[]>> bloecke;
    std::size_t anzahl = 0;
    std::size_t block = 0, stelle = 0; // where the next pair goes
};

// The pair list of an SPH disc. The pair search runs over slabs of cell
// planes, one slab per thread; each slab appends to its own storage, and the
// list is the slabs' pairs joined in slab order, which is the order of a
// search over all planes. Beside the pairs it keeps the flat index through
// which every particle lists its own pairs (pointers in pair-list order):
// index[start[i] .. start[i + 1]) for particle i.
template <class W> class Paarliste {
public:
    std::vector<Paarspeicher<W>> teile;   // pairs of each slab, in slab order
    std::vector<W*> index;                // every particle's pairs, particle after particle
    std::vector<std::size_t> start;       // particle i's pairs begin at index[start[i]]
    std::vector<std::vector<std::uint32_t>> zaehler; // per slab: pairs of each particle
    std::vector<int> grenzen;             // first cell plane of each slab, and the end
    std::vector<std::size_t> blocksumme;  // scratch of the running sums

    // Empties the list into `n` slabs (storage is kept).
    void beginne(std::size_t n) {
        if (teile.size() < n)
            teile.resize(n);
        if (zaehler.size() < n)
            zaehler.resize(n);
        for (auto& t : teile)
            t.clear();
        slabs = n;
    }
    void clear() { beginne(slabs); }
    std::size_t anzahlTeile() const { return slabs; }

    std::size_t size() const {
        std::size_t n = 0;
        for (std::size_t t = 0; t < slabs; ++t)
            n += teile[t].size();
        return n;
    }
    bool empty() const { return size() == 0; }
    W& front() { return teile[erstesBelegtes()].an(0); }

    // Every pair in list order.
    template <class F> void fuer_alle(F f) {
        for (std::size_t t = 0; t < slabs; ++t)
            teile[t].fuer_alle(f);
    }

    // Forward iteration in list order (tests and tools; the passes use fuer_alle).
    class iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = W;
        using difference_type = std::ptrdiff_t;
        using pointer = W*;
        using reference = W&;
        iterator(Paarliste* l, std::size_t t) : l(l), t(t) { weiter(); }
        W& operator*() const { return l->teile[t].an(b, k); }
        W* operator->() const { return &**this; }
        iterator& operator++() {
            ++i;
            if (++k == Paarspeicher<W>::blockgroesse(b)) {
                ++b;
                k = 0;
            }
            weiter();
            return *this;
        }
        bool operator==(const iterator& o) const { return t == o.t && i == o.i; }
        bool operator!=(const iterator& o) const { return !(*this == o); }

    private:
        // Past the end of a slab's pairs: on to the next slab that has any.
        void weiter() {
            while (t < l->slabs && i == l->teile[t].size()) {
                ++t;
                i = b = k = 0;
            }
        }
        Paarliste* l;
        std::size_t t, i = 0, b = 0, k = 0; // slab, index in it, block and place
    };
    iterator begin() { return {this, 0}; }
    iterator end() { return {this, slabs}; }

private:
    std::size_t erstesBelegtes() const {
        std::size_t t = 0;
        while (t + 1 < slabs && teile[t].size() == 0)
            ++t;
        return t;
    }
    std::size_t slabs = 0;
};
