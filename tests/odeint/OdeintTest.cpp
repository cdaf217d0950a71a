// Step-size control of the Cash-Karp stepper and the main loop of a run.

#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "kraefte/Kraefte.h"
#include "odeint/RungeKutta.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>

using hilfen::Mitschnitt;

namespace {

PhysSystem physik() {
    Mitschnitt still(std::cerr); // no files: the reader only complains
    InitPhysSystem ip("", "");
    return PhysSystem(ip, nullptr);
}

InitOdeint leer() {
    Mitschnitt still(std::cerr);
    return InitOdeint("");
}

// a = c - k r. The first evaluation on the stage-5 disc of `rk` adds `stoer`
// to a_x: stage 5 enters only the error estimate, so this sets the error of
// the first try to yerr.v_x = h (dc5 stoer) without changing the step itself.
struct Feld : RechteSeiteDG {
    double c = 0, k = 0, stoer = 0;
    RungeKutta* rk = nullptr;
    void deriv_ohne_init(AkkScheibe& s, PhysSystem&) override {
        double extra = rk && &s == rk->ak5 ? stoer : 0;
        if (extra != 0)
            stoer = 0;
        for (int i = 0; i < s.tanz(); ++i)
            for (int d = 0; d < 3; ++d)
                s[i].a[d] += c - k * s[i].r[d] + (d == 0 ? extra : 0);
    }
    AkkScheibe* createAkkScheibe(InitAkkScheibe&, PhysSystem&) override { return nullptr; }
    int scheibe() override { return 0; }
};

struct Schritt {
    double hdid, hnext, t;
};

// One step of h = 2 from t = 1 on n particles at rest. The first try has the
// error x = |2 dc5| stoer; eps = |2 dc5| epsFaktor fixes the ratio errmax.
Schritt schritt(int n, double epsFaktor, double stoer) {
    AkkScheibe s;
    s.teilchen.resize(n);
    s.t(1);
    InitOdeint init = leer();
    RungeKutta rk(s, init);
    rk.h = 2;
    rk.eps = std::fabs(2 * rk.dc5) * epsFaktor;
    Feld f;
    f.rk = &rk;
    f.stoer = stoer;
    PhysSystem p = physik();
    Schritt e;
    f.derivatives(s, p);
    rk.stepper(s, p, f, &e.hdid, &e.hnext);
    e.t = s.t();
    return e;
}

TEST(RungeKutta, Schrittweitensteuerung) {
    Schritt e = schritt(1, 1, 1); // errmax exactly 1: accepted, next 0.9 h
    EXPECT_EQ(e.hdid, 2);
    EXPECT_EQ(e.hnext, 1.8);
    EXPECT_EQ(e.t, 3);
    e = schritt(1, 1.0 / 16, 1); // errmax 16: h = 16^-1/4 * 0.9 h = 0.9
    EXPECT_EQ(e.hdid, 0.9);
    EXPECT_EQ(e.hnext, 4.5); // the retry is exact: grows by 5
    EXPECT_DOUBLE_EQ(e.t, 1.9);
    e = schritt(1, 1, 1e30); // huge error: only down to the floor 0.1 h
    EXPECT_EQ(e.hdid, 0.1 * 2);
    e = schritt(1, 1024, 1); // errmax 2^-10 > ERRCON: (2^-10)^-0.2 * 0.9 h = 7.2
    EXPECT_DOUBLE_EQ(e.hnext, 7.2);
    e = schritt(1, 1 << 20, 1); // errmax 2^-20 <= ERRCON: 5 h
    EXPECT_EQ(e.hnext, 10);
    e = schritt(0, 1, 1); // no particles: errmax 0
    EXPECT_EQ(e.hdid, 2);
    EXPECT_EQ(e.hnext, 10);
    EXPECT_EQ(e.t, 3);
}

TEST(RungeKutta, TeilchenverlustUndStartbeschleunigung) {
    AkkScheibe s;
    s.teilchen.resize(3);
    for (int i = 0; i < 3; ++i)
        s[i].r = {1.0 + i, 2, 3};
    s.t(0);
    InitOdeint init = leer();
    RungeKutta rk(s, init);
    rk.h = 2;
    rk.eps = 1;
    Feld f;
    f.c = 0.5;
    PhysSystem p = physik();
    double hdid, hnext;
    f.derivatives(s, p);
    rk.stepper(s, p, f, &hdid, &hnext); // the stage discs now hold 3 particles

    // A particle removed between steps: the stage discs follow the count.
    // The result carries the acceleration of the step's start.
    s.entferne_teilchen(0);
    f.k = 0.01;
    f.derivatives(s, p);
    std::valarray<double> a0 = s[1].a;
    rk.stepper(s, p, f, &hdid, &hnext);
    ASSERT_EQ(s.tanz(), 2);
    EXPECT_EQ(s.t(), 4);
    EXPECT_EQ(std::abs(s[1].a - a0).max(), 0);
}

// Advances only the time, by the member h, and proposes `naechstes`.
struct Uhr : Odeint {
    double naechstes = 0;
    std::vector<double> hs;
    explicit Uhr(InitOdeint i) : Odeint(i) {}
    void stepper(AkkScheibe& s, PhysSystem&, RechteSeiteDG&, double* hdid,
                 double* hnext) override {
        hs.push_back(h);
        s.t(s.t() + h);
        *hdid = h;
        *hnext = naechstes;
    }
};

struct Haken : Update {
    std::string log;
    void update() override { log += "U"; }
    void processEvents() override { log += "E"; }
};

struct Treiber : ::testing::Test {
    hilfen::TempOrdner o;
    AkkScheibe s;
    PhysSystem p = physik();
    Kraefte keine;
    Uhr uhr{leer()};
    std::string lauf() {
        s.name = o.datei("S-0");
        s.t(0);
        uhr.maxstp = 100;
        Mitschnitt out(std::cout);
        uhr.odeint(s, p, keine);
        return out.text();
    }
};

TEST_F(Treiber, AusgabezeitenUndBeschneiden) {
    // Output times 5 and 10; steps of 3 clipped to them: 3, 2, 3, 2.
    Haken haken;
    s.set_update(&haken);
    uhr.outputfiles = 2;
    uhr.outputtime = 10;
    uhr.h = uhr.naechstes = uhr.hmin = 3;
    EXPECT_EQ(lauf(), "step: 1 akk.t: 3\nStep size too small in odeint\n"
                      "step: 2 akk.t: 5\nStep size too small in odeint\n"
                      "step: 3 akk.t: 8\nStep size too small in odeint\n"
                      "step: 4 akk.t: 10\nremove_count :0\n");
    EXPECT_EQ(uhr.hs, (std::vector<double>{3, 2, 3, 2}));
    EXPECT_EQ(haken.log, "EUEUEUE"); // forces before each step; no update after the last
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(o.pfad()), {}), 2);
    EXPECT_TRUE(hilfen::existiert(o.datei("S-5")));
    EXPECT_TRUE(hilfen::existiert(o.datei("S-10")));
}

