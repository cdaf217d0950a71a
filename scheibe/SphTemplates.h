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
#include "scheibe/PressArtviscTemplates.h"
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

// Sorts the particles into the grid's cells, in vector order. In a run
// spread over processes the grid holds the own particles and, as ghosts,
// the other processes' particles in the planes next to theirs: within a
// cell all come in global order, as in the whole disc.
template <class T>
void _binne(const SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& g, Partnerliste& ww) {
    const double h = disc.h;
    const double* min = disc.min.data();
    auto zelleVon = [&](const double* r) {
        return typename Gitter<T>::Index{zelle(r[0], min[0], h, g.nx), zelle(r[1], min[1], h, g.ny),
                                         zelle(r[2], min[2], h, g.nz)};
    };
    Verteilung* vt = disc.verteilung;
    ww.verteilung = vt;
    ww.eigene = teilchen.size();
    if (!vt) {
        g.fuellen(teilchen, [&](const T& t) { return zelleVon(t.r.data()); });
        return;
    }
    const std::size_t n = teilchen.size();
    ww.zellen.resize(n);
    int von = g.nx, bis = -1; // planes of the own particles
    for (std::size_t i = 0; i < n; ++i) {
        const auto c = zelleVon(teilchen[i].r.data());
        ww.zellen[i] = (std::size_t(c[0]) * std::size_t(g.ny) + std::size_t(c[1])) * std::size_t(g.nz) +
                       std::size_t(c[2]);
        von = std::min(von, c[0]);
        bis = std::max(bis, c[0]);
    }
    vt->geisterHolen(ww.zellen, [&](std::size_t i, double* rv) {
        for (int c = 0; c < 3; ++c) {
            rv[c] = teilchen[i].r[c];
            rv[3 + c] = teilchen[i].v[c];
        }
    });
    // Own particles (0 .. n-1, in global order) and ghosts (n + j) merged by
    // global index.
    const std::size_t m = vt->geister();
    ww.geisterFolge.resize(m);
    for (std::size_t j = 0; j < m; ++j)
        ww.geisterFolge[j] = std::uint32_t(j);
    std::sort(ww.geisterFolge.begin(), ww.geisterFolge.end(),
              [&](std::uint32_t a, std::uint32_t b) { return vt->geistIndex(a) < vt->geistIndex(b); });
    ww.folge.resize(n + m);
    for (std::size_t i = 0, j = 0, k = 0; k < n + m; ++k) {
        if (j < m && (i == n || vt->geistIndex(ww.geisterFolge[j]) < vt->index(i)))
            ww.folge[k] = std::uint32_t(n + ww.geisterFolge[j++]);
        else
            ww.folge[k] = std::uint32_t(i++);
    }
    // The table over the planes around the own particles and the ghosts'.
    von = std::max(von - 1, 0);
    bis = std::min(bis + 1, g.nx - 1);
    for (std::size_t j = 0; j < m; ++j) {
        const int e = zelle(vt->geistRV(j)[0], min[0], h, g.nx);
        von = std::min(von, e);
        bis = std::max(bis, e);
    }
    g.ebenen(std::min(von, bis), std::max(von, bis));
    g.fuellen(
        n + m,
        [&](std::size_t p) { return zelleVon(p < n ? teilchen[p].r.data() : vt->geistRV(p - n)); },
        [&](std::size_t p) {
            return p < n ? std::pair(teilchen[p].r.data(), teilchen[p].v.data())
                         : std::pair(vt->geistRV(p - n), vt->geistRV(p - n) + 3);
        },
        ww.folge.data());
}

// Scratch of one thread's pair search, kept between evaluations.
struct Suchpuffer {
    std::vector<double> e2;            // squared distances of a run of candidates
    std::vector<std::uint32_t> nahe;   // the candidates closer than h
    std::vector<double> W;             // their kernel values
};

