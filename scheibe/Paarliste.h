#pragma once

#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

// The pair list of an SPH disc: pairs in the order they were appended, at
// addresses that stay valid while pairs are appended (particles keep
// pointers to them). clear() keeps the storage: the pairs of the next
// evaluation reuse the same objects, with their arrays, so a force
// evaluation in the steady state allocates nothing. A reused pair keeps the
// values of its last use in the fields that every pass computes before
// reading them; the pair search overwrites all the others.
//
// Storage grows in blocks of 64, 128, ... up to 8192 pairs, so a small disc
// builds few pairs and a large one few blocks.
template <class W> class Paarliste {
    static std::size_t groesse(std::size_t block) {
        return block < 7 ? std::size_t(64) << block : std::size_t(8192);
    }

public:
    template <class L, class V> class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = W;
        using difference_type = std::ptrdiff_t;
        using pointer = V*;
        using reference = V&;

        Iterator(L* liste, std::size_t i) : liste(liste), i(i) {}
        V& operator*() const { return liste->bloecke[block][stelle]; }
        V* operator->() const { return &**this; }
        Iterator& operator++() {
            ++i;
            if (++stelle == groesse(block)) {
                ++block;
                stelle = 0;
            }
            return *this;
        }
        bool operator==(const Iterator& o) const { return i == o.i; }
        bool operator!=(const Iterator& o) const { return i != o.i; }

    private:
        L* liste;
        std::size_t i, block = 0, stelle = 0; // index, and where it lies
    };
    using iterator = Iterator<Paarliste, W>;
    using const_iterator = Iterator<const Paarliste, const W>;

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
        letztes = &bloecke[block][stelle++];
        return *letztes;
    }
    void clear() {
        anzahl = 0;
        block = 0;
        stelle = 0;
    }
    std::size_t size() const { return anzahl; }
    bool empty() const { return anzahl == 0; }
    W& front() { return bloecke[0][0]; }
    W& back() { return *letztes; }
    iterator begin() { return {this, 0}; }
    iterator end() { return {this, anzahl}; }
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, anzahl}; }

private:
    std::vector<std::unique_ptr<W[]>> bloecke;
    std::size_t anzahl = 0;
    std::size_t block = 0, stelle = 0; // where the next pair goes
    W* letztes = nullptr;
};
