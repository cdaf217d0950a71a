// The discs: header, snapshot names, unwritable snapshot; SPH pair search against brute force;
// a slab of the grid with ghosts finds the whole grid's partners; rearranging particles;
// pairs and discs handed what is not theirs. (Reader faults: tests/simulation; formulas: odeint.)

#include "scheibe/PhysviscAkkScheibe.h"
#include "scheibe/ScheibenTemplates.h"
#include "scheibe/SphTemplates.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <set>
#include <tuple>
#include <typeinfo>
#include <utility>

namespace {

TEST(Schnappschuss, KopfInBeliebigerReihenfolge) {
    // Time before count, an unknown entry; fewer particles wanted than lines.
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("S-0"), "Zeit 12.5 Farbe blau Teilchenanzahl 2\nTeilchendaten:\n"
                                     "1 2 3 4 5 6\n7 8 9 10 11 12\n13 14 15 16 17 18\n");
    InitAkkScheibe init("", o.datei("S-0").c_str());
    hilfen::OhneDateien l;
    hilfen::Mitschnitt m(std::cout);
    AkkScheibe s(init, l.phys);
    EXPECT_EQ(s.t(), 12.5);
    ASSERT_EQ(s.tanz(), 2);
    EXPECT_EQ(s[1].v[2], 12);
    EXPECT_EQ(m.text(), "");
}

TEST(Schnappschuss, AusgabeNamen) {
    EXPECT_EQ(scheibe::ausgabeName("x-y/a-17", -3.7), "x-y/a--3"); // toward zero
    EXPECT_EQ(scheibe::ausgabeName("ohneStrich", 7), "7");
    EXPECT_EQ(scheibe::ausgabeName("a-1", std::nan("")), "a--2147483648");
}

TEST(Schnappschuss, VolleAusgabeWirdGemeldet) {
    // The snapshot for time 0 of disc "o/S-..." is o/S-0, here a link to a full device.
    hilfen::OhneDateien l;
    hilfen::TempOrdner o;
    std::filesystem::create_symlink("/dev/full", o.datei("S-0"));
    AkkScheibe s;
    s.name = o.datei("S-x");
    s.teilchen.resize(2000); // more than the stream's buffer, so the write itself fails
    hilfen::Mitschnitt err(std::cerr);
    s.output(l.phys);
    EXPECT_EQ(err.text(), "error: unable to write output file!\n");
}

// The default binary and an empty gas disc, which the tests fill directly.
struct Gasscheibe : hilfen::Aufbau {
    explicit Gasscheibe(const std::string& zusatz = "") : Aufbau(zusatz) {}
    PhysviscAkkScheibe s{ia, phys};
    void force_init() {
        hilfen::Mitschnitt still(std::cout);
        s.force_init(phys);
    }
};

TEST(SphPaarsuche, FindetGenauDiePaareDerBruteForceRegel) {
    std::mt19937_64 zufall(7);
    std::uniform_real_distribution<double> gleich(0, 1);
    // Clusters at the primary and over the box's corners in x and y, where the border planes
    // (never home cells) hold particles; h = 1e-4 makes some 7e10 cells, only the occupied kept.
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
        const int nzell[3] = {g.s.gitter->nx, g.s.gitter->ny, g.s.gitter->nz};
        auto zelle = [&](const Vektor3& r, int* z) {
            for (int c = 0; c < 3; ++c)
                z[c] = std::clamp(int(std::ceil((r[c] - g.s.min[c]) / h)), 0, nzell[c] - 1);
        };
        g.s.teilchen.resize(n);
        for (int i = 0; i < n; ++i) {
            auto& r = g.s.teilchen[i].r;
            // A small cluster (many pairs) reaching past the box in z; every fifth particle exactly
            // on a cell boundary in x, every seventh exactly h from its predecessor.
            for (int k = 0; k < 3; ++k)
                r[k] = mitte[k] + (gleich(zufall) - 0.5) * 0.12 * f;
            if (i % 5 == 0)
                r[0] = g.s.min[0] + h * std::floor((r[0] - g.s.min[0]) / h);
            if (i % 7 == 6)
                r = g.s.teilchen[i - 1].r, r[0] += h;
        }
        g.force_init();

        // Two particles closer than h pair when the first of their cells in (i, j, k) order is a
        // home cell; t1 is the one in the later cell, or the earlier index within one cell.
        std::set<std::pair<int, int>> erwartet;
        for (int p = 0; p < n; ++p)
            for (int q = p + 1; q < n; ++q) {
                auto &a = g.s.teilchen[p].r, &b = g.s.teilchen[q].r;
                double s[3] = {b[0] - a[0], b[1] - a[1], b[2] - a[2]};
                if (!(s[0] * s[0] + s[1] * s[1] + s[2] * s[2] < g.s.h2))
                    continue;
                int za[3], zb[3];
                zelle(a, za), zelle(b, zb);
                bool bZuerst = std::lexicographical_compare(zb, zb + 3, za, za + 3);
                const int* heim = bZuerst ? zb : za;
                if (heim[0] < 1 || heim[0] > nzell[0] - 2 || heim[1] < 1 ||
                    heim[1] > nzell[1] - 2 || heim[2] < 1 || heim[2] > nzell[2] - 2)
                    continue;
                erwartet.insert(bZuerst || std::equal(za, za + 3, zb) ? std::pair(p, q)
                                                                      : std::pair(q, p));
            }

        // The records on request carry t1, t2; each partner's own list holds the pair once.
        std::set<std::pair<int, int>> gefunden, ausListen;
        PhysviscTeilchen* anfang = g.s.teilchen.data();
        for (const PhysviscWW& w : scheibe::_paare<PhysviscWW>(g.s, g.s.teilchen, *g.s.gitter, g.phys))
            EXPECT_TRUE(gefunden.insert({int(w.pt1 - anfang), int(w.pt2 - anfang)}).second);
        for (int i = 0; i < n; ++i) {
            const PaarSicht<PhysviscWW>& v = g.s.teilchen[std::size_t(i)].pvww;
            for (std::size_t k = 0; k < v.size(); ++k) {
                const int j = int(g.s.gitter->index[v.partner(k)]);
                EXPECT_TRUE(ausListen.insert({i, j}).second);
                EXPECT_EQ(gefunden.count({i, j}) + gefunden.count({j, i}), 1u);
            }
        }
        EXPECT_EQ(ausListen.size(), 2 * gefunden.size());
        EXPECT_EQ(erwartet, gefunden) << n << " particles, corner " << ecke;
        if (n == 600 && ecke == 0) {
            EXPECT_GT(gefunden.size(), 1000u); // the test would be vacuous otherwise
        }
    }
}