TEST_F(Treiber, EntfernenAnDenGrenzen) {
    // Primary at the origin, eta = 0.05, rMax = 1. Particles at distances
    // 0.5 on x (stays), 0.01 on y (too close), 2 on z (too far), exactly 0.05
    // on x and exactly 1 on y (both stay). The removed neighbours both print
    // index 1.
    s.teilchen.resize(5);
    const double abstand[] = {0.5, 0.01, 2, 0.05, 1};
    for (int i = 0; i < 5; ++i)
        s[i].r[i % 3] = abstand[i];
    p.x1 = {0, 0, 0};
    p.eta = 0.05;
    p.rMax = 1;
    uhr.outputfiles = 1;
    uhr.outputtime = uhr.h = 1;
    EXPECT_EQ(lauf(), "step: 1 akk.t: 1\n"
                      " Entferne Teilchen : 1 von 5 Teilchen  zur Zeit: 1 : 0.0025 < abst_sqr < "
                      "1ist : 0.0001\n\n"
                      " Entferne Teilchen : 1 von 4 Teilchen  zur Zeit: 1 : 0.0025 < abst_sqr < "
                      "1ist : 4\n\n"
                      "remove_count :2\n");
    ASSERT_EQ(s.tanz(), 3);
    EXPECT_EQ(s[1].r[0], 0.05);
    EXPECT_EQ(s[2].r[1], 1);
}

} // namespace
