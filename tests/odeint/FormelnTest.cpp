// Every formula of the forces and of the stepper's stages against a literal transcription of its
// definition, bit for bit, on a random disc of 4000 particles, on one thread and on three; each
// particle's pair list entry by entry against a literal search. The transcriptions keep the written
// operation order and grouping (x*x + y*y then + z*z; 0.01 * (h*h); h * (b * k) added in order):
// a regrouped sum or reordered product shows here even where a six-digit run would not show it.

#include "odeint/RungeKutta.h"
#include "scheibe/PressArtviscTemplates.h"
#include "scheibe/SphTemplates.h"
#include "tests/odeint/Zufallsscheibe.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>
#include <vector>

namespace {

// Bit-for-bit equality of doubles, counted; the first few differences are reported.
struct Vergleich {
    long pruefungen = 0, fehler = 0;
    void operator()(double ist, double soll, const char* was, long wo) {
        ++pruefungen;
        if (std::memcmp(&ist, &soll, sizeof ist) != 0 && ++fehler <= 5)
            ADD_FAILURE() << was << " at " << wo << ": " << ist << " instead of " << soll;
    }
};

// The cubic-spline kernel without its factor; v becomes the gradient without dfak.
double kern(double h, double r, double v[3]) {
    double q = r / h;
    if (h * 0.5 >= r) {
        for (int i = 0; i < 3; ++i)
            v[i] = v[i] * ((3 * q - 2) / h);
        return q * ((q - 1) * 6 * q) + 1;
    }
    for (int i = 0; i < 3; ++i)
        v[i] = v[i] * (-((1 - q) * (1 - q)) / r);
    return 2 * (((1 - q) * (1 - q)) * (1 - q));
}

// The pair list as the definition builds it, literally: a grid of nested vectors over the box,
// the particles binned with ceil in vector order (clamped into the border cells), the home cells
// in (i, j, k) order, each with itself (m < n) and its 13 forward neighbours (the neighbour's
// particle first), pairs strictly closer than h.
std::vector<std::pair<int, int>> literaleSuche(const PhysviscAkkScheibe& s) {
    const std::vector<PhysviscTeilchen>& t = s.teilchen;
    int n[3];
    for (int c = 0; c < 3; ++c)
        n[c] = int(std::floor((s.max[c] - s.min[c]) / s.h)) + 2;
    std::vector<std::vector<std::vector<std::vector<int>>>> g(
        n[0], std::vector<std::vector<std::vector<int>>>(n[1], std::vector<std::vector<int>>(n[2])));
    for (int i = 0; i < int(t.size()); ++i) {
        int z[3];
        for (int c = 0; c < 3; ++c)
            z[c] = std::clamp(int(std::ceil((t[i].r[c] - s.min[c]) / s.h)), 0, n[c] - 1);
        g[z[0]][z[1]][z[2]].push_back(i);
    }
    std::vector<std::pair<int, int>> paare;
    auto paar = [&](int p, int q) {
        double d[3];
        for (int c = 0; c < 3; ++c)
            d[c] = t[q].r[c] - t[p].r[c];
        if ((d[0] * d[0] + d[1] * d[1]) + d[2] * d[2] < s.h2)
            paare.push_back({p, q});
    };
    for (int i = 1; i <= n[0] - 2; ++i)
        for (int j = 1; j <= n[1] - 2; ++j)
            for (int k = 1; k <= n[2] - 2; ++k) {
                const std::vector<int>& H = g[i][j][k];
                for (std::size_t a = 0; a < H.size(); ++a)
                    for (std::size_t b = a + 1; b < H.size(); ++b)
                        paar(H[a], H[b]);
                auto nachbar = [&](int a, int b, int c) {
                    for (int p : g[a][b][c])
                        for (int q : H)
                            paar(p, q);
                };
                nachbar(i, j, k + 1);
                for (int c = -1; c <= 1; ++c)
                    nachbar(i, j + 1, k + c);
                for (int b = -1; b <= 1; ++b)
                    for (int c = -1; c <= 1; ++c)
                        nachbar(i + 1, j + b, k + c);
            }
    return paare;
}

// The random disc with h = 0.0237 (some 30 000 pairs) on GetParam() threads.
struct Formeln : ::testing::TestWithParam<int> {
    hilfen::Fadenzahl faeden{GetParam()};
    hilfen::Zufallslauf l{"Anfangsschrittweite 20 Viskositaet 3e-7 Smoothinglength 0.0237", 11};
    hilfen::Mitschnitt still{std::cout};
};

TEST_P(Formeln, KraefteWieIhreDefinition) {
    l.k.derivatives(l.s, l.phys);
    PhysSystem& ph = l.phys;
    const double m = ph.mTeilchen, h = ph.h, fak = l.kernel.fak, dfak = l.kernel.dfak;
    std::vector<PhysviscTeilchen>& t = l.s.teilchen;
    Vergleich v;

    // Every particle lists its partners in the order of the literal search.
    const std::vector<std::pair<int, int>> paare = literaleSuche(l.s);
    ASSERT_GT(paare.size(), 20000u);
    std::vector<std::vector<long>> liste(t.size()); // each particle's pairs, by number
    for (std::size_t n = 0; n < paare.size(); ++n) {
        liste[std::size_t(paare[n].first)].push_back(long(n));
        liste[std::size_t(paare[n].second)].push_back(long(n));
    }
    for (std::size_t i = 0; i < t.size(); ++i) {
        const PaarSicht<PhysviscWW>& sicht = t[i].pvww;
        ASSERT_EQ(sicht.size(), liste[i].size()) << "particle " << i;
        for (std::size_t k = 0; k < sicht.size(); ++k) {
            const auto [p, q] = paare[std::size_t(liste[i][k])];
            ASSERT_EQ(long(l.s.gitter->index[sicht.partner(k)]), long(p) == long(i) ? q : p)
                << "particle " << i << ", pair " << k;
        }
    }

    // The pair records on request: separation, distance, velocity difference, kernel, gradient.
    const std::vector<PhysviscWW> ww = scheibe::_paare<PhysviscWW>(l.s, t, *l.s.gitter, l.phys);
    ASSERT_EQ(ww.size(), paare.size());
    struct Paar {
        double d, W, sep[3], dv[3], g[3], press, pi, sig[6], pv[3];
    };
    std::vector<Paar> soll(paare.size());
    for (std::size_t n = 0; n < paare.size(); ++n) {
        const PhysviscTeilchen &a = t[std::size_t(paare[n].first)], &b = t[std::size_t(paare[n].second)];
        Paar& P = soll[n];
        for (int c = 0; c < 3; ++c)
            P.sep[c] = b.r[c] - a.r[c], P.g[c] = -P.sep[c], P.dv[c] = b.v[c] - a.v[c];
        P.d = std::sqrt((P.sep[0] * P.sep[0] + P.sep[1] * P.sep[1]) + P.sep[2] * P.sep[2]);
        P.W = kern(h, P.d, P.g);
        const PhysviscWW& w = ww[n];
        ASSERT_EQ(w.pt1, &a);
        ASSERT_EQ(w.pt2, &b);
        v(w.d, P.d, "d", long(n));
        v(w.W, P.W, "W", long(n));
        for (int c = 0; c < 3; ++c) {
            v(w.r[c], P.sep[c], "r", long(n));
            v(w.dv[c], P.dv[c], "dv", long(n));
            v(w.dW[c], P.g[c], "dW", long(n));
        }
    }

    // Density and equation of state.
    for (std::size_t i = 0; i < t.size(); ++i) {
        double S = 1.0;
        for (long n : liste[i])
            S += soll[std::size_t(n)].W;
        const double rho = (m * fak) * S;
        const double T = 14565369377.767422 * std::pow(rho, 0.6666666666666667);
        v(t[i].rho, rho, "rho", long(i));
        v(t[i].p, 0.0005 * std::pow(rho, 1.6666666666666667), "p", long(i));
        v(t[i].temperatur, T, "temperatur", long(i));
        v(t[i].cs, std::sqrt(3.4328e-14 * T), "cs", long(i));
    }

    // Pair terms: pressure, artificial viscosity (approaching pairs only), shear tensor and, from
    // the particles' tensors, viscous vector; each also as the record's own operations give it.
    for (std::size_t n = 0; n < paare.size(); ++n) {
        const PhysviscTeilchen &a = t[std::size_t(paare[n].first)], &b = t[std::size_t(paare[n].second)];
        Paar& P = soll[n];
        P.press = (a.p + b.p) / (a.rho * b.rho);
        const double sp = (P.dv[0] * P.sep[0] + P.dv[1] * P.sep[1]) + P.dv[2] * P.sep[2];
        P.pi = 0;
        if (sp < 0) {
            const double mu = (h * sp) / (P.d * P.d + 0.01 * (h * h));
            P.pi = (mu * (-ph.alpha * (a.cs + b.cs) + (2 * ph.beta) * mu)) / (a.rho + b.rho);
        }
        const double *x = P.dv, *y = P.g;
        const double sig[6] = {
            (1.3333333333333333 * x[0]) * y[0] - 0.6666666666666666 * (x[1] * y[1] + x[2] * y[2]),
            x[0] * y[1] + x[1] * y[0],
            x[0] * y[2] + x[2] * y[0],
            (1.3333333333333333 * x[1]) * y[1] - 0.6666666666666666 * (x[0] * y[0] + x[2] * y[2]),
            x[1] * y[2] + x[2] * y[1],
            (1.3333333333333333 * x[2]) * y[2] - 0.6666666666666666 * (x[0] * y[0] + x[1] * y[1])};
        double T[6];
        for (int c = 0; c < 6; ++c)
            P.sig[c] = sig[c], T[c] = a.sigmaTensor[c] / b.rho + b.sigmaTensor[c] / a.rho;
        P.pv[0] = (T[0] * y[0] + T[1] * y[1]) + T[2] * y[2];
        P.pv[1] = (T[1] * y[0] + T[3] * y[1]) + T[4] * y[2];
        P.pv[2] = (T[2] * y[0] + T[4] * y[1]) + T[5] * y[2];
        PhysviscWW w = ww[n];
        scheibe::_press(w, w.pt1, w.pt2, ph);
        scheibe::_pi(w, w.pt1, w.pt2, ph);
        w.sigma(ph);
        w.physvisc(ph);
        v(w.press, P.press, "press", long(n));
        v(w.pi, P.pi, "pi", long(n));
        for (int c = 0; c < 6; ++c)
            v(w.sigmaTensor[c], P.sig[c], "sigma of the pair", long(n));
        for (int c = 0; c < 3; ++c)
            v(w.physviscVektor[c], P.pv[c], "physvisc", long(n));
    }

    // Particle sums over the particle's pairs in list order, and the acceleration: external force,
    // then pressure, artificial and physical viscosity, each added to what came before.
    const double G = -3.9371199385708905e-7, om = ph.omega, om2 = std::pow(om, 2.0);
    for (std::size_t i = 0; i < t.size(); ++i) {
        const PhysviscTeilchen& x = t[i];
        double P[3] = {0, 0, 0}, Q[3] = {0, 0, 0}, V[3] = {0, 0, 0}, S[6] = {0, 0, 0, 0, 0, 0};
        for (long n : liste[i]) {
            const Paar& w = soll[std::size_t(n)];
            const auto [p, q] = paare[std::size_t(n)];
            const bool erster = p == int(i);
            const PhysviscTeilchen& anderer = t[std::size_t(erster ? q : p)];
            for (int c = 0; c < 3; ++c) {
                const double g = erster ? w.g[c] : -w.g[c];
                P[c] = P[c] - w.press * g;
                Q[c] = Q[c] - w.pi * g;
                V[c] += erster ? w.pv[c] : -w.pv[c];
            }
            for (int c = 0; c < 6; ++c)
                S[c] += w.sig[c] / anderer.rho;
        }
        for (int c = 0; c < 6; ++c)
            v(x.sigmaTensor[c], S[c] * (dfak * m), "sigma", long(i));
        double d1[3], d2[3];
        for (int c = 0; c < 3; ++c)
            d1[c] = x.r[c] - ph.x1[c], d2[c] = x.r[c] - ph.x2[c];
        const double r1 = std::sqrt((d1[0] * d1[0] + d1[1] * d1[1]) + d1[2] * d1[2]);
        const double r2 = std::sqrt((d2[0] * d2[0] + d2[1] * d2[1]) + d2[2] * d2[2]);
        const double cor[3] = {x.v[1] * om, -x.v[0] * om, 0};
        for (int c = 0; c < 3; ++c) {
            double A = G * (ph.m1 * (d1[c] / std::pow(r1, 3.0)));
            A += G * (ph.m2 * (d2[c] / std::pow(r2, 3.0)));
            A += 2.0 * cor[c];
            A += om2 * x.r[c];
            const double p = P[c] * (m * dfak), q = Q[c] * (m * dfak);
            const double pv = V[c] * ((m * ph.viskositaet) * dfak);
            v(x.aPress[c], p, "aPress", long(i));
            v(x.aArtvisc[c], q, "aArtvisc", long(i));
            v(x.aPhysvisc[c], pv, "aPhysvisc", long(i));
            v(x.a[c], (((0.0 + A) + p) + q) + pv, "a", long(i));
        }
    }
    EXPECT_EQ(v.fehler, 0) << "of " << v.pruefungen << " doubles";
}

// The forces, keeping a copy of each stage state (r, v from the stepper, a from the forces).
struct Mitschrift : RechteSeiteDG {
    RechteSeiteDG& kraefte;
    std::vector<std::vector<Teilchen>> stufen;
    explicit Mitschrift(RechteSeiteDG& k) : kraefte(k) {}
    void deriv_ohne_init(AkkScheibe& s, PhysSystem& phys) override {
        kraefte.deriv_ohne_init(s, phys);
        stufen.emplace_back();
        for (int i = 0; i < s.tanz(); ++i)
            stufen.back().push_back(s[i]);
    }
    AkkScheibe* createAkkScheibe(InitAkkScheibe&, PhysSystem&) override { return nullptr; }
    int scheibe() override { return kraefte.scheibe(); }
};

TEST_P(Formeln, StufenDesSchrittsWieIhreDefinition) {
    RungeKutta rk(l.s, l.io);
    // Sized as stepper sizes them.
    rk.ytemp->odeint_init(l.s);
    const std::size_t n = std::size_t(l.s.tanz());
    rk.yerr.resize(n);
    for (auto* k : {&rk.ak2, &rk.ak3, &rk.ak4, &rk.ak5, &rk.ak6})
        k->resize(n);
    l.k.derivatives(l.s, l.phys);
    Mitschrift m(l.k);
    const double h = 7.5;
    rk.rkck(l.s, h, l.phys, m);
    ASSERT_EQ(m.stufen.size(), 5u);
    // Tableau rows (stages 2 to 6, fifth-order result, error) as (coefficient, stage 0 = start).
    const char* namen[] = {"ak2", "ak3", "ak4", "ak5", "ak6", "ytemp", "yerr"};
    const std::vector<std::pair<double, int>> zeilen[] = {
        {{rk.b21, 0}},
        {{rk.b31, 0}, {rk.b32, 1}},
        {{rk.b41, 0}, {rk.b42, 1}, {rk.b43, 2}},
        {{rk.b51, 0}, {rk.b52, 1}, {rk.b53, 2}, {rk.b54, 3}},
        {{rk.b61, 0}, {rk.b62, 1}, {rk.b63, 2}, {rk.b64, 3}, {rk.b65, 4}},
        {{rk.c1, 0}, {rk.c3, 2}, {rk.c4, 3}, {rk.c6, 5}},
        {{rk.dc1, 0}, {rk.dc3, 2}, {rk.dc4, 3}, {rk.dc5, 4}, {rk.dc6, 5}}};
    const std::vector<RungeKutta::Ableitung>* gespeichert[] = {&rk.ak2, &rk.ak3, &rk.ak4,
                                                                &rk.ak5, &rk.ak6};
    Vergleich v;
    for (int i = 0; i < l.s.tanz(); ++i) {
        const std::size_t j = std::size_t(i);
        const Teilchen* stufe[] = {&l.s[i],         &m.stufen[0][j], &m.stufen[1][j],
                                   &m.stufen[2][j], &m.stufen[3][j], &m.stufen[4][j],
                                   &(*rk.ytemp)[i], &rk.yerr[j]};
        // The derivatives kept are those of the stage states.
        for (int st = 0; st < 5; ++st)
            for (int c = 0; c < 3; ++c) {
                v((*gespeichert[st])[j].v[c], stufe[st + 1]->v[c], "k.v", i);
                v((*gespeichert[st])[j].a[c], stufe[st + 1]->a[c], "k.a", i);
            }
        // Position rows use the velocities, velocity rows the accelerations; terms h * (b * k) are
        // added in order to the start value (the error estimate has none).
        for (int zeile = 0; zeile < 2; ++zeile)
            for (int c = 0; c < 3; ++c) {
                auto basis = [&](const Teilchen* x) { return zeile ? x->v[c] : x->r[c]; };
                auto k = [&](int st) { return zeile ? stufe[st]->a[c] : stufe[st]->v[c]; };
                for (int z = 0; z < 7; ++z) {
                    const auto& t = zeilen[z];
                    const double erster = h * (t[0].first * k(t[0].second));
                    double soll = z < 6 ? basis(stufe[0]) + erster : erster;
                    for (std::size_t e = 1; e < t.size(); ++e)
                        soll = soll + h * (t[e].first * k(t[e].second));
                    v(basis(stufe[z + 1]), soll, namen[z], i);
                }
            }
        for (int c = 0; c < 3; ++c)
            v(stufe[6]->a[c], stufe[0]->a[c], "ytemp.a", i);
    }
    EXPECT_GT(v.pruefungen, 100000);
    EXPECT_EQ(v.fehler, 0) << "of " << v.pruefungen << " doubles";
}

INSTANTIATE_TEST_SUITE_P(Faeden, Formeln, ::testing::Values(1, 3),
                         [](const auto& info) { return std::to_string(info.param) + "_Faeden"; });

} // namespace
