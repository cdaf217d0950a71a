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
#include "physik/Kernel1.h"
#include "scheibe/Paarliste.h"
#include "scheibe/ScheibenTemplates.h"
#include "scheibe/SphAkkScheibe.h"
#include "scheibe/Vorrat.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
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

// The pair search and each particle's density, one pass over the particles
// in slot order, in blocks handed to the threads one at a time: each
// particle's accelerations to zero, its partners found from its own side
// (Gitter::partner) in pair-list order, the kernel value of each summed into
// its density as it is found, the gradient and the viscosity factor of each
// kept in its list; then its density (and, for the gas discs, its equation
// of state). Every pair is found by both its partners, from the same
// coordinates, so both lists agree.
template <class T, class W>
void _createww(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& g, Paarliste<W>& ww,
               PhysSystem& phys) {
    constexpr bool gas = std::is_base_of_v<PressArtviscTeilchen, T>;
    const std::size_t n = teilchen.size();
    // Work of the last search, to decide whether the threads pay.
    const double arbeit = double(ww.eintraege > n ? ww.eintraege : n);
    _binne(disc, teilchen, g);
    ww.beginne(n);
    ww.x = g.x.data();
    ww.y = g.y.data();
    ww.z = g.z.data();
    ww.vx = g.vx.data();
    ww.vy = g.vy.data();
    ww.vz = g.vz.data();
    const Kernel1& kern = *static_cast<const Kernel1*>(phys.kernel);
    const double h2 = disc.h2, h = phys.h, hh = 0.01 * (h * h);
    const double *X = g.x.data(), *Y = g.y.data(), *Z = g.z.data();
    const double *VX = g.vx.data(), *VY = g.vy.data(), *VZ = g.vz.data();
    const std::size_t bloecke = ww.anzahlBloecke(n);
    fuerBloecke(bloecke, lohnt(arbeit * kosten::suche), [&](std::size_t b) {
        Partnerliste::Block& bl = ww.bloecke[b];
        bl.leeren();
        const std::uint32_t s0 = std::uint32_t(b * Partnerliste::blockgroesse);
        const std::uint32_t s1 = std::uint32_t(std::min(n, (b + 1) * Partnerliste::blockgroesse));
        bl.anfang.resize(Partnerliste::blockgroesse + 1);
        for (std::uint32_t x = s0; x < s1; ++x) {
            bl.anfang[x - s0] = std::uint32_t(bl.partner.size());
            T& t = teilchen[g.index[x]];
            t.init();
            paare(t).zeige(&ww, x);
            double S = 1.0;
            g.partner(x, [&](std::uint32_t q) {
                // Separation and velocity difference partner - self: the
                // pair's own for its first partner, negated for its second.
                const double e[3] = {X[q] - X[x], Y[q] - Y[x], Z[q] - Z[x]};
                const double e2 = e[0] * e[0] + e[1] * e[1] + e[2] * e[2];
                if (!(e2 < h2))
                    return;
                const double d = std::sqrt(e2);
                double v[3] = {X[x] - X[q], Y[x] - Y[q], Z[x] - Z[q]};
                S += kern.wert(d, v);
                std::uint32_t p = q;
                double mu = 0;
                if constexpr (gas) {
                    const double dv[3] = {VX[q] - VX[x], VY[q] - VY[x], VZ[q] - VZ[x]};
                    const double sp = dv[0] * e[0] + dv[1] * e[1] + dv[2] * e[2];
                    if (sp < 0) {
                        mu = h * sp / (d * d + hh);
                        p |= Partnerliste::naehert;
                    }
                }
                bl.anhaengen(p, v, mu);
            });
            t.dichte(S, phys);
            if constexpr (gas)
                ww.gas[x] = {t.rho, t.p, t.cs};
        }
        bl.anfang[s1 - s0] = std::uint32_t(bl.partner.size());
    });
    std::size_t e = 0;
    for (std::size_t b = 0; b < bloecke; ++b)
        e += ww.bloecke[b].partner.size();
    ww.eintraege = e;
}

// Preparation of every evaluation of the forces: accelerations to zero, the
// pairs anew, each particle's own state (density, and the equation of state
// for the gas discs), and the pair count on the console.
template <class T, class W>
void _force_init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter, Paarliste<W>& ww,
                 PhysSystem& phys) {
    _createww(disc, teilchen, gitter, ww, phys);
    std::cout << "Anzahl WWPartnern: " << static_cast<unsigned>(ww.paare()) << '\n';
}

// The disc's pairs as records in pair-list order, each filled by its own
// _init from the grid of the last force_init (for tests and tools; the
// passes form the pair terms where they use them).
template <class W, class T>
std::vector<W> _paare(SphAkkScheibe& disc, std::vector<T>& teilchen, const Gitter<T>& g,
                      PhysSystem& phys) {
    std::vector<W> paare;
    const double *vx = g.vx.data(), *vy = g.vy.data(), *vz = g.vz.data();
    g.suche(disc.h2, [&](std::uint32_t p, std::uint32_t q, const double s[3], double s2) {
        const double dv[3] = {vx[q] - vx[p], vy[q] - vy[p], vz[q] - vz[p]};
        paare.emplace_back()._init(&teilchen[g.index[p]], &teilchen[g.index[q]], s, s2, dv,
                                   *phys.kernel);
    });
    return paare;
}

} // namespace scheibe
