// SPH discs: the cell-grid pair search against brute force, and the
// conservation properties of the pair forces.

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>
#include <tuple>
#include <typeinfo>
#include <utility>

namespace {

// The default binary with h = 0.02 (or the given smoothing length) and an
// initially empty gas disc; the tests put their particles into it directly.
struct Dateien {
    hilfen::TempOrdner ordner;
    std::string param = ordner.datei("p"), disc = ordner.datei("Akk-0");
    explicit Dateien(const std::string& zusatz = "") {
        hilfen::schreibe(param, hilfen::parameter(zusatz));
        hilfen::schreibe(disc, "Teilchenanzahl 0 Teilchendaten:\n");
    }
};

struct Gasscheibe {
    explicit Gasscheibe(const std::string& zusatz = "") : d(zusatz) {}
    Dateien d;
    InitPhysSystem ip{d.param.c_str(), d.disc.c_str()};
    Kernel1 kernel{ip};
    PhysSystem phys{ip, &kernel};
    InitAkkScheibe ia{d.param.c_str(), d.disc.c_str()};
    PhysviscAkkScheibe s{ia, phys};

    void force_init() {
        hilfen::Mitschnitt still(std::cout);
        s.force_init(phys);
    }
};

int zelle(double x, double min, double h, int n) {
    double c = std::ceil((x - min) / h);
    return c < 0 ? 0 : c > n - 1 ? n - 1 : static_cast<int>(c);
}

TEST(SphPaarsuche, FindetGenauDiePaareDerBruteForceRegel) {
    std::mt19937_64 zufall(7);
    std::uniform_real_distribution<double> gleich(0, 1);
    // h = 1e-4 makes some 7e10 cells: the grid keeps only the occupied ones.
    // Clusters at the primary, and over the box's lower and upper corners in
    // x and y, where the border planes (never home cells) hold particles.
    for (auto [n, glaettung, ecke] :
         {std::tuple{0, "", 0}, {1, "", 0}, {40, "", 0}, {600, "", 0}, {600, "", -1}, {600, "", 1},
          {600, "Smoothinglength 1e-4", 0}, {600, "Smoothinglength 1e-4", 1}}) {
        Gasscheibe g(glaettung);
        const double h = g.s.h, f = h / 0.02;
        const double mitte[3] = {ecke < 0   ? g.s.min[0]
                                 : ecke > 0 ? g.s.max[0]
                                            : g.phys.x1[0],
                                 ecke < 0 ? g.s.min[1] : ecke > 0 ? g.s.max[1] : 0.0, 0.0};
        EXPECT_EQ(g.s.gitter->dicht, f == 1);
        const int nx = g.s.gitter->nx, ny = g.s.gitter->ny, nz = g.s.gitter->nz;
        g.s.teilchen.resize(n);
        for (int i = 0; i < n; ++i) {
            auto& r = g.s.teilchen[i].r;
            // A small cluster (so pairs are many) that reaches past the box
            // in z; every fifth particle sits exactly on a cell boundary in x,
            // every seventh at distance exactly h from its predecessor.
            for (int k = 0; k < 3; ++k)
                r[k] = mitte[k] + (gleich(zufall) - 0.5) * 0.12 * f;
            if (i % 5 == 0)
                r[0] = g.s.min[0] + h * std::floor((r[0] - g.s.min[0]) / h);
            if (i % 7 == 6)
                r = {g.s.teilchen[i - 1].r[0] + h, g.s.teilchen[i - 1].r[1],
                     g.s.teilchen[i - 1].r[2]};
        }
        g.force_init();

        // Two particles closer than h pair when the first of their cells in
        // (i, j, k) order is a home cell; t1 is the one in the later cell, or
        // the earlier index within one cell.
        std::set<std::pair<int, int>> erwartet;
        for (int p = 0; p < n; ++p)
            for (int q = p + 1; q < n; ++q) {
                auto &a = g.s.teilchen[p].r, &b = g.s.teilchen[q].r;
                double s[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
                if (!(s[0] * s[0] + s[1] * s[1] + s[2] * s[2] < g.s.h2))
                    continue;
                int za[3] = {zelle(a[0], g.s.min[0], h, nx), zelle(a[1], g.s.min[1], h, ny),
                             zelle(a[2], g.s.min[2], h, nz)};
                int zb[3] = {zelle(b[0], g.s.min[0], h, nx), zelle(b[1], g.s.min[1], h, ny),
                             zelle(b[2], g.s.min[2], h, nz)};
                bool bZuerst = std::lexicographical_compare(zb, zb + 3, za, za + 3);
                const int* heim = bZuerst ? zb : za;
                if (heim[0] < 1 || heim[0] > nx - 2 || heim[1] < 1 || heim[1] > ny - 2 ||
                    heim[2] < 1 || heim[2] > nz - 2)
                    continue;
                bool gleicheZelle = std::equal(za, za + 3, zb);
                erwartet.insert(gleicheZelle ? std::make_pair(p, q)
                                : bZuerst    ? std::make_pair(p, q)
                                             : std::make_pair(q, p));
            }

        std::set<std::pair<int, int>> gefunden;
        PhysviscTeilchen* anfang = g.s.teilchen.data();
        for (PhysviscWW& w : *g.s.ww) {
            EXPECT_TRUE(gefunden.insert({int(w.pt1 - anfang), int(w.pt2 - anfang)}).second);
            EXPECT_EQ(std::count(w.pt1->pvww.begin(), w.pt1->pvww.end(), &w), 1);
            EXPECT_EQ(std::count(w.pt2->pvww.begin(), w.pt2->pvww.end(), &w), 1);
        }
        EXPECT_EQ(erwartet, gefunden) << n << " particles, corner " << ecke;
        if (n == 600 && ecke == 0) {
            EXPECT_GT(gefunden.size(), 1000u); // the test would be vacuous otherwise
        }
    }
}

TEST(SphPaarsuche, EinsamesTeilchenHatNurSeineEigeneDichte) {
    Gasscheibe g;
    g.s.teilchen.resize(1);
    g.s.teilchen[0].r[0] = g.phys.x1[0] + 0.1;
    g.force_init();
    EXPECT_EQ(g.s.teilchen[0].rho, g.phys.mTeilchen * g.kernel.fak);
    EXPECT_EQ(g.s.ww->size(), 0u);
}

// Sum over the particles of one kind of acceleration, and of its magnitudes.
template <class F> std::pair<double, double> summe(Gasscheibe& g, int k, F feld) {
    double s = 0, betrag = 0;
    for (auto& t : g.s.teilchen) {
        s += feld(t)[k];
        betrag += std::fabs(feld(t)[k]);
    }
    return {s, betrag};
}

TEST(SphKraefte, PaarkraefteErhaltenDenImpulsUndSigmaIstSpurfrei) {
    Gasscheibe g;
    std::mt19937_64 zufall(3);
    std::uniform_real_distribution<double> gleich(-1, 1);
    g.s.teilchen.resize(300);
    for (auto& t : g.s.teilchen)
        for (int k = 0; k < 3; ++k) {
            t.r[k] = g.phys.x1[0] * (k == 0) + gleich(zufall) * (k == 2 ? 0.005 : 0.04);
            t.v[k] = gleich(zufall) * 1e-3;
        }
    g.force_init();
    g.s.add_press(g.phys);
    g.s.add_artvisc(g.phys);
    g.s.add_physvisc(g.phys);
    for (int k = 0; k < 3; ++k) {
        auto p = summe(g, k, [](auto& t) { return t.aPress; });
        auto v = summe(g, k, [](auto& t) { return t.aArtvisc; });
        auto n = summe(g, k, [](auto& t) { return t.aPhysvisc; });
        EXPECT_GT(v.second, 0.0);
        EXPECT_LE(std::fabs(p.first), 1e-12 * p.second);
        EXPECT_LE(std::fabs(v.first), 1e-12 * v.second);
        EXPECT_LE(std::fabs(n.first), 1e-12 * n.second);
    }
    for (auto& t : g.s.teilchen) {
        const auto& s = t.sigmaTensor;
        EXPECT_LE(std::fabs(s[0] + s[3] + s[5]),
                  1e-12 * (std::fabs(s[0]) + std::fabs(s[3]) + std::fabs(s[5])));
        // The total acceleration is the sum of the three kinds.
        for (int k = 0; k < 3; ++k)
            EXPECT_DOUBLE_EQ(t.a[k], t.aPress[k] + t.aArtvisc[k] + t.aPhysvisc[k]);
    }
}

TEST(SphKraefte, GleichfoermigeBewegungIstOhneViskositaet) {
    Gasscheibe g;
    g.s.teilchen.resize(3);
    // Three particles in a row 0.005 apart, all moving with (1, 2, 3) 1e-3.
    for (int i = 0; i < 3; ++i) {
        g.s.teilchen[i].r[0] = g.phys.x1[0] + 0.005 * i;
        g.s.teilchen[i].v = {1e-3, 2e-3, 3e-3};
    }
    g.force_init();
    g.s.add_artvisc(g.phys);
    g.s.add_physvisc(g.phys);
    EXPECT_EQ(g.s.ww->size(), 3u);
    for (auto& t : g.s.teilchen)
        for (int c = 0; c < 6; ++c) {
            EXPECT_EQ(t.sigmaTensor[c], 0.0);
            EXPECT_EQ(t.aPhysvisc[c % 3], 0.0);
            EXPECT_EQ(t.aArtvisc[c % 3], 0.0);
        }
}

TEST(SphPaar, GradientWechseltDasVorzeichenUndFremdeTeilchenBekommenNull) {
    Gasscheibe g;
    g.s.teilchen.resize(2);
    g.s.teilchen[1].r[0] = 0.01; // both near the origin, 0.01 = h/2 apart
    g.force_init();
    ASSERT_EQ(g.s.ww->size(), 1u);
    PhysviscWW& w = g.s.ww->front();
    Vektor3 a = w._dW_ohne_fak(w.pt1), b = w._dW_ohne_fak(w.pt2);
    for (int k = 0; k < 3; ++k)
        EXPECT_EQ(a[k], -b[k]);
    PhysviscTeilchen fremd;
    hilfen::Mitschnitt aus(std::cout);
    Vektor3 n = w._dW_ohne_fak(&fremd);
    Tensor6 s = w.sigma(&fremd);
    EXPECT_EQ(aus.text(), "Angegebenes Teilchen geh\xf6rt nicht zu dieser WW !\n"
                          "Angegebenes Teilchen geh\xf6rt nicht zu dieser PhysviscWW !\n");
    for (double x : n)
        EXPECT_EQ(x, 0.0);
    for (double x : s)
        EXPECT_EQ(x, 0.0);
}

TEST(SphScheibe, ZuweisungVerlangtDieEigeneKlasse) {
    Gasscheibe g;
    AkkScheibe fremd;
    PressArtviscAkkScheibe gas;
    EXPECT_THROW(g.s.odeint_assign(fremd), std::bad_cast);
    EXPECT_THROW(g.s.odeint_assign(gas), std::bad_cast);
    // A copy shares grid and pairs, and is of the disc's own class.
    AkkScheibe* kopie = g.s.clone();
    EXPECT_EQ(typeid(*kopie), typeid(PhysviscAkkScheibe));
    EXPECT_EQ(static_cast<PhysviscAkkScheibe*>(kopie)->ww, g.s.ww);
    delete kopie;
}

} // namespace
