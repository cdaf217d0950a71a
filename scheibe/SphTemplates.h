#pragma once
// Cell grid and pair search of the SPH discs, written once over the particle
// type T and the pair type W of a disc class.
//
// The grid's cell edge is the smoothing length h, so all partners of a
// particle lie in its own or the 26 surrounding cells. Each home cell is
// compared with itself and with 13 forward neighbours (a half shell, see
// Gitter::suche), which visits every pair of cells once: the search is
// linear in the number of particles for a roughly uniform disc.

#include "physik/Kernel.h"
#include "physik/PhysSystem.h"
#include "scheibe/Faeden.h"
#include "scheibe/Ganzzahl.h"
#include "scheibe/Gitter.h"
#include "scheibe/Paare.h"
#include "scheibe/Paarliste.h"
#include "scheibe/ScheibenTemplates.h"
#include "scheibe/SphAkkScheibe.h"
#include "scheibe/Vorrat.h"

#include <cmath>
#include <cstdint>
#include <iostream>
#include <vector>

namespace scheibe {

// Cells per axis for a box edge of `laenge`: floor(laenge / h) + 2. A
// degenerate h (zero or negative) gives 2 cells, which have no home cell:
// no pairs, as no two particles can be closer than such an h. A count beyond
// int (h below some 4e-10 solar radii) is treated alike, dropping the pairs
// of particles that close; cell indices of such a grid would not fit an int.
inline int zellenzahl(double laenge, double h) {
    double n = std::floor(laenge / h) + 2;
    if (!(n >= 2 && n <= 2147483647.0))
        return 2;
    return static_cast<int>(n);
}

// Cell index of a coordinate: ceil((x - min) / h), clamped into 0..n-1.
inline int zelle(double x, double min, double h, int n) {
    int i = zuInt(std::ceil((x - min) / h));
    if (i < 0)
        return 0;
    if (i >= n)
        return n - 1;
    return i;
}

// Construction of an SPH disc: reads the particles and lays out the grid over
// a fixed box around the primary, ten times flatter in z than in x and y.
template <class T>
void _init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter, InitAkkScheibe& init,
           PhysSystem& phys) {
    disc.h = phys.h;
    disc.h2 = disc.h * disc.h;
    _init(static_cast<AkkScheibe&>(disc), teilchen, init, phys);
    const double x1 = phys.x1[0];
    const double R = 1.1 * x1 - phys.xL1;
    disc.min = {x1 - R, -R, -0.1 * R};
    disc.max = {x1 + R, R, 0.1 * R};
    gitter.anlegen(zellenzahl(disc.max[0] - disc.min[0], disc.h),
                   zellenzahl(disc.max[1] - disc.min[1], disc.h),
                   zellenzahl(disc.max[2] - disc.min[2], disc.h), teilchen.size());
}

// Sorts the particles into the grid's cells, in vector order.
template <class T> void _binne(const SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& g) {
    const double h = disc.h;
    const double* min = disc.min.data();
    g.fuellen(teilchen, [&](const T& t) {
        return typename Gitter<T>::Index{zelle(t.r[0], min[0], h, g.nx),
                                         zelle(t.r[1], min[1], h, g.ny),
                                         zelle(t.r[2], min[2], h, g.nz)};
    });
}

