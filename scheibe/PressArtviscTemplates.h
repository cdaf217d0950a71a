#pragma once
// Pressure and artificial viscosity of the gas discs, over the particle type
// T and pair type W of a disc class (Monaghan 1992, eqs. 3.3 and 4.1-4.2):
//   a_i = -m f_grad sum_j [(P_i + P_j)/(rho_i rho_j) + Pi_ij] grad_i W_ij,
//   Pi_ij = (-alpha cbar_ij mu_ij + beta mu_ij^2) / rhobar_ij  for approaching pairs,
//   mu_ij = h v_ij.r_ij / (r_ij^2 + 0.01 h^2),
// and the shear tensor of the viscous discs. Every particle forms the terms
// of its own pairs, in pair-list order, from what it and its partner hold;
// both partners of a pair form the same terms (Paarliste.h), so momentum is
// conserved as with one term per pair.

#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/Faeden.h"
#include "scheibe/Gitter.h"
#include "scheibe/Paare.h"
#include "scheibe/Paarliste.h"
#include "scheibe/Paarterme.h"
#include "scheibe/PhysviscWW.h"

#include <algorithm>
#include <cmath>
#include <type_traits>
#include <vector>

namespace scheibe {

inline const Kernel1& kernel1(const PhysSystem& phys) {
    return *static_cast<const Kernel1*>(phys.kernel);
}

// Density rho = m fak S with S = 1 + sum of W, and the equation of state of
// an ideal gas with gamma = 5/3: P = 0.0005 rho^(5/3), T = 14565369377.767422
// rho^(2/3), and the isothermal sound speed c with c^2 = 3.4328e-14 T = P/rho.
inline Partnerliste::Gas _gaszustand(double s, const PhysSystem& phys) {
    Partnerliste::Gas z;
    z.rho = phys.mTeilchen * kernel1(phys).fak * s;
    z.p = 0.0005 * std::pow(z.rho, 1.6666666666666667);
    z.temperatur = 14565369377.767422 * std::pow(z.rho, 0.6666666666666667);
    z.cs = std::sqrt(3.4328e-14 * z.temperatur);
    return z;
}
template <class T> void _zustand(T& t, double s, PhysSystem& phys) {
    const Partnerliste::Gas z = _gaszustand(s, phys);
    t.rho = z.rho;
    t.p = z.p;
    t.temperatur = z.temperatur;
    t.cs = z.cs;
}

// The pair records' terms, from the record and its two partners.
template <class T> double _pressterm(const T* erster, const T* zweiter) {
    return pressterm(erster->p, erster->rho, zweiter->p, zweiter->rho);
}
template <class T, class W>
double _piterm(const W& w, const T* erster, const T* zweiter, const PhysSystem& phys) {
    double s = w.dv[0] * w.r[0] + w.dv[1] * w.r[1] + w.dv[2] * w.r[2];
    if (!(s < 0))
        return 0;
    return piterm(mu(phys.h, s, w.d), erster->cs, erster->rho, zweiter->cs, zweiter->rho,
                  phys.alpha, phys.beta);
}
template <class T, class W> void _press(W& w, T* erster, T* zweiter, PhysSystem&) {
    w.press = _pressterm(erster, zweiter);
}
template <class T, class W> void _pi(W& w, T* erster, T* zweiter, PhysSystem& phys) {
    w.pi = _piterm(w, erster, zweiter, phys);
}
// The pair's gradient as seen from particle t (zeros and a message for a
// particle that is neither partner).
template <class T, class W> Vektor3 _dW_ohne_fak(W& w, T* t) {
    return w._dW_ohne_fak(t);
}

// The terms a pass over the pairs of a gas disc can form.
enum Terme : unsigned { druck = 1, kuenstlich = 2, scherung = 4 };

// One particle's sums over its pairs in list order (slot x): the pressure
// acceleration A = -m f_grad sum press g, the artificial viscosity
// B = -m f_grad sum Pi g, the shear tensor sigma = f_grad m sum
// (pair tensor / rho_partner), each as `terme` asks; g is the gradient seen
// from the particle. Stored by slot; the forces hand them to the particles.
inline void _gasterme(Partnerliste& ww, std::uint32_t x, unsigned terme, const PhysSystem& phys) {
    const Partnerliste::Block& b = ww.block(x);
    const Partnerliste::Gas* gas = ww.gas.data();
    const Partnerliste::Gas ich = gas[x];
    const double alpha = phys.alpha, beta = phys.beta;
    const std::uint32_t k0 = ww.erster(x), m = ww.anzahl(x);
    // Each pair's products, in the lanes of the vector unit; then the sums
    // in list order.
    static thread_local Paarpuffer puffer;
    double* const* P = puffer.spalten(m, 12);
    const std::uint32_t* partner = b.partner.data() + k0;
    const double *gx = b.gx.data() + k0, *gy = b.gy.data() + k0, *gz = b.gz.data() + k0;
    const double* mu = b.mu.data() + k0;
    const double *vx = ww.vx, *vy = ww.vy, *vz = ww.vz;
    const bool mitDruck = terme & druck, mitPi = terme & kuenstlich, mitSigma = terme & scherung;
    double *A0 = P[0], *A1 = P[1], *A2 = P[2], *B0 = P[3], *B1 = P[4], *B2 = P[5];
    double *S0 = P[6], *S1 = P[7], *S2 = P[8], *S3 = P[9], *S4 = P[10], *S5 = P[11];
#pragma omp simd
    for (std::size_t k = 0; k < m; ++k) {
        const std::uint32_t q = partner[k] & ~Partnerliste::naehert;
        const double g0 = gx[k], g1 = gy[k], g2 = gz[k];
        const double rho = gas[q].rho;
        const double f = pressterm(ich.p, ich.rho, gas[q].p, rho);
        // Pi of approaching pairs (formed in every lane, kept in theirs).
        const double pi = piterm(mu[k], ich.cs, ich.rho, gas[q].cs, rho, alpha, beta);
        const double fpi = (partner[k] & Partnerliste::naehert) ? pi : 0.0;
        A0[k] = f * g0, A1[k] = f * g1, A2[k] = f * g2;
        B0[k] = fpi * g0, B1[k] = fpi * g1, B2[k] = fpi * g2;
        const Schertensor p =
            schertensor(vx[q] - vx[x], vy[q] - vy[x], vz[q] - vz[x], g0, g1, g2);
        S0[k] = p.xx / rho, S1[k] = p.xy / rho, S2[k] = p.xz / rho;
        S3[k] = p.yy / rho, S4[k] = p.yz / rho, S5[k] = p.zz / rho;
    }
    double A[3] = {0, 0, 0}, B[3] = {0, 0, 0}, S[6] = {0, 0, 0, 0, 0, 0};
    for (std::uint32_t k = 0; k < m; ++k) {
        for (int c = 0; c < 3; ++c) {
            A[c] = A[c] - P[c][k];
            B[c] = B[c] - P[3 + c][k];
        }
        for (int c = 0; c < 6; ++c)
            S[c] += P[6 + c][k];
    }
    const double faktor = phys.mTeilchen * kernel1(phys).dfak;
    if (mitDruck)
        for (int c = 0; c < 3; ++c)
            ww.aPress[x][c] = A[c] * faktor;
    if (mitPi)
        for (int c = 0; c < 3; ++c)
            ww.aArtvisc[x][c] = B[c] * faktor;
    if (mitSigma) {
        const double fs = kernel1(phys).dfak * phys.mTeilchen;
        for (int c = 0; c < 6; ++c)
            ww.sigma[x][c] = S[c] * fs;
    }
}

// f(slot) for every slot in order, in blocks over the threads when the work
// (`ns` per list entry) pays.
template <class F> void _proSlot(const Partnerliste& ww, std::size_t n, double ns, F f) {
    const double arbeit = double(ww.eintraege) * ns + double(n) * kosten::teilchen;
    fuerBloecke(ww.anzahlBloecke(n), lohnt(arbeit), [&](std::size_t b) {
        const std::size_t s1 = std::min(n, (b + 1) * Partnerliste::blockgroesse);
        for (std::size_t x = b * Partnerliste::blockgroesse; x < s1; ++x)
            f(std::uint32_t(x));
    });
}

// f(particle, slot) for every particle in the order of the particle vector.
template <class T, class F> void _proTeilchen(std::vector<T>& teilchen, const Gitter<T>& g, F f) {
    const std::size_t n = std::min(teilchen.size(), g.slot.size());
    fuerAlle(n, 2, [&](std::size_t i) { f(teilchen[i], g.slot[i]); });
}

// Hands the ghosts what their partners here read of them: k doubles per
// particle of `feld` by slot, from the processes that own them.
template <class T, class F>
void _geisterWerte(Partnerliste& ww, const Gitter<T>& g, std::size_t k, F feld) {
    if (!ww.verteilung)
        return;
    const std::size_t n = ww.eigene;
    ww.verteilung->werteTauschen(
        k,
        [&](std::size_t i, double* w) {
            const double* q = feld(g.slot[i]);
            std::copy(q, q + k, w);
        },
        [&](std::size_t j, const double* w) { std::copy(w, w + k, feld(g.slot[n + j])); });
}

// Forms the term `term` of this evaluation unless done: the first call after
// a pair search forms every term asked for so far in one pass over the
// pairs, so that a disc with several forces reads its pairs once.
template <class T, class W>
void _gaspass(std::vector<T>& teilchen, const Gitter<T>& g, Paarliste<W>& ww, unsigned term,
              PhysSystem& phys) {
    ww.gefragt |= term;
    if (ww.erledigt & term)
        return;
    const unsigned terme = ww.gefragt & ~ww.erledigt;
    const std::size_t n = ww.gas.size();
    for (auto* v : {&ww.aPress, &ww.aArtvisc}) {
        mitVorrat(*v, n);
        v->resize(n);
    }
    if (terme & scherung) {
        mitVorrat(ww.sigma, n);
        ww.sigma.resize(n);
    }
    _proSlot(ww, n, kosten::gas, [&](std::uint32_t x) { _gasterme(ww, x, terme, phys); });
    // The viscous accelerations read the partners' tensors, the ghosts' too.
    if (terme & scherung)
        _geisterWerte(ww, g, 6, [&](std::uint32_t x) { return ww.sigma[x].data(); });
    _proTeilchen(teilchen, g, [&](T& t, std::uint32_t x) {
        if (terme & druck)
            t.aPress = ww.aPress[x];
        if (terme & kuenstlich)
            t.aArtvisc = ww.aArtvisc[x];
        if constexpr (std::is_base_of_v<PhysviscTeilchen, T>)
            if (terme & scherung)
                t.sigmaTensor = ww.sigma[x];
    });
    ww.erledigt |= terme;
}

// The whole passes: the terms, then each particle's acceleration added.
template <class T> void _addiere(std::vector<T>& teilchen, Vektor3 PressArtviscTeilchen::*feld) {
    fuerAlle(teilchen.size(), 1, [&](std::size_t i) {
        T& t = teilchen[i];
        for (int c = 0; c < 3; ++c)
            t.a[c] = t.a[c] + (t.*feld)[c];
    });
}

template <class T, class W>
void _add_press(std::vector<T>& teilchen, const Gitter<T>& g, Paarliste<W>* ww, PhysSystem& phys) {
    _gaspass(teilchen, g, *ww, druck, phys);
    _addiere(teilchen, &PressArtviscTeilchen::aPress);
}

template <class T, class W>
void _add_artvisc(std::vector<T>& teilchen, const Gitter<T>& g, Paarliste<W>* ww, PhysSystem& phys) {
    _gaspass(teilchen, g, *ww, kuenstlich, phys);
    _addiere(teilchen, &PressArtviscTeilchen::aArtvisc);
}

} // namespace scheibe
