#include "odeint/RungeKutta.h"

#include "kraefte/RechteSeiteDG.h"
#include "scheibe/Faeden.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/Verteilung.h"
#include "scheibe/Vorrat.h"

#include <cmath>
#include <cstddef>
#include <iostream>

namespace {
// f(i) for every particle i of a disc, spread over the threads: the stage
// arithmetic of one particle does not depend on any other particle.
template <class F> void fuerJedesTeilchen(int n, F f) {
    scheibe::fuerAlle(std::size_t(n), scheibe::kosten::teilchen, [&](std::size_t i) { f(int(i)); });
}
} // namespace

RungeKutta::RungeKutta(AkkScheibe& scheibe, InitOdeint& init) : Odeint(init) {
    ytemp = scheibe.clone();
}

RungeKutta::~RungeKutta() {
    delete ytemp;
}

void RungeKutta::rkck(AkkScheibe& y, double h, PhysSystem& phys, RechteSeiteDG& kraefte) {
    AkkScheibe& s = *ytemp;
    Ableitung* k2 = ak2.data();
    Ableitung* k3 = ak3.data();
    Ableitung* k4 = ak4.data();
    Ableitung* k5 = ak5.data();
    Ableitung* k6 = ak6.data();
    Teilchen* e = yerr.data();
    // Every stage is base + h*(b*k) + ..., each term formed as h times
    // (coefficient times vector) and added in order; r advances with v, v with a.
    // Each loop first keeps the derivative of the stage just evaluated on s,
    // then overwrites s with the next stage. The particle count does not
    // change within a step.
    const int n = y.tanz();
    auto behalte = [&](Ableitung* k, int i) {
        const Teilchen& q = s[i];
        k[i].v = q.v;
        k[i].a = q.a;
    };
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& t = s[i];
        for (int c = 0; c < 3; ++c) {
            t.r[c] = p.r[c] + h * (b21 * p.v[c]);
            t.v[c] = p.v[c] + h * (b21 * p.a[c]);
        }
    });
    kraefte.derivatives(s, phys);
    fuerJedesTeilchen(n, [&](int i) {
        behalte(k2, i);
        Teilchen& p = y[i];
        Teilchen& t = s[i];
        for (int c = 0; c < 3; ++c) {
            t.r[c] = p.r[c] + h * (b31 * p.v[c]) + h * (b32 * k2[i].v[c]);
            t.v[c] = p.v[c] + h * (b31 * p.a[c]) + h * (b32 * k2[i].a[c]);
        }
    });
    kraefte.derivatives(s, phys);
    fuerJedesTeilchen(n, [&](int i) {
        behalte(k3, i);
        Teilchen& p = y[i];
        Teilchen& t = s[i];
        for (int c = 0; c < 3; ++c) {
            t.r[c] = p.r[c] + h * (b41 * p.v[c]) + h * (b42 * k2[i].v[c]) + h * (b43 * k3[i].v[c]);
            t.v[c] = p.v[c] + h * (b41 * p.a[c]) + h * (b42 * k2[i].a[c]) + h * (b43 * k3[i].a[c]);
        }
    });
    kraefte.derivatives(s, phys);
    fuerJedesTeilchen(n, [&](int i) {
        behalte(k4, i);
        Teilchen& p = y[i];
        Teilchen& t = s[i];
        for (int c = 0; c < 3; ++c) {
            t.r[c] = p.r[c] + h * (b51 * p.v[c]) + h * (b52 * k2[i].v[c]) +
                     h * (b53 * k3[i].v[c]) + h * (b54 * k4[i].v[c]);
            t.v[c] = p.v[c] + h * (b51 * p.a[c]) + h * (b52 * k2[i].a[c]) +
                     h * (b53 * k3[i].a[c]) + h * (b54 * k4[i].a[c]);
        }
    });
    kraefte.derivatives(s, phys);
    fuerJedesTeilchen(n, [&](int i) {
        behalte(k5, i);
        Teilchen& p = y[i];
        Teilchen& t = s[i];
        for (int c = 0; c < 3; ++c) {
            t.r[c] = p.r[c] + h * (b61 * p.v[c]) + h * (b62 * k2[i].v[c]) +
                     h * (b63 * k3[i].v[c]) + h * (b64 * k4[i].v[c]) + h * (b65 * k5[i].v[c]);
            t.v[c] = p.v[c] + h * (b61 * p.a[c]) + h * (b62 * k2[i].a[c]) +
                     h * (b63 * k3[i].a[c]) + h * (b64 * k4[i].a[c]) + h * (b65 * k5[i].a[c]);
        }
    });
    kraefte.derivatives(s, phys);
    fuerJedesTeilchen(n, [&](int i) {
        behalte(k6, i);
        Teilchen& p = y[i];
        Teilchen& t = s[i];
        for (int c = 0; c < 3; ++c)
            t.r[c] = p.r[c] + h * (c1 * p.v[c]) + h * (c3 * k3[i].v[c]) + h * (c4 * k4[i].v[c]) +
                     h * (c6 * k6[i].v[c]);
        for (int c = 0; c < 3; ++c)
            t.v[c] = p.v[c] + h * (c1 * p.a[c]) + h * (c3 * k3[i].a[c]) + h * (c4 * k4[i].a[c]) +
                     h * (c6 * k6[i].a[c]);
        // The result carries the acceleration of the step's start.
        t.a = p.a;
        for (int c = 0; c < 3; ++c)
            e[i].r[c] = h * (dc1 * p.v[c]) + h * (dc3 * k3[i].v[c]) + h * (dc4 * k4[i].v[c]) +
                        h * (dc5 * k5[i].v[c]) + h * (dc6 * k6[i].v[c]);
        for (int c = 0; c < 3; ++c)
            e[i].v[c] = h * (dc1 * p.a[c]) + h * (dc3 * k3[i].a[c]) + h * (dc4 * k4[i].a[c]) +
                        h * (dc5 * k5[i].a[c]) + h * (dc6 * k6[i].a[c]);
    });
}

