#pragma once

#include "scheibe/Faeden.h"
#include "scheibe/Vorrat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

// Cell grid of an SPH disc with nx * ny * nz cells of edge h. At each
// evaluation the particles are sorted by cell (stably, so within a cell they
// keep the order of the particle vector) and their positions and velocities
// copied next to each other: the pair search then reads contiguous memory
// instead of chasing particle pointers.
//
// Up to 2^24 cells, or 32 cells per particle (128 bytes of table per
// particle), the grid keeps a table of every cell's slots. A smoothing length
// far below the box (a slip in the parameter file) would make that table
// unallocatable; such a grid keeps only its occupied cells, in (i, j, k)
// order, and finds a neighbour by binary search. Both forms visit the same
// cells in the same order, so the pairs are the same.
template <class T> class Gitter {
public:
    using Index = std::array<int, 3>; // (i, j, k)

    int nx = 0, ny = 0, nz = 0; // cells per axis
    bool dicht = true;          // table of all cells (else: occupied cells only)
    // Planes i0 .. i0 + ni - 1 of the dense table: all of them, except for a
    // process of a distributed run, whose particles and ghosts fill only the
    // planes around its slab.
    int i0 = 0, ni = 0;

    // Dense grid: the particles of cell c are at slots anfang[c] .. anfang[c + 1] - 1.
    std::vector<std::uint32_t> anfang;
    // Sparse grid: the occupied cells in (i, j, k) order with their slots.
    struct Zelle {
        Index ijk;
        std::uint32_t anfang, ende;
    };
    std::vector<Zelle> belegt;

    std::vector<double> x, y, z;      // positions, by slot
    std::vector<double> vx, vy, vz;   // velocities, by slot
    std::vector<std::uint32_t> index; // index in the particle vector, by slot
    std::vector<std::uint32_t> slot;  // slot of each particle, by index
    std::vector<Index> ijk;           // cell of each slot

    // Lays out nx * ny * nz cells for a disc of `teilchen` particles.
    void anlegen(int nx_, int ny_, int nz_, std::size_t teilchen = 0) {
        nx = nx_;
        ny = ny_;
        nz = nz_;
        const double zellen = double(nx) * double(ny) * double(nz);
        dicht = zellen <= double(1 << 24) || zellen <= 32.0 * double(teilchen);
        ebenen(0, nx - 1);
        std::fill(anfang.begin(), anfang.end(), 0u);
    }

    // Lays the dense table over planes von .. bis only: every particle
    // binned next lies in them, and so do the cells around the particles
    // whose partners are sought.
    void ebenen(int von, int bis) {
        i0 = von;
        ni = bis - von + 1;
        if (dicht) {
            const std::size_t n = std::size_t(ni) * std::size_t(ny) * std::size_t(nz) + 1;
            if (anfang.capacity() > 2 * n)
                std::vector<std::uint32_t>().swap(anfang); // the whole grid's table, given back
            mitVorrat(anfang, n);
            anfang.resize(n); // counted anew by the next fuellen
        }
    }

    // Index of cell (i, j, k) in the dense table.
    std::size_t zelle(int i, int j, int k) const {
        return (std::size_t(i - i0) * std::size_t(ny) + std::size_t(j)) * std::size_t(nz) +
               std::size_t(k);
    }

    // Sorts the particles into the cells; zelleVon(t) gives a particle's (i, j, k).
    template <class Z> void fuellen(std::vector<T>& alle, Z zelleVon) {
        fuellen(
            alle.size(), [&](std::size_t p) { return zelleVon(alle[p]); },
            [&](std::size_t p) { return std::pair(alle[p].r.data(), alle[p].v.data()); }, nullptr);
    }

    // Sorts n particles into the cells: zelleVon(p) gives particle p's
    // (i, j, k), lage(p) pointers to its position and velocity. Within a
    // cell the particles come in the order `folge` lists them (null: p = 0,
    // 1, ...), the order of the particles of a distributed run's own slab
    // and its ghosts merged by global index.
    template <class Z, class L>
    void fuellen(std::size_t n, Z zelleVon, L lage, const std::uint32_t* folge) {
        for (auto* a : {&x, &y, &z, &vx, &vy, &vz})
            a->resize(n);
        index.resize(n);
        slot.resize(n);
        ijk.resize(n);
        if (dicht)
            sortiereDicht(n, zelleVon, lage, folge);
        else
            sortiereDuenn(n, zelleVon, lage, folge);
    }

    // Calls f(a, e) for runs of slots a .. e-1 that, one after the other,
    // hold every slot q that the search of all home cells compares with slot
    // x, in the order in which those comparisons come in the search (see
    // suche). The home cells that reach x's cell come in (i, j, k) order:
    // first the 13 before it, each of which compares its own particles with
    // x; then x's cell itself, if it is a home cell, with its other
    // particles in cell order (a cell pairs m < n, so x comes after its
    // earlier and before its later particles); then its 13 forward
    // neighbours in the order of the half shell. So x's partners come in
    // pair-list order, found from x's side alone.
    //
    // Slots are laid out in (i, j, k) order, so the cells k0 .. k1 of one
    // column (i, j) hold one run of slots: the 27 cells come as 10 runs.
    template <class F> void partnerBereiche(std::uint32_t x, F f) const {
        const auto [i, j, k] = ijk[x];
        auto innen = [](int a, int n) { return a >= 1 && a <= n - 2; };
        // The cells k0 .. k1 of column (a, b), if any.
        auto saeule = [&](int a, int b, int k0, int k1) {
            if (k0 > k1)
                return;
            const auto [pa, pe] = bereich(a, b, k0, k1);
            if (pa != pe)
                f(pa, pe);
        };
        // Cells k-1 .. k+1 of a column of home cells: those within the home range.
        const int h0 = std::max(k - 1, 1), h1 = std::min(k + 1, nz - 2);
        for (int a = -1, b = -1; b <= 1; ++b)
            if (innen(i + a, nx) && innen(j + b, ny))
                saeule(i + a, j + b, h0, h1);
        if (innen(i, nx) && innen(j - 1, ny))
            saeule(i, j - 1, h0, h1);
        const bool heim = innen(i, nx) && innen(j, ny) && innen(k, nz);
        if (!heim) {
            // Only the cell below can be a home cell that reaches x.
            if (innen(i, nx) && innen(j, ny) && innen(k - 1, nz))
                saeule(i, j, k - 1, k - 1);
            return;
        }
        // The cell below (if a home cell), x's own cell without x, the cell above.
        const std::uint32_t unten = bereich(i, j, h0, k).first;
        const std::uint32_t oben = bereich(i, j, k, k + 1).second;
        if (unten != x)
            f(unten, x);
        if (x + 1 != oben)
            f(x + 1, oben);
        saeule(i, j + 1, k - 1, k + 1);
        for (int b = -1; b <= 1; ++b)
            saeule(i + 1, j + b, k - 1, k + 1);
    }

    // Calls paar(p, q, s, s2) for every two slots closer than sqrt(h2)
    // (strictly), with s = position of q - position of p and s2 = |s|^2.
    // Each home cell (all but the border cells) is compared with itself and
    // its 13 forward neighbours, in this order: itself (p before q in the
    // cell), (i, j, k+1), (i, j+1, k-1..k+1), (i+1, j-1..j+1, k-1..k+1); for a
    // neighbour cell p runs over the neighbour's particles and q over the
    // home cell's. Every pair of home-cell particles is visited once.
    template <class Paar> void suche(double h2, Paar paar) const {
        const int i0 = 1, i1 = nx - 2;
        const double *px = x.data(), *py = y.data(), *pz = z.data();
        auto kandidat = [&](std::uint32_t p, std::uint32_t q) {
            const double s[3] = {px[q] - px[p], py[q] - py[p], pz[q] - pz[p]};
            const double s2 = s[0] * s[0] + s[1] * s[1] + s[2] * s[2];
            if (s2 < h2)
                paar(p, q, s, s2);
        };
        auto heimzelle = [&](int i, int j, int k, std::uint32_t a, std::uint32_t e) {
            for (std::uint32_t m = a; m < e; ++m)
                for (std::uint32_t n = m + 1; n < e; ++n)
                    kandidat(m, n);
            auto nachbar = [&](int ni, int nj, int nk) {
                const auto [pa, pe] = bereich(ni, nj, nk);
                for (std::uint32_t p = pa; p < pe; ++p)
                    for (std::uint32_t q = a; q < e; ++q)
                        kandidat(p, q);
            };
            nachbar(i, j, k + 1);
            for (int c = -1; c <= 1; ++c)
                nachbar(i, j + 1, k + c);
            for (int b = -1; b <= 1; ++b)
                for (int c = -1; c <= 1; ++c)
                    nachbar(i + 1, j + b, k + c);
        };
        if (dicht) {
            for (int i = std::max(i0, this->i0); i <= std::min(i1, this->i0 + ni - 1); ++i)
                for (int j = 1; j <= ny - 2; ++j)
                    for (int k = 1; k <= nz - 2; ++k) {
                        const std::size_t c = zelle(i, j, k);
                        if (anfang[c] != anfang[c + 1])
                            heimzelle(i, j, k, anfang[c], anfang[c + 1]);
                    }
        } else {
            for (auto c = ersteZelle(i0); c != belegt.end() && c->ijk[0] <= i1; ++c) {
                const auto [i, j, k] = c->ijk;
                if (j >= 1 && j <= ny - 2 && k >= 1 && k <= nz - 2)
                    heimzelle(i, j, k, c->anfang, c->ende);
            }
        }
    }

private:
    // Sparse grid: the first occupied cell of plane i or beyond.
    typename std::vector<Zelle>::const_iterator ersteZelle(int i) const {
        return std::lower_bound(belegt.begin(), belegt.end(), i,
                                [](const Zelle& c, int e) { return c.ijk[0] < e; });
    }

    std::vector<std::size_t> zelleVonSlot; // dense: cell of each particle, by index
    std::vector<std::uint32_t> blocksumme; // dense: scratch of the running sums
    std::vector<std::pair<Index, std::uint32_t>> nachZelle; // sparse: (cell, particle)

    // Slots of the cells (i, j, k0) .. (i, j, k1), consecutive in (i, j, k)
    // order and so in slot order; empty when they hold no particle.
    std::pair<std::uint32_t, std::uint32_t> bereich(int i, int j, int k0, int k1) const {
        if (dicht)
            return {anfang[zelle(i, j, k0)], anfang[zelle(i, j, k1) + 1]};
        auto ab = [&](const Index& g) {
            auto it = std::lower_bound(belegt.begin(), belegt.end(), g,
                                       [](const Zelle& c, const Index& g) { return c.ijk < g; });
            return it == belegt.end() ? std::uint32_t(x.size()) : it->anfang;
        };
        return {ab({i, j, k0}), ab({i, j, k1 + 1})};
    }

    std::pair<std::uint32_t, std::uint32_t> bereich(int i, int j, int k) const {
        if (dicht) {
            const std::size_t c = zelle(i, j, k);
            return {anfang[c], anfang[c + 1]};
        }
        const Index gesucht{i, j, k};
        auto it = std::lower_bound(belegt.begin(), belegt.end(), gesucht,
                                   [](const Zelle& c, const Index& g) { return c.ijk < g; });
        if (it == belegt.end() || it->ijk != gesucht)
            return {0, 0};
        return {it->anfang, it->ende};
    }

    template <class L> void setze(std::uint32_t s, L& lage, std::size_t p, const Index& c) {
        const auto [r, v] = lage(p);
        ijk[s] = c;
        x[s] = r[0];
        y[s] = r[1];
        z[s] = r[2];
        vx[s] = v[0];
        vy[s] = v[1];
        vz[s] = v[2];
        index[s] = static_cast<std::uint32_t>(p);
        slot[p] = s;
    }

    // Counting sort over the table of cells: the counts, their running sum
    // (anfang[c] = the end of cell c), and the particles placed from the last
    // to the first, each one place before the end of its cell, so that a
    // cell lists its particles in vector order and anfang[c] ends at the
    // start of cell c. The sums are of integers: exact in any grouping, so
    // the table's passes run on all threads.
    template <class Z, class L>
    void sortiereDicht(std::size_t n, Z& zelleVon, L& lage, const std::uint32_t* folge) {
        const std::size_t zellen = anfang.size() - 1;
        zelleVonSlot.resize(n);
        scheibe::fuerAlle(n, 10, [&](std::size_t p) {
            const Index c = zelleVon(p);
            zelleVonSlot[p] = zelle(c[0], c[1], c[2]);
        });
        std::uint32_t* a = anfang.data();
        scheibe::nullen(a, zellen);
        for (std::size_t p = 0; p < n; ++p)
            ++a[zelleVonSlot[p]];
        scheibe::laufendeSumme(a, zellen, blocksumme);
        a[zellen] = static_cast<std::uint32_t>(n);
        if (folge)
            for (std::size_t k = n; k-- > 0;)
                slot[folge[k]] = --a[zelleVonSlot[folge[k]]];
        else
            for (std::size_t p = n; p-- > 0;)
                slot[p] = --a[zelleVonSlot[p]];
        scheibe::fuerAlle(n, 10, [&](std::size_t p) {
            const std::size_t c = zelleVonSlot[p];
            const Index z{int(c / (std::size_t(ny) * std::size_t(nz))) + i0,
                          int(c / std::size_t(nz) % std::size_t(ny)), int(c % std::size_t(nz))};
            setze(slot[p], lage, p, z);
        });
    }

    // Sort by (cell, particle index), then the list of occupied cells.
    template <class Z, class L>
    void sortiereDuenn(std::size_t n, Z& zelleVon, L& lage, const std::uint32_t* folge) {
        nachZelle.resize(n);
        for (std::size_t k = 0; k < n; ++k) {
            const std::uint32_t p = folge ? folge[k] : static_cast<std::uint32_t>(k);
            nachZelle[k] = {zelleVon(p), static_cast<std::uint32_t>(k)};
        }
        std::sort(nachZelle.begin(), nachZelle.end());
        belegt.clear();
        for (std::uint32_t s = 0; s < n; ++s) {
            const std::uint32_t k = nachZelle[s].second, p = folge ? folge[k] : k;
            setze(s, lage, p, nachZelle[s].first);
            if (belegt.empty() || belegt.back().ijk != nachZelle[s].first)
                belegt.push_back({nachZelle[s].first, s, s});
            belegt.back().ende = s + 1;
        }
    }
};
