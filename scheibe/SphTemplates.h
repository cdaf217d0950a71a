#pragma once
// Cell grid and pair search of the SPH discs, written once over the particle
// type T and the pair type W of a disc class.
//
// The grid's cell edge is the smoothing length h, so all partners of a
// particle lie in its own or the 26 surrounding cells. Each home cell is
// compared with itself and with 13 forward neighbours (a half shell), which
// visits every pair of cells once: the search is linear in the number of
// particles for a roughly uniform disc.

#include "physik/Kernel.h"
#include "physik/PhysSystem.h"
#include "scheibe/Ganzzahl.h"
#include "scheibe/Gitter.h"
#include "scheibe/Paare.h"
#include "scheibe/ScheibenTemplates.h"
#include "scheibe/SphAkkScheibe.h"

#include <cmath>
#include <iostream>
#include <list>
#include <vector>

namespace scheibe {

// Cells per axis for a box edge of `laenge`: floor(laenge / h) + 2. A
// degenerate h (zero, negative, not a number) or an absurd count gives 2
// cells, which have no home cell, so the disc then has no pairs.
inline int zellenzahl(double laenge, double h) {
    double n = std::floor(laenge / h) + 2;
    if (!(n >= 2 && n <= 1e8))
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
void _init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter,
           InitAkkScheibe& init, PhysSystem& phys) {
    disc.h = phys.h;
    disc.h2 = disc.h * disc.h;
    _init(static_cast<AkkScheibe&>(disc), teilchen, init, phys);
    const double x1 = phys.x1[0];
    const double R = 1.1 * x1 - phys.xL1;
    disc.min = {x1 - R, -R, -0.1 * R};
    disc.max = {x1 + R, R, 0.1 * R};
    const int nx = zellenzahl(disc.max[0] - disc.min[0], disc.h);
    const int ny = zellenzahl(disc.max[1] - disc.min[1], disc.h);
    const int nz = zellenzahl(disc.max[2] - disc.min[2], disc.h);
    gitter.resize(nx);
    for (auto& scheibe : gitter) {
        scheibe.resize(ny);
        for (auto& saeule : scheibe)
            saeule.resize(nz);
    }
}

// Appends the pair (p, q) when the two are closer than h (strictly).
template <class T, class W>
void _kandidat(T* p, T* q, std::list<W>& ww, double h2, Kernel& kernel) {
    double s[3];
    for (int k = 0; k < 3; ++k)
        s[k] = q->r[k] - p->r[k];
    double s2 = s[0] * s[0] + s[1] * s[1] + s[2] * s[2];
    if (s2 < h2) {
        ww.emplace_back();
        W& w = ww.back();
        w._init(p, q, s, s2, kernel);
        paare(*p).push_back(&w);
        paare(*q).push_back(&w);
    }
}

// Bins the particles and finds all pairs closer than h.
template <class T, class W>
void _createww(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter,
               std::list<W>& ww, PhysSystem& phys) {
    ww.clear();
    for (auto& scheibe : gitter)
        for (auto& saeule : scheibe)
            for (auto& z : saeule)
                z.clear();
    const int nx = static_cast<int>(gitter.size());
    const int ny = nx > 0 ? static_cast<int>(gitter[0].size()) : 0;
    const int nz = ny > 0 ? static_cast<int>(gitter[0][0].size()) : 0;
    for (T& t : teilchen) {
        int i = zelle(t.r[0], disc.min[0], disc.h, nx);
        int j = zelle(t.r[1], disc.min[1], disc.h, ny);
        int k = zelle(t.r[2], disc.min[2], disc.h, nz);
        gitter[i][j][k].push_back(&t);
    }

    Kernel& kernel = *phys.kernel;
    const double h2 = disc.h2;
    // Neighbour cell: its particles in the outer loop, the home cell's inner.
    auto nachbar = [&](const std::vector<T*>& heim, const std::vector<T*>& andere) {
        for (T* p : andere)
            for (T* q : heim)
                _kandidat(p, q, ww, h2, kernel);
    };
    for (int i = 1; i <= nx - 2; ++i)
        for (int j = 1; j <= ny - 2; ++j)
            for (int k = 1; k <= nz - 2; ++k) {
                const std::vector<T*>& heim = gitter[i][j][k];
                for (std::size_t m = 0; m < heim.size(); ++m)
                    for (std::size_t n = m + 1; n < heim.size(); ++n)
                        _kandidat(heim[m], heim[n], ww, h2, kernel);
                nachbar(heim, gitter[i][j][k + 1]);
                for (int c = -1; c <= 1; ++c)
                    nachbar(heim, gitter[i][j + 1][k + c]);
                for (int b = -1; b <= 1; ++b)
                    for (int c = -1; c <= 1; ++c)
                        nachbar(heim, gitter[i + 1][j + b][k + c]);
            }
}

// Preparation of every evaluation of the forces: accelerations to zero, the
// pairs anew, the pair count on the console, and each particle's own state
// (density, and the equation of state for the gas discs).
template <class T, class W>
void _force_init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter,
                 std::list<W>& ww, PhysSystem& phys) {
    for (T& t : teilchen) {
        t.init();
        paare(t).clear();
    }
    _createww(disc, teilchen, gitter, ww, phys);
    std::cout << "Anzahl WWPartnern: " << static_cast<unsigned>(ww.size()) << '\n';
    for (T& t : teilchen)
        t._force_init(phys);
}

} // namespace scheibe