// Bins the particles, appends every pair closer than h (strictly) to ww and
// builds the index through which each particle lists its pairs.
//
// The home planes are split into slabs, one per thread; each slab searches
// its planes in order into its own storage, so the list (the slabs joined in
// slab order) holds the pairs in the order of one search over all planes.
// Each slab also counts the pairs of every particle; from the counts each
// particle's stretch of the index is laid out, the earlier slabs' pairs
// first, so every particle lists its pairs in pair-list order.
template <class T, class W>
void _createww(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& g, Paarliste<W>& ww,
               PhysSystem& phys) {
    const std::size_t n = teilchen.size();
    _binne(disc, teilchen, g);
    const std::size_t anzahl = anzahlSlabs(n);
    ww.beginne(anzahl);
    g.slabs(anzahl, ww.grenzen);

    Kernel& kernel = *phys.kernel;
    const double h2 = disc.h2;
    const double *vx = g.vx.data(), *vy = g.vy.data(), *vz = g.vz.data();
    const std::ptrdiff_t slabs = static_cast<std::ptrdiff_t>(anzahl);
#pragma omp parallel for schedule(static, 1) if (slabs > 1)
    for (std::ptrdiff_t sl = 0; sl < slabs; ++sl) {
        Paarspeicher<W>& teil = ww.teile[std::size_t(sl)];
        std::vector<std::uint32_t>& zaehler = ww.zaehler[std::size_t(sl)];
        zaehler.assign(n, 0);
        // p is the particle of the outer loop and becomes the pair's first partner.
        g.suche(h2, ww.grenzen[std::size_t(sl)], ww.grenzen[std::size_t(sl) + 1] - 1,
                [&](std::uint32_t p, std::uint32_t q, const double s[3], double s2) {
                    const std::uint32_t ip = g.index[p], iq = g.index[q];
                    const double dv[3] = {vx[q] - vx[p], vy[q] - vy[p], vz[q] - vz[p]};
                    W& w = teil.emplace_back();
                    w._init(&teilchen[ip], &teilchen[iq], s, s2, dv, kernel);
                    ++zaehler[p];
                    ++zaehler[q];
                });
    }

    // The pairs of the particle in slot s go to index[start[s] ..]: in slot
    // order, so that a pass over the particles in slot order reads the index
    // front to back. The counts become each slab's place within a stretch.
    ww.start.resize(n + 1);
    ww.start[0] = 0;
    const std::ptrdiff_t nn = static_cast<std::ptrdiff_t>(n);
#pragma omp parallel for schedule(static) if (nn >= scheibe::mindestens)
    for (std::ptrdiff_t s = 0; s < nn; ++s) {
        std::uint32_t vorher = 0;
        for (std::size_t sl = 0; sl < anzahl; ++sl) {
            const std::uint32_t c = ww.zaehler[sl][std::size_t(s)];
            ww.zaehler[sl][std::size_t(s)] = vorher;
            vorher += c;
        }
        ww.start[std::size_t(s) + 1] = vorher;
    }
    laufendeSumme(ww.start.data() + 1, n, ww.blocksumme);
    mitVorrat(ww.index, ww.start[n]);
    ww.index.resize(ww.start[n]);

    T* basis = teilchen.data();
    const std::uint32_t* slot = g.slot.data();
#pragma omp parallel for schedule(static, 1) if (slabs > 1)
    for (std::ptrdiff_t sl = 0; sl < slabs; ++sl) {
        std::vector<std::uint32_t>& platz = ww.zaehler[std::size_t(sl)];
        ww.teile[std::size_t(sl)].fuer_alle([&](W& w) {
            const std::uint32_t s1 = slot[static_cast<T*>(w.t1) - basis];
            const std::uint32_t s2 = slot[static_cast<T*>(w.t2) - basis];
            ww.index[ww.start[s1] + platz[s1]++] = &w;
            ww.index[ww.start[s2] + platz[s2]++] = &w;
        });
    }
    g.fuerJedenSlot(n, [&](std::size_t i) {
        const std::size_t s = slot[i], a = ww.start[s], e = ww.start[s + 1];
        paare(teilchen[i]).zeige(ww.index.data() + a, e - a);
    });
}

// Preparation of every evaluation of the forces: accelerations to zero, the
// pairs anew, the pair count on the console, and each particle's own state
// (density, and the equation of state for the gas discs), each particle
// summing the kernel values of its own pairs in pair-list order.
template <class T, class W>
void _force_init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter, Paarliste<W>& ww,
                 PhysSystem& phys) {
    const std::ptrdiff_t n = static_cast<std::ptrdiff_t>(teilchen.size());
#pragma omp parallel for schedule(static) if (n >= scheibe::mindestens)
    for (std::ptrdiff_t i = 0; i < n; ++i) {
        T& t = teilchen[std::size_t(i)];
        t.init();
        paare(t).clear();
    }
    _createww(disc, teilchen, gitter, ww, phys);
    std::cout << "Anzahl WWPartnern: " << static_cast<unsigned>(ww.size()) << '\n';
    gitter.fuerJedenSlot(teilchen.size(), [&](std::size_t i) { teilchen[i]._force_init(phys); });
}

} // namespace scheibe