// The pair search and each particle's density, one pass over the particles
// in slot order, in blocks handed to the threads one at a time: each
// particle's partners found from its own side
// (Gitter::partnerBereiche) in pair-list order, the gradient and the
// viscosity factor of each kept in its list, the kernel values summed into
// its density in that order; then its density (and, for the gas discs, its
// equation of state), by slot; then the records take them over. Every pair is found by both its partners, from the
// same coordinates, so both lists agree. The loops over candidates and
// partners have no dependence from one to the next and run in the lanes of
// the vector unit (each lane the same IEEE operations, so the same bits);
// the sums run in order afterwards.
template <class T, class W>
void _createww(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& g, Paarliste<W>& ww,
               PhysSystem& phys) {
    constexpr bool gas = std::is_base_of_v<PressArtviscTeilchen, T>;
    const std::size_t n = teilchen.size();
    // Work of the last search, to decide whether the threads pay.
    const double arbeit = double(ww.eintraege > n ? ww.eintraege : n);
    _binne(disc, teilchen, g, ww);
    const std::size_t slots = g.index.size(); // with the ghosts of a distributed run
    ww.beginne(slots);
    ww.x = g.x.data();
    ww.y = g.y.data();
    ww.z = g.z.data();
    ww.vx = g.vx.data();
    ww.vy = g.vy.data();
    ww.vz = g.vz.data();
    const double hk = static_cast<const Kernel1*>(phys.kernel)->h;
    const double h2 = disc.h2, h = phys.h, hh = 0.01 * (h * h);
    const double *X = g.x.data(), *Y = g.y.data(), *Z = g.z.data();
    const double *VX = g.vx.data(), *VY = g.vy.data(), *VZ = g.vz.data();
    const std::size_t bloecke = ww.anzahlBloecke(slots);
    fuerBloecke(bloecke, lohnt(arbeit * kosten::suche), [&](std::size_t b) {
        static thread_local Suchpuffer puffer;
        Partnerliste::Block& bl = ww.bloecke[b];
        bl.leeren();
        const std::uint32_t s0 = std::uint32_t(b * Partnerliste::blockgroesse);
        const std::uint32_t s1 =
            std::uint32_t(std::min(slots, (b + 1) * Partnerliste::blockgroesse));
        bl.anfang.resize(Partnerliste::blockgroesse + 1);
        for (std::uint32_t x = s0; x < s1; ++x) {
            const std::size_t basis = bl.belegt;
            bl.anfang[x - s0] = std::uint32_t(basis);
            if (g.index[x] >= n)
                continue; // a ghost: its own process forms its sums
            const double xx = X[x], yy = Y[x], zz = Z[x];
            // The candidates closer than h, in order. Separations partner -
            // self: the pair's own for its first partner, negated for its
            // second, with the same square.
            std::size_t m = 0;
            g.partnerBereiche(x, [&](std::uint32_t a, std::uint32_t e) {
                const std::size_t laenge = e - a;
                if (puffer.e2.size() < laenge)
                    puffer.e2.resize(laenge + laenge / 2);
                if (puffer.nahe.size() < m + laenge)
                    puffer.nahe.resize(2 * (m + laenge));
                double* E = puffer.e2.data();
#pragma omp simd
                for (std::size_t k = 0; k < laenge; ++k) {
                    const double e0 = X[a + k] - xx, e1 = Y[a + k] - yy, e2 = Z[a + k] - zz;
                    E[k] = e0 * e0 + e1 * e1 + e2 * e2;
                }
                std::uint32_t* nahe = puffer.nahe.data();
                for (std::size_t k = 0; k < laenge; ++k) {
                    nahe[m] = a + std::uint32_t(k);
                    m += E[k] < h2;
                }
            });
            bl.erweitern(basis + m);
            if (puffer.W.size() < m)
                puffer.W.resize(m + m / 2);
            const std::uint32_t* nahe = puffer.nahe.data();
            double* Wk = puffer.W.data();
            std::uint32_t* partner = bl.partner.data() + basis;
            double *gx = bl.gx.data() + basis, *gy = bl.gy.data() + basis,
                   *gz = bl.gz.data() + basis, *mu = bl.mu.data() + basis;
#pragma omp simd
            for (std::size_t k = 0; k < m; ++k) {
                const std::uint32_t q = nahe[k];
                const double e0 = X[q] - xx, e1 = Y[q] - yy, e2 = Z[q] - zz;
                const double d = std::sqrt(e0 * e0 + e1 * e1 + e2 * e2);
                // The kernel (Kernel1::wert) with both pieces formed and one
                // taken: the inner piece up to h/2, else (also for NaN) the outer.
                const double qk = d / hk;
                const bool innen = hk * 0.5 >= d;
                const double t1 = 1 - qk;
                const double fi = (3 * qk - 2) / hk, fo = -(t1 * t1) / d;
                const double faktor = innen ? fi : fo;
                Wk[k] = innen ? qk * ((qk - 1) * 6 * qk) + 1 : 2 * (t1 * t1 * t1);
                // Gradient of self - partner.
                gx[k] = (xx - X[q]) * faktor;
                gy[k] = (yy - Y[q]) * faktor;
                gz[k] = (zz - Z[q]) * faktor;
                std::uint32_t p = q;
                double u = 0;
                if constexpr (gas) {
                    const double dv0 = VX[q] - VX[x], dv1 = VY[q] - VY[x], dv2 = VZ[q] - VZ[x];
                    const double sp = dv0 * e0 + dv1 * e1 + dv2 * e2;
                    const bool naeher = sp < 0;
                    const double wenn = h * sp / (d * d + hh); // formed in every lane
                    u = naeher ? wenn : 0.0;
                    p = naeher ? q | Partnerliste::naehert : q;
                }
                partner[k] = p;
                mu[k] = u;
            }
            double S = 1.0;
            for (std::size_t k = 0; k < m; ++k)
                S += Wk[k];
            if constexpr (gas) {
                ww.gas[x] = _gaszustand(S, phys);
            } else {
                ww.gas[x] = {};
                ww.gas[x].rho = SphTeilchen::dichteAus(S, phys);
            }
        }
        bl.anfang[s1 - s0] = std::uint32_t(bl.belegt);
    });
    _geisterWerte(ww, g, 4, [&](std::uint32_t x) { return &ww.gas[x].rho; });
    // The particle records, in their own order: accelerations to zero, the
    // view of their pairs, density and equation of state.
    fuerAlle(n, kosten::teilchen, [&](std::size_t i) {
        T& t = teilchen[i];
        const std::uint32_t x = g.slot[i];
        t.init();
        paare(t).zeige(&ww, x);
        const Partnerliste::Gas& z = ww.gas[x];
        t.rho = z.rho;
        if constexpr (gas) {
            t.p = z.p;
            t.temperatur = z.temperatur;
            t.cs = z.cs;
        }
    });
    std::size_t e = 0;
    for (std::size_t b = 0; b < bloecke; ++b)
        e += ww.bloecke[b].belegt;
    ww.eintraege = e;
}

// Preparation of every evaluation of the forces: accelerations to zero, the
// pairs anew, each particle's own state (density, and the equation of state
// for the gas discs), and the pair count on the console.
template <class T, class W>
void _force_init(SphAkkScheibe& disc, std::vector<T>& teilchen, Gitter<T>& gitter, Paarliste<W>& ww,
                 PhysSystem& phys) {
    _createww(disc, teilchen, gitter, ww, phys);
    // Each process lists the pairs of its own particles: the sum is the disc's.
    const std::size_t paare = disc.verteilung ? disc.verteilung->summe(ww.eintraege) / 2 : ww.paare();
    std::cout << "Anzahl WWPartnern: " << static_cast<unsigned>(paare) << '\n';
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
