#pragma once
// Pressure and artificial viscosity of the gas discs, over the particle type
// T and pair type W of a disc class (Monaghan 1992):
//   a_i = -m f_grad sum_j [(P_i + P_j)/(rho_i rho_j) + Pi_ij] grad_i W_ij,
//   Pi_ij = (-alpha cbar_ij mu_ij + beta mu_ij^2) / rhobar_ij  for approaching pairs,
//   mu_ij = h v_ij.r_ij / (r_ij^2 + 0.01 h^2).
// Each pass first computes the pair terms, then accumulates per particle
// over its pairs in list order; both partners see the pair's gradient with
// opposite signs, so momentum is conserved.

#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/Paare.h"
#include "scheibe/PhysviscWW.h"

#include "scheibe/Paarliste.h"
#include <cmath>
#include <valarray>
#include <vector>

namespace scheibe {

inline const Kernel1& kernel1(const PhysSystem& phys) {
    return *static_cast<const Kernel1*>(phys.kernel);
}

// Density rho = m fak S with S = 1 + sum of W, and the equation of state of
// an ideal gas with gamma = 5/3: P = 0.0005 rho^(5/3), T = 14565369377.767422
// rho^(2/3), and the isothermal sound speed c with c^2 = 3.4328e-14 T = P/rho.
template <class T> void _zustand(T& t, double s, PhysSystem& phys) {
    t.rho = phys.mTeilchen * kernel1(phys).fak * s;
    t.p = 0.0005 * std::pow(t.rho, 1.6666666666666667);
    t.temperatur = 14565369377.767422 * std::pow(t.rho, 0.6666666666666667);
    t.cs = std::sqrt(3.4328e-14 * t.temperatur);
}

template <class T, class W> void _force_init(T& t, std::vector<W*>& paare, PhysSystem& phys) {
    double s = 1.0;
    for (const W* w : paare)
        s += w->W;
    _zustand(t, s, phys);
}

template <class T, class W> void _press(W& w, T* erster, T* zweiter, PhysSystem&) {
    w.press = (erster->p + zweiter->p) / (erster->rho * zweiter->rho);
}

template <class T, class W> void _pi(W& w, T* erster, T* zweiter, PhysSystem& phys) {
    // v_ij . r_ij < 0: the partners approach each other.
    double s = w.dv[0] * w.r[0] + w.dv[1] * w.r[1] + w.dv[2] * w.r[2];
    if (!(s < 0)) {
        w.pi = 0;
        return;
    }
    const double h = phys.h;
    double mu = h * s / (w.d * w.d + 0.01 * (h * h));
    w.pi = mu * (-phys.alpha * (erster->cs + zweiter->cs) + 2 * phys.beta * mu) /
           (erster->rho + zweiter->rho);
}

// The pair's gradient as seen from particle t (zeros and a message for a
// particle that is neither partner).
template <class T, class W> std::valarray<double> _dW_ohne_fak(W& w, T* t) {
    return w._dW_ohne_fak(t);
}

// One particle's accumulation: A = -sum term(pair) g, scaled by m f_grad,
// stored in `ziel` and added to the acceleration.
template <class T, class W, class Term>
void _sammle(T& t, T* self, std::vector<W*>& paare, PhysSystem& phys, std::vector<double>& ziel,
             Term term) {
    double A[3] = {0, 0, 0};
    double g[3];
    for (W* w : paare) {
        w->dW_von(self, g);
        const double f = term(*w);
        for (int k = 0; k < 3; ++k)
            A[k] = A[k] - f * g[k];
    }
    const double faktor = phys.mTeilchen * kernel1(phys).dfak;
    for (int k = 0; k < 3; ++k) {
        A[k] = A[k] * faktor;
        ziel[k] = A[k];
        t.a[k] = t.a[k] + A[k];
    }
}

template <class T, class W>
void _add_press(T& t, T* self, std::vector<W*>& paare, PhysSystem& phys) {
    _sammle(t, self, paare, phys, t.aPress, [](const W& w) { return w.press; });
}

template <class T, class W>
void _add_artvisc(T& t, T* self, std::vector<W*>& paare, PhysSystem& phys) {
    _sammle(t, self, paare, phys, t.aArtvisc, [](const W& w) { return w.pi; });
}

// The whole pass: computes each pair's term, then accumulates -term g for
// both partners. It streams once over the pair list and scatters into
// per-particle sums: a particle's pairs stand in its own list in pair-list
// order, so each sum receives the same terms in the same order as the loop
// over the particle's list above, and the result is the same to the bit.
template <class T, class W, class Term, class Ziel>
void _sammleAlle(std::vector<T>& teilchen, Paarliste<W>& ww, PhysSystem& phys,
                 std::vector<double>& A, Term paarterm, Ziel ziel) {
    A.assign(3 * teilchen.size(), 0.0);
    T* basis = teilchen.data();
    for (W& w : ww) {
        const double f = paarterm(w);
        double* a1 = &A[3 * std::size_t(w.pt1 - basis)];
        double* a2 = &A[3 * std::size_t(w.pt2 - basis)];
        for (int k = 0; k < 3; ++k) {
            const double g = w.dW[k];
            a1[k] = a1[k] - f * g;
        }
        for (int k = 0; k < 3; ++k) {
            const double g = -w.dW[k];
            a2[k] = a2[k] - f * g;
        }
    }
    const double faktor = phys.mTeilchen * kernel1(phys).dfak;
    for (std::size_t i = 0; i < teilchen.size(); ++i) {
        T& t = teilchen[i];
        std::vector<double>& z = ziel(t);
        for (int k = 0; k < 3; ++k) {
            const double a = A[3 * i + k] * faktor;
            z[k] = a;
            t.a[k] = t.a[k] + a;
        }
    }
}

template <class T, class W>
void _add_press(std::vector<T>& teilchen, Paarliste<W>* ww, PhysSystem& phys,
                std::vector<double>& puffer) {
    _sammleAlle(
        teilchen, *ww, phys, puffer,
        [&](W& w) {
            _press(w, w.pt1, w.pt2, phys);
            return w.press;
        },
        [](T& t) -> std::vector<double>& { return t.aPress; });
}

template <class T, class W>
void _add_artvisc(std::vector<T>& teilchen, Paarliste<W>* ww, PhysSystem& phys,
                  std::vector<double>& puffer) {
    _sammleAlle(
        teilchen, *ww, phys, puffer,
        [&](W& w) {
            _pi(w, w.pt1, w.pt2, phys);
            return w.pi;
        },
        [](T& t) -> std::vector<double>& { return t.aArtvisc; });
}

} // namespace scheibe
