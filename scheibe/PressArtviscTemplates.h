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
#include "scheibe/Faeden.h"
#include "scheibe/Gitter.h"
#include "scheibe/Paare.h"
#include "scheibe/PhysviscWW.h"

#include "scheibe/Paarliste.h"
#include <cmath>
#include <vector>

namespace scheibe {

inline const Kernel1& kernel1(const PhysSystem& phys) {
    return *static_cast<const Kernel1*>(phys.kernel);
}

// Asks the memory system for the given fields of all of a particle's pair
// records at once, before the sum walks them one by one: the records lie
// apart, and fetching them one after the other would wait for each in turn.
template <class L, class... F> void vorladen(const L& paare, F... felder) {
    for (const auto* w : paare)
        (__builtin_prefetch(&(w->*felder)), ...);
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

template <class T, class L> void _force_init(T& t, const L& paare, PhysSystem& phys) {
    vorladen(paare, &SphWW::W);
    double s = 1.0;
    for (const auto* w : paare)
        s += w->W;
    _zustand(t, s, phys);
}

// The pressure term (P_i + P_j) / (rho_i rho_j) of a pair.
template <class T> double _pressterm(const T* erster, const T* zweiter) {
    return (erster->p + zweiter->p) / (erster->rho * zweiter->rho);
}

// The viscosity term Pi_ij of a pair; zero unless the partners approach each
// other (v_ij . r_ij < 0; also zero when that is not a number).
template <class T, class W>
double _piterm(const W& w, const T* erster, const T* zweiter, const PhysSystem& phys) {
    double s = w.dv[0] * w.r[0] + w.dv[1] * w.r[1] + w.dv[2] * w.r[2];
    if (!(s < 0))
        return 0;
    const double h = phys.h;
    double mu = h * s / (w.d * w.d + 0.01 * (h * h));
    return mu * (-phys.alpha * (erster->cs + zweiter->cs) + 2 * phys.beta * mu) /
           (erster->rho + zweiter->rho);
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

// One particle's accumulation: A = -sum term(pair) g, scaled by m f_grad,
// stored in `ziel` and added to the acceleration.
template <class T, class L, class Term>
void _sammle(T& t, T* self, const L& paare, PhysSystem& phys, Vektor3& ziel, Term term) {
    double A[3] = {0, 0, 0};
    double g[3];
    for (auto* w : paare) {
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

template <class T, class L>
void _add_press(T& t, T* self, const L& paare, PhysSystem& phys) {
    _sammle(t, self, paare, phys, t.aPress, [](const auto& w) { return w.press; });
}

template <class T, class L>
void _add_artvisc(T& t, T* self, const L& paare, PhysSystem& phys) {
    _sammle(t, self, paare, phys, t.aArtvisc, [](const auto& w) { return w.pi; });
}

// A pair pass: f(pair) for every pair, each slab's pairs on one thread.
template <class W, class F> void _fuer_alle_paare(Paarliste<W>& ww, F f) {
    const std::ptrdiff_t slabs = static_cast<std::ptrdiff_t>(ww.anzahlTeile());
#pragma omp parallel for schedule(static, 1) if (slabs > 1)
    for (std::ptrdiff_t sl = 0; sl < slabs; ++sl)
        ww.teile[std::size_t(sl)].fuer_alle(f);
}

// A particle pass: f(particle) for every particle, in the grid's slot order.
template <class T, class F> void _fuer_alle_teilchen(std::vector<T>& teilchen, const Gitter<T>& g, F f) {
    g.fuerJedenSlot(teilchen.size(), [&](std::size_t i) { f(teilchen[i]); });
}

// One particle's accumulation A = -m f_grad sum term(pair) g over its pairs
// in pair-list order, with each pair's term formed on the way from the pair
// and its two partners, first and second, as the pair pass would form it;
// the pair's first partner stores it in the pair (`feld`), so that after the
// pass every pair holds its term. The sum is this particle's own, so the
// particles can be handled in any order and on any thread. The partners are
// read through the gas pair's own pointers (the same particles as those of a
// viscous pair), which lie next to the gradient and the two terms.
template <class T, class W, class Term, class... Felder>
void _sammleMitTerm(T& t, PhysSystem& phys, Vektor3& ziel, double PressArtviscWW::*feld,
                    Term term, Felder... gelesen) {
    double A[3] = {0, 0, 0};
    vorladen(paare(t), &PressArtviscWW::pt1, &SphWW::dW, feld, gelesen...);
    for (PressArtviscWW* w : paare(t)) {
        const double f = term(*w);
        if (w->pt1 == &t) {
            w->*feld = f;
            for (int k = 0; k < 3; ++k)
                A[k] = A[k] - f * w->dW[k];
        } else {
            for (int k = 0; k < 3; ++k) {
                const double g = -w->dW[k];
                A[k] = A[k] - f * g;
            }
        }
    }
    const double faktor = phys.mTeilchen * kernel1(phys).dfak;
    for (int k = 0; k < 3; ++k) {
        A[k] = A[k] * faktor;
        ziel[k] = A[k];
        t.a[k] = t.a[k] + A[k];
    }
}

// The whole passes: every pair's term, then every particle's sum, fused into
// one pass over the particles.
template <class T, class W>
void _add_press(std::vector<T>& teilchen, const Gitter<T>& g, Paarliste<W>*, PhysSystem& phys) {
    _fuer_alle_teilchen(teilchen, g, [&](T& t) {
        _sammleMitTerm<T, W>(t, phys, t.aPress, &W::press,
                       [](const PressArtviscWW& w) { return _pressterm(w.pt1, w.pt2); });
    });
}

template <class T, class W>
void _add_artvisc(std::vector<T>& teilchen, const Gitter<T>& g, Paarliste<W>*, PhysSystem& phys) {
    _fuer_alle_teilchen(teilchen, g, [&](T& t) {
        _sammleMitTerm<T, W>(t, phys, t.aArtvisc, &W::pi,
                       [&](const PressArtviscWW& w) { return _piterm(w, w.pt1, w.pt2, phys); },
                       &SphWW::r,
                       &SphWW::dv);
    });
}

} // namespace scheibe
