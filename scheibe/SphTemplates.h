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
#include "scheibe/Ganzzahl.h"
#include "scheibe/Gitter.h"
#include "scheibe/Paare.h"
#include "scheibe/Paarliste.h"
#include "scheibe/ScheibenTemplates.h"
#include "scheibe/SphAkkScheibe.h"

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
                   zellenzahl(disc.max[2] - disc.min[2], disc.h));
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

// Bins the particles and appends every pair closer than h (strictly) to ww.
// summe[i] becomes 1 + the sum of W over particle i's pairs, added in the
// order of its pair list (the order in which its pairs are found).
template <class T, class W>
void _createww(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& g, Paarliste<W>& ww,
               PhysSystem& phys, std::vector<double>& summe) {
    ww.clear();
    summe.assign(teilchen.size(), 1.0);
    _binne(disc, teilchen, g);

    Kernel& kernel = *phys.kernel;
    const double *vx = g.vx.data(), *vy = g.vy.data(), *vz = g.vz.data();
    // p is the particle of the outer loop and becomes the pair's first partner.
    g.suche(disc.h2, [&](std::uint32_t p, std::uint32_t q, const double s[3], double s2) {
        const std::uint32_t ip = g.index[p], iq = g.index[q];
        T* tp = &teilchen[ip];
        T* tq = &teilchen[iq];
        const double dv[3] = {vx[q] - vx[p], vy[q] - vy[p], vz[q] - vz[p]};
        W& w = ww.emplace_back();
        w._init(tp, tq, s, s2, dv, kernel);
        paare(*tp).push_back(&w);
        paare(*tq).push_back(&w);
        summe[ip] += w.W;
        summe[iq] += w.W;
    });
}

// Preparation of every evaluation of the forces: accelerations to zero, the
// pairs anew, the pair count on the console, and each particle's own state
// (density, and the equation of state for the gas discs).
template <class T, class W>
void _force_init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter, Paarliste<W>& ww,
                 PhysSystem& phys) {
    for (T& t : teilchen) {
        t.init();
        paare(t).clear();
    }
    std::vector<double>& summe = disc.puffer;
    _createww(disc, teilchen, gitter, ww, phys, summe);
    std::cout << "Anzahl WWPartnern: " << static_cast<unsigned>(ww.size()) << '\n';
    for (std::size_t i = 0; i < teilchen.size(); ++i)
        teilchen[i]._dichte(summe[i], phys);
}

} // namespace scheibe