// What a process of a distributed run bins: its own particles (those in planes a .. b, in
// global order) and ghosts (the others in a - 1 .. b + 1, arriving in any order, placed by
// global index) over a table of those planes only. Every own particle must find the partners,
// in the order, that the whole grid gives it.
TEST(SphPaarsuche, EineSchichtMitGeisternFindetDieListenDesGanzenGitters) {
    std::mt19937_64 zufall(11);
    std::uniform_real_distribution<double> gleich(0, 1);
    const double h = 0.1;
    const int n = 1500, nx = 12, ny = 6, nz = 4;
    std::vector<Teilchen> alle(n);
    for (auto& t : alle)
        t.r = {gleich(zufall) * 1.0, gleich(zufall) * 0.4, gleich(zufall) * 0.2};
    auto zelle = [&](const double* r) {
        Gitter<Teilchen>::Index z{};
        const int m[3] = {nx, ny, nz};
        for (int c = 0; c < 3; ++c)
            z[c] = std::clamp(int(std::ceil(r[c] / h)), 0, m[c] - 1);
        return z;
    };
    // Partners of slot x by global index (`global` maps the grid's particle numbers).
    auto liste = [&](const Gitter<Teilchen>& g, std::uint32_t x, auto global) {
        std::vector<std::uint32_t> l;
        g.partnerBereiche(x, [&](std::uint32_t a, std::uint32_t e) {
            for (std::uint32_t q = a; q < e; ++q) {
                const double d[3] = {g.x[q] - g.x[x], g.y[q] - g.y[x], g.z[q] - g.z[x]};
                if (d[0] * d[0] + d[1] * d[1] + d[2] * d[2] < h * h)
                    l.push_back(global(g.index[q]));
            }
        });
        return l;
    };
    Gitter<Teilchen> ganz;
    ganz.anlegen(nx, ny, nz, n);
    ganz.fuellen(alle, [&](const Teilchen& t) { return zelle(t.r.data()); });
    for (auto [a, b] : {std::pair{1, 3}, {4, 4}, {5, 8}, {0, 11}}) {
        std::vector<std::uint32_t> eigen, geist; // global indices
        for (std::uint32_t i = 0; i < n; ++i) {
            const int e = zelle(alle[i].r.data())[0];
            if (e >= a && e <= b)
                eigen.push_back(i);
            else if (e >= a - 1 && e <= b + 1)
                geist.push_back(i);
        }
        std::shuffle(geist.begin(), geist.end(), zufall);
        std::vector<std::uint32_t> nummer(eigen); // grid numbers: own, then ghosts
        nummer.insert(nummer.end(), geist.begin(), geist.end());
        std::vector<std::uint32_t> folge(nummer.size());
        for (std::uint32_t k = 0; k < folge.size(); ++k)
            folge[k] = k;
        std::sort(folge.begin(), folge.end(),
                  [&](auto p, auto q) { return nummer[p] < nummer[q]; });
        Gitter<Teilchen> schicht;
        schicht.anlegen(nx, ny, nz, 0);
        schicht.ebenen(std::max(a - 1, 0), std::min(b + 1, nx - 1));
        schicht.fuellen(
            nummer.size(), [&](std::size_t p) { return zelle(alle[nummer[p]].r.data()); },
            [&](std::size_t p) {
                return std::pair(alle[nummer[p]].r.data(), alle[nummer[p]].v.data());
            },
            folge.data());
        for (std::uint32_t i = 0; i < eigen.size(); ++i)
            ASSERT_EQ(liste(schicht, schicht.slot[i], [&](std::uint32_t p) { return nummer[p]; }),
                      liste(ganz, ganz.slot[eigen[i]], [](std::uint32_t p) { return p; }))
                << "planes " << a << ".." << b << ", particle " << eigen[i];
    }
}

