#include "bench/Woertlich.h"

#include "physik/Kernel1.h"

#include <cmath>

namespace woertlich {

namespace {

double W_ohne_fak(double h, double r, std::valarray<double>& v) {
    double q = r / h;
    if (h * 0.5 >= r) {
        for (int i = 0; i < 3; ++i)
            v[i] = v[i] * ((3 * q - 2) / h);
        return q * ((q - 1) * 6 * q) + 1;
    }
    double t = 1 - q;
    for (int i = 0; i < 3; ++i)
        v[i] = v[i] * (-(t * t) / r);
    return 2 * (t * t * t);
}

int zelle(double x, double min, double h, std::size_t n) {
    int i = static_cast<int>(std::ceil((x - min) / h));
    if (i < 0)
        return 0;
    if (i >= int(n))
        return int(n) - 1;
    return i;
}

std::valarray<double> vonSeite(const WW& w, const Teilchen* t, const std::valarray<double>& x) {
    if (w.t1 == t)
        return x;
    return -x;
}

} // namespace

Scheibe::Scheibe(const std::vector<Vektor3>& r, const std::vector<Vektor3>& v,
                 const PhysSystem& phys) {
    teilchen.resize(r.size());
    for (std::size_t i = 0; i < r.size(); ++i)
        for (int k = 0; k < 3; ++k) {
            teilchen[i].r[k] = r[i][k];
            teilchen[i].v[k] = v[i][k];
        }
    h = phys.h;
    h2 = h * h;
    const double x1 = phys.x1[0];
    const double R = 1.1 * x1 - phys.xL1;
    min = {x1 - R, -R, -0.1 * R};
    max = {x1 + R, R, 0.1 * R};
    std::size_t n[3];
    for (int k = 0; k < 3; ++k)
        n[k] = std::size_t(std::floor((max[k] - min[k]) / h) + 2);
    gitter.resize(n[0]);
    for (auto& ebene : gitter) {
        ebene.resize(n[1]);
        for (auto& saeule : ebene)
            saeule.resize(n[2]);
    }
}

void Scheibe::paar(Teilchen* p, Teilchen* q, const PhysSystem& phys) {
    std::valarray<double> s = q->r - p->r;
    double s2 = s[0] * s[0] + s[1] * s[1] + s[2] * s[2];
    if (!(s2 < h2))
        return;
    ww.emplace_back();
    WW& w = ww.back();
    w.t1 = p;
    w.t2 = q;
    w.d = std::sqrt(s2);
    w.r = s;
    w.dv = q->v - p->v;
    w.dW = -s;
    w.W = W_ohne_fak(phys.kernel->h, w.d, w.dW);
    p->ww.push_back(&w);
    q->ww.push_back(&w);
}

void Scheibe::auswerten(const PhysSystem& phys) {
    const Kernel1& kern = *static_cast<const Kernel1*>(phys.kernel);
    const double m = phys.mTeilchen;
    // force_init: accelerations to zero, the pairs anew, densities and the
    // equation of state.
    for (Teilchen& t : teilchen) {
        t.a = 0.0;
        t.ww.clear();
    }
    ww.clear();
    for (auto& ebene : gitter)
        for (auto& saeule : ebene)
            for (auto& z : saeule)
                z.clear();
    for (Teilchen& t : teilchen)
        gitter[std::size_t(zelle(t.r[0], min[0], h, gitter.size()))]
              [std::size_t(zelle(t.r[1], min[1], h, gitter[0].size()))]
              [std::size_t(zelle(t.r[2], min[2], h, gitter[0][0].size()))]
                  .push_back(&t);
    const int nx = int(gitter.size()), ny = int(gitter[0].size()), nz = int(gitter[0][0].size());
    for (int i = 1; i <= nx - 2; ++i)
        for (int j = 1; j <= ny - 2; ++j)
            for (int k = 1; k <= nz - 2; ++k) {
                std::vector<Teilchen*>& heim = gitter[i][j][k];
                for (std::size_t a = 0; a < heim.size(); ++a)
                    for (std::size_t b = a + 1; b < heim.size(); ++b)
                        paar(heim[a], heim[b], phys);
                auto nachbar = [&](int a, int b, int c) {
                    for (Teilchen* p : gitter[a][b][c])
                        for (Teilchen* q : heim)
                            paar(p, q, phys);
                };
                nachbar(i, j, k + 1);
                for (int c = -1; c <= 1; ++c)
                    nachbar(i, j + 1, k + c);
                for (int b = -1; b <= 1; ++b)
                    for (int c = -1; c <= 1; ++c)
                        nachbar(i + 1, j + b, k + c);
            }
    for (Teilchen& t : teilchen) {
        double S = 1.0;
        for (WW* w : t.ww)
            S += w->W;
        t.rho = m * kern.fak * S;
        t.p = 0.0005 * std::pow(t.rho, 1.6666666666666667);
        t.temperatur = 14565369377.767422 * std::pow(t.rho, 0.6666666666666667);
        t.cs = std::sqrt(3.4328e-14 * t.temperatur);
    }

    // Externforce.
    const double minusG = -3.9371199385708905e-7, omega = phys.omega;
    const double omega2 = std::pow(omega, 2.0);
    for (Teilchen& t : teilchen) {
        std::valarray<double> d1 = t.r - phys.x1, d2 = t.r - phys.x2;
        const double r1 = std::sqrt(d1[0] * d1[0] + d1[1] * d1[1] + d1[2] * d1[2]);
        const double r2 = std::sqrt(d2[0] * d2[0] + d2[1] * d2[1] + d2[2] * d2[2]);
        const double c[3] = {t.v[1] * omega, -t.v[0] * omega, 0};
        for (int k = 0; k < 3; ++k) {
            double A = minusG * (phys.m1 * (d1[k] / std::pow(r1, 3.0)));
            A += minusG * (phys.m2 * (d2[k] / std::pow(r2, 3.0)));
            A += 2.0 * c[k];
            A += omega2 * t.r[k];
            t.a[k] = t.a[k] + A;
        }
    }

    // Pressure, then artificial viscosity: the pair terms, then every
    // particle's sum.
    for (WW& w : ww)
        w.press = (w.t1->p + w.t2->p) / (w.t1->rho * w.t2->rho);
    for (Teilchen& t : teilchen) {
        std::valarray<double> A(0.0, 3);
        for (WW* w : t.ww)
            A = A - w->press * vonSeite(*w, &t, w->dW);
        A = A * (m * kern.dfak);
        t.aPress = A;
        t.a += A;
    }
    for (WW& w : ww) {
        double s = w.dv[0] * w.r[0] + w.dv[1] * w.r[1] + w.dv[2] * w.r[2];
        w.pi = 0;
        if (s < 0) {
            double mu = h * s / (w.d * w.d + 0.01 * (h * h));
            w.pi = mu * (-phys.alpha * (w.t1->cs + w.t2->cs) + 2 * phys.beta * mu) /
                   (w.t1->rho + w.t2->rho);
        }
    }
    for (Teilchen& t : teilchen) {
        std::valarray<double> B(0.0, 3);
        for (WW* w : t.ww)
            B = B - w->pi * vonSeite(*w, &t, w->dW);
        B = B * (m * kern.dfak);
        t.aArtvisc = B;
        t.a += B;
    }

    // Physvisc: pair tensors, particle tensors, pair vectors, particle sums.
    for (WW& w : ww) {
        const std::valarray<double>&a = w.dv, &b = w.dW;
        w.sigmaTensor[0] =
            1.3333333333333333 * a[0] * b[0] - 0.6666666666666666 * (a[1] * b[1] + a[2] * b[2]);
        w.sigmaTensor[1] = a[0] * b[1] + a[1] * b[0];
        w.sigmaTensor[2] = a[0] * b[2] + a[2] * b[0];
        w.sigmaTensor[3] =
            1.3333333333333333 * a[1] * b[1] - 0.6666666666666666 * (a[0] * b[0] + a[2] * b[2]);
        w.sigmaTensor[4] = a[1] * b[2] + a[2] * b[1];
        w.sigmaTensor[5] =
            1.3333333333333333 * a[2] * b[2] - 0.6666666666666666 * (a[0] * b[0] + a[1] * b[1]);
    }
    for (Teilchen& t : teilchen) {
        std::valarray<double> S(0.0, 6);
        for (WW* w : t.ww)
            S += w->sigmaTensor / (w->t1 == &t ? w->t2 : w->t1)->rho;
        t.sigmaTensor = S * (kern.dfak * m);
    }
    for (WW& w : ww) {
        std::valarray<double> T = w.t1->sigmaTensor / w.t2->rho + w.t2->sigmaTensor / w.t1->rho;
        const std::valarray<double>& b = w.dW;
        w.physviscVektor[0] = T[0] * b[0] + T[1] * b[1] + T[2] * b[2];
        w.physviscVektor[1] = T[1] * b[0] + T[3] * b[1] + T[4] * b[2];
        w.physviscVektor[2] = T[2] * b[0] + T[4] * b[1] + T[5] * b[2];
    }
    for (Teilchen& t : teilchen) {
        std::valarray<double> A(0.0, 3);
        for (WW* w : t.ww)
            A += vonSeite(*w, &t, w->physviscVektor);
        A = A * (m * phys.viskositaet * kern.dfak);
        t.aPhysvisc = A;
        t.a += A;
    }
}

} // namespace woertlich
