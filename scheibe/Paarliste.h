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
template <class W> class Paarliste {
    static constexpr std::size_t blockBits = 10; // 1024 pairs per block
    static constexpr std::size_t block = std::size_t(1) << blockBits;

public:
    template <class L, class V> class Iterator {
    public:
        using iterator_category = std::forward_iterator_tag;
        using value_type = W;
        using difference_type = std::ptrdiff_t;
        using pointer = V*;
        using reference = V&;

        Iterator(L* liste, std::size_t i) : liste(liste), i(i) {}
        V& operator*() const { return liste->bloecke[i >> blockBits][i & (block - 1)]; }
        V* operator->() const { return &**this; }
        Iterator& operator++() {
            ++i;
            return *this;
        }
        bool operator==(const Iterator& o) const { return i == o.i; }
        bool operator!=(const Iterator& o) const { return i != o.i; }

    private:
        L* liste;
        std::size_t i;
    };
    using iterator = Iterator<Paarliste, W>;
    using const_iterator = Iterator<const Paarliste, const W>;

    // Appends a pair and returns it.
    W& emplace_back() {
        if (anzahl == bloecke.size() * block)
            bloecke.push_back(std::make_unique<W[]>(block));
        ++anzahl;
        return back();
    }
    void clear() { anzahl = 0; }
    std::size_t size() const { return anzahl; }
    bool empty() const { return anzahl == 0; }
    W& front() { return bloecke[0][0]; }
    W& back() { return bloecke[(anzahl - 1) >> blockBits][(anzahl - 1) & (block - 1)]; }
    iterator begin() { return {this, 0}; }
    iterator end() { return {this, anzahl}; }
    const_iterator begin() const { return {this, 0}; }
    const_iterator end() const { return {this, anzahl}; }

private:
    std::vector<std::unique_ptr<W[]>> bloecke;
    std::size_t anzahl = 0;
};
