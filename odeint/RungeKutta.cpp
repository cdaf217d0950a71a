#include "odeint/RungeKutta.h"

#include "kraefte/RechteSeiteDG.h"
#include "scheibe/Faeden.h"
#include "scheibe/AkkScheibe.h"

#include <cmath>
#include <cstddef>
#include <iostream>

namespace {
// f(i) for every particle i of a disc, spread over the threads: the stage
// arithmetic of one particle does not depend on any other particle.
template <class F> void fuerJedesTeilchen(int n, F f) {
#pragma omp parallel for schedule(static) if (n >= scheibe::mindestens)
    for (int i = 0; i < n; ++i)
        f(i);
}
} // namespace

RungeKutta::RungeKutta(AkkScheibe& scheibe, InitOdeint& init) : Odeint(init) {
    ytemp = scheibe.clone();
    yerr = scheibe.clone();
    ak2 = scheibe.clone();
    ak3 = scheibe.clone();
    ak4 = scheibe.clone();
    ak5 = scheibe.clone();
    ak6 = scheibe.clone();
}

RungeKutta::~RungeKutta() {
    delete yerr;
    delete ytemp;
    delete ak2;
    delete ak3;
    delete ak4;
    delete ak5;
    delete ak6;
}

void RungeKutta::rkck(AkkScheibe& y, double h, PhysSystem& phys, RechteSeiteDG& kraefte) {
    AkkScheibe& k2 = *ak2;
    AkkScheibe& k3 = *ak3;
    AkkScheibe& k4 = *ak4;
    AkkScheibe& k5 = *ak5;
    AkkScheibe& k6 = *ak6;
    // Every stage is base + h*(b*k) + ..., each term formed as h times
    // (coefficient times vector) and added in order; r advances with v, v with a.
    // The particle count does not change within a step.
    const int n = y.tanz();
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& s = k2[i];
        for (int k = 0; k < 3; ++k) {
            s.r[k] = p.r[k] + h * (b21 * p.v[k]);
            s.v[k] = p.v[k] + h * (b21 * p.a[k]);
        }
    });
    kraefte.derivatives(k2, phys);
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& q2 = k2[i];
        Teilchen& s = k3[i];
        for (int k = 0; k < 3; ++k) {
            s.r[k] = p.r[k] + h * (b31 * p.v[k]) + h * (b32 * q2.v[k]);
            s.v[k] = p.v[k] + h * (b31 * p.a[k]) + h * (b32 * q2.a[k]);
        }
    });
    kraefte.derivatives(k3, phys);
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& q2 = k2[i];
        Teilchen& q3 = k3[i];
        Teilchen& s = k4[i];
        for (int k = 0; k < 3; ++k) {
            s.r[k] = p.r[k] + h * (b41 * p.v[k]) + h * (b42 * q2.v[k]) + h * (b43 * q3.v[k]);
            s.v[k] = p.v[k] + h * (b41 * p.a[k]) + h * (b42 * q2.a[k]) + h * (b43 * q3.a[k]);
        }
    });
    kraefte.derivatives(k4, phys);
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& q2 = k2[i];
        Teilchen& q3 = k3[i];
        Teilchen& q4 = k4[i];
        Teilchen& s = k5[i];
        for (int k = 0; k < 3; ++k) {
            s.r[k] = p.r[k] + h * (b51 * p.v[k]) + h * (b52 * q2.v[k]) + h * (b53 * q3.v[k]) +
                     h * (b54 * q4.v[k]);
            s.v[k] = p.v[k] + h * (b51 * p.a[k]) + h * (b52 * q2.a[k]) + h * (b53 * q3.a[k]) +
                     h * (b54 * q4.a[k]);
        }
    });
    kraefte.derivatives(k5, phys);
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& q2 = k2[i];
        Teilchen& q3 = k3[i];
        Teilchen& q4 = k4[i];
        Teilchen& q5 = k5[i];
        Teilchen& s = k6[i];
        for (int k = 0; k < 3; ++k) {
            s.r[k] = p.r[k] + h * (b61 * p.v[k]) + h * (b62 * q2.v[k]) + h * (b63 * q3.v[k]) +
                     h * (b64 * q4.v[k]) + h * (b65 * q5.v[k]);
            s.v[k] = p.v[k] + h * (b61 * p.a[k]) + h * (b62 * q2.a[k]) + h * (b63 * q3.a[k]) +
                     h * (b64 * q4.a[k]) + h * (b65 * q5.a[k]);
        }
    });
    kraefte.derivatives(k6, phys);
    AkkScheibe& yt = *ytemp;
    AkkScheibe& ye = *yerr;
    fuerJedesTeilchen(n, [&](int i) {
        Teilchen& p = y[i];
        Teilchen& q3 = k3[i];
        Teilchen& q4 = k4[i];
        Teilchen& q5 = k5[i];
        Teilchen& q6 = k6[i];
        Teilchen& t = yt[i];
        Teilchen& e = ye[i];
        for (int k = 0; k < 3; ++k)
            t.r[k] = p.r[k] + h * (c1 * p.v[k]) + h * (c3 * q3.v[k]) + h * (c4 * q4.v[k]) +
                     h * (c6 * q6.v[k]);
        for (int k = 0; k < 3; ++k)
            t.v[k] = p.v[k] + h * (c1 * p.a[k]) + h * (c3 * q3.a[k]) + h * (c4 * q4.a[k]) +
                     h * (c6 * q6.a[k]);
        // The result carries the acceleration of the step's start.
        t.a = p.a;
        for (int k = 0; k < 3; ++k)
            e.r[k] = h * (dc1 * p.v[k]) + h * (dc3 * q3.v[k]) + h * (dc4 * q4.v[k]) +
                     h * (dc5 * q5.v[k]) + h * (dc6 * q6.v[k]);
        for (int k = 0; k < 3; ++k)
            e.v[k] = h * (dc1 * p.a[k]) + h * (dc3 * q3.a[k]) + h * (dc4 * q4.a[k]) +
                     h * (dc5 * q5.a[k]) + h * (dc6 * q6.a[k]);
    });
}

void RungeKutta::stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte,
                         double* hdid, double* hnext) {
    yerr->odeint_init(scheibe);
    ytemp->odeint_init(scheibe);
    ak2->odeint_init(scheibe);
    ak3->odeint_init(scheibe);
    ak4->odeint_init(scheibe);
    ak5->odeint_init(scheibe);
    ak6->odeint_init(scheibe);

    double h = this->h;
    double errmax;
    for (;;) {
        rkck(scheibe, h, phys, kraefte);
        // The largest velocity error: a maximum, exact in any order (no
        // component is NaN after max_v_koord).
        errmax = 0.0;
        AkkScheibe& fehler = *yerr;
        const int n = scheibe.tanz();
#pragma omp parallel for schedule(static) reduction(max : errmax) if (n >= scheibe::mindestens)
        for (int i = 0; i < n; ++i) {
            double m = fehler[i].max_v_koord();
            if (m > errmax)
                errmax = m;
        }
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