void RungeKutta::stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte,
                         double* hdid, double* hnext) {
    // The stage storage follows the particle count (capacity is kept).
    const std::size_t anzahl = static_cast<std::size_t>(scheibe.tanz());
    ytemp->odeint_init(scheibe);
    frischMitVorrat(yerr, anzahl);
    yerr.resize(anzahl);
    for (auto* k : {&ak2, &ak3, &ak4, &ak5, &ak6}) {
        frischMitVorrat(*k, anzahl);
        k->resize(anzahl);
    }

    double h = this->h;
    double errmax;
    for (;;) {
        rkck(scheibe, h, phys, kraefte);
        // The largest velocity error: a maximum, exact in any order (no
        // component is NaN after max_v_koord).
        errmax = 0.0;
        const Teilchen* fehler = yerr.data();
        const int n = scheibe.tanz();
#pragma omp parallel for schedule(dynamic, 2048) reduction(max : errmax) \
    if (scheibe::lohnt(double(n) * 2))
        for (int i = 0; i < n; ++i) {
            double m = fehler[i].max_v_koord();
            if (m > errmax)
                errmax = m;
        }
        // Over the processes of a distributed run: the largest of their maxima.
        if (scheibe.verteilung)
            errmax = scheibe.verteilung->maximum(errmax);
        errmax = errmax / eps;
        if (!(errmax > 1.0))
            break; // accepted, also when errmax is not a number
        // Shrink, but by at most a factor of 10 per retry.
        double htemp = std::pow(errmax, PSHRNK) * (h * SAFETY);
        if (h >= 0)
            h = (0.1 * h > htemp) ? 0.1 * h : htemp;
        else
            h = (0.1 * h < htemp) ? 0.1 * h : htemp;
        if (scheibe.t() + h == scheibe.t())
            std::cout << "stepsize underflow in rkqs\n";
    }
    if (errmax > ERRCON)
        *hnext = std::pow(errmax, PGROW) * (h * SAFETY);
    else
        *hnext = h * 5.0;
    *hdid = h;
    ytemp->t(h + scheibe.t());
    scheibe.odeint_assign(*ytemp);
}
