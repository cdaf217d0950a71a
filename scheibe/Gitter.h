#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

// Cell grid of an SPH disc with nx * ny * nz cells of edge h. At each
// evaluation the particles are sorted by cell (a stable counting sort, so
// within a cell they keep the order of the particle vector) and their
// positions copied next to each other: the pair search then reads
// contiguous memory instead of chasing particle pointers.
template <class T> class Gitter {
public:
    int nx = 0, ny = 0, nz = 0; // cells per axis

    // Particles of cell c: slots anfang[c] .. anfang[c + 1] - 1 of the arrays below.
    std::vector<std::uint32_t> anfang;
    std::vector<double> x, y, z;      // positions, by slot
    std::vector<double> vx, vy, vz;   // velocities, by slot
    std::vector<std::uint32_t> index; // index in the particle vector, by slot

    void anlegen(int nx_, int ny_, int nz_) {
        nx = nx_;
        ny = ny_;
        nz = nz_;
        anfang.assign(zellen() + 1, 0);
    }

    std::size_t zellen() const { return std::size_t(nx) * std::size_t(ny) * std::size_t(nz); }
    std::size_t zelle(int i, int j, int k) const {
        return (std::size_t(i) * std::size_t(ny) + std::size_t(j)) * std::size_t(nz) +
               std::size_t(k);
    }

    // Sorts the particles into the cells; zelleVon(t) gives a particle's cell.
    template <class Z> void fuellen(std::vector<T>& alle, Z zelleVon) {
        const std::size_t n = alle.size();
        std::fill(anfang.begin(), anfang.end(), 0u);
        zelleVonSlot.resize(n);
        for (std::size_t p = 0; p < n; ++p) {
            zelleVonSlot[p] = zelleVon(alle[p]);
            ++anfang[zelleVonSlot[p] + 1];
        }
        for (std::size_t c = 1; c < anfang.size(); ++c)
            anfang[c] += anfang[c - 1];
        for (auto* a : {&x, &y, &z, &vx, &vy, &vz})
            a->resize(n);
        index.resize(n);
        // anfang[c] serves as the cursor of cell c and ends at the start of c + 1.
        for (std::size_t p = 0; p < n; ++p) {
            const std::uint32_t s = anfang[zelleVonSlot[p]]++;
            const T& t = alle[p];
            x[s] = t.r[0];
            y[s] = t.r[1];
            z[s] = t.r[2];
            vx[s] = t.v[0];
            vy[s] = t.v[1];
            vz[s] = t.v[2];
            index[s] = static_cast<std::uint32_t>(p);
        }
        for (std::size_t c = anfang.size() - 1; c > 0; --c)
            anfang[c] = anfang[c - 1];
        anfang[0] = 0;
    }

    // Calls paar(p, q, s, s2) for every two slots closer than sqrt(h2)
    // (strictly), with s = position of q - position of p and s2 = |s|^2.
    // Each home cell (all but the border cells) is compared with itself and
    // its 13 forward neighbours, in this order: itself (p before q in the
    // cell), (i, j, k+1), (i, j+1, k-1..k+1), (i+1, j-1..j+1, k-1..k+1); for a
    // neighbour cell p runs over the neighbour's particles and q over the
    // home cell's. Every pair of home-cell particles is visited once.
    template <class Paar> void suche(double h2, Paar paar) const {
        const double *px = x.data(), *py = y.data(), *pz = z.data();
        auto kandidat = [&](std::uint32_t p, std::uint32_t q) {
            const double s[3] = {px[q] - px[p], py[q] - py[p], pz[q] - pz[p]};
            const double s2 = s[0] * s[0] + s[1] * s[1] + s[2] * s[2];
            if (s2 < h2)
                paar(p, q, s, s2);
        };
        for (int i = 1; i <= nx - 2; ++i)
            for (int j = 1; j <= ny - 2; ++j)
                for (int k = 1; k <= nz - 2; ++k) {
                    const std::size_t heim = zelle(i, j, k);
                    const std::uint32_t a = anfang[heim], e = anfang[heim + 1];
                    if (a == e)
                        continue;
                    for (std::uint32_t m = a; m < e; ++m)
                        for (std::uint32_t n = m + 1; n < e; ++n)
                            kandidat(m, n);
                    auto nachbar = [&](std::size_t c) {
                        for (std::uint32_t p = anfang[c], pe = anfang[c + 1]; p < pe; ++p)
                            for (std::uint32_t q = a; q < e; ++q)
                                kandidat(p, q);
                    };
                    nachbar(zelle(i, j, k + 1));
                    for (int c = -1; c <= 1; ++c)
                        nachbar(zelle(i, j + 1, k + c));
                    for (int b = -1; b <= 1; ++b)
                        for (int c = -1; c <= 1; ++c)
                            nachbar(zelle(i + 1, j + b, k + c));
                }
    }

private:
    std::vector<std::size_t> zelleVonSlot;
};