// Particles handed on and taken: the kept ones in order with the new ones among them (in
// place), or any order (through a copy); a disc that kept few gives its memory back.
TEST(Scheibe, OrdneTeilchen) {
    auto scheibe = [](int n) {
        SphAkkScheibe s;
        for (int i = 0; i < n; ++i)
            s.teilchen.emplace_back().r = {double(i), 0, 0};
        return s;
    };
    const std::vector<Vektor3> r = {{-1, 0, 0}, {-2, 0, 0}}, v = {{0, 1, 0}, {0, 2, 0}};
    for (auto [folge, erwartet] : {std::pair<std::vector<long long>, std::vector<double>>{
                                       {-1, 1, 3, -2, 4}, {-1, 1, 3, -2, 4}},
                                   {{4, -2, 0, 0}, {4, -2, 0, 0}},
                                   {{}, {}},
                                   {{-2, -1}, {-2, -1}}}) {
        SphAkkScheibe s = scheibe(5);
        s.teilchen[3].rho = 7;
        s.ordne_teilchen(folge, r, v);
        ASSERT_EQ(s.teilchen.size(), erwartet.size());
        for (std::size_t k = 0; k < erwartet.size(); ++k) {
            EXPECT_EQ(s.teilchen[k].r[0], erwartet[k]);
            // New particles start afresh; kept ones keep all they had.
            EXPECT_EQ(s.teilchen[k].v[1], erwartet[k] < 0 ? -erwartet[k] : 0.0);
            EXPECT_EQ(s.teilchen[k].rho, erwartet[k] == 3 ? 7.0 : 0.0);
        }
    }
    SphAkkScheibe gross = scheibe(5000);
    gross.ordne_teilchen({10, 20}, {}, {});
    EXPECT_LT(gross.teilchen.capacity(), 1100u);
}

TEST(SphFremd, PaarUndScheibeWeisenFremdesAb) {
    Gasscheibe g;
    g.s.teilchen.resize(2);
    g.s.teilchen[1].r[0] = 0.01; // both near the origin, 0.01 = h/2 apart
    g.force_init();
    ASSERT_EQ(g.s.ww->paare(), 1u);
    // Exactly h/2 apart: the inner piece of the kernel, W = 1/4, for both.
    for (const PhysviscTeilchen& t : g.s.teilchen)
        EXPECT_EQ(t.rho, g.phys.mTeilchen * g.kernel.fak * 1.25);
    std::vector<PhysviscWW> ww = scheibe::_paare<PhysviscWW>(g.s, g.s.teilchen, *g.s.gitter, g.phys);
    ASSERT_EQ(ww.size(), 1u);
    PhysviscWW& w = ww.front();
    // Each partner sees the gradient from its side; one that is neither gets zeros and a message.
    EXPECT_EQ(w._dW_ohne_fak(w.pt1)[0], -w._dW_ohne_fak(w.pt2)[0]);
    PhysviscTeilchen fremd;
    hilfen::Mitschnitt aus(std::cout);
    EXPECT_EQ(w._dW_ohne_fak(&fremd), (Vektor3{0, 0, 0}));
    EXPECT_EQ(w.sigma(&fremd), Tensor6{});
    EXPECT_EQ(aus.text(), "Angegebenes Teilchen geh\xf6rt nicht zu dieser WW !\n"
                          "Angegebenes Teilchen geh\xf6rt nicht zu dieser PhysviscWW !\n");
    // A step's result must be of the disc's own class; a copy shares grid and pairs.
    AkkScheibe andere;
    PressArtviscAkkScheibe gas;
    EXPECT_THROW(g.s.odeint_assign(andere), std::bad_cast);
    EXPECT_THROW(g.s.odeint_assign(gas), std::bad_cast);
    const std::unique_ptr<AkkScheibe> kopie(g.s.clone());
    AkkScheibe& k = *kopie;
    EXPECT_EQ(typeid(k), typeid(PhysviscAkkScheibe));
    EXPECT_EQ(static_cast<PhysviscAkkScheibe&>(k).ww, g.s.ww);
}

} // namespace
