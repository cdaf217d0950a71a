// Step-size control of the Cash-Karp stepper and the main loop of a run.

#include "kraefte/Kraefte.h"
#include "odeint/RungeKutta.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

// a = c - k r. The fifth evaluation (the driver's, then stages 2 to 5 of the first try) adds
// `stoer` to a_x: stage 5 enters only the error estimate, so the first try's error is h dc5 stoer.
struct Feld : RechteSeiteDG {
    double stoer, c = 0, k = 0;
    int aufrufe = 0;
    explicit Feld(double stoer) : stoer(stoer) {}
    void deriv_ohne_init(AkkScheibe& s, PhysSystem&) override {
        double extra = ++aufrufe == 5 ? stoer : 0;
        for (int i = 0; i < s.tanz(); ++i)
            for (int d = 0; d < 3; ++d)
                s[i].a[d] += c - k * s[i].r[d] + (d == 0 ? extra : 0);
    }
    AkkScheibe* createAkkScheibe(InitAkkScheibe&, PhysSystem&) override { return nullptr; }
    int scheibe() override { return 0; }
};

TEST(RungeKutta, SchrittweiteTeilchenverlustStartbeschleunigung) {
    // h = 2 from t = 1, n particles at rest, eps = |2 dc5| epsFaktor; a retry is exact and
    // proposes 5 times its size. Columns: n, epsFaktor, stoer, hdid, hnext.
    const double faelle[][5] = {
        {2, 1, 1, 2, 1.8},      // errmax exactly 1: accepted, next 0.9 h
        {2, 1, 1e30, 0.2, 1},   // huge error: shrinks only to the floor 0.1 h
        {2, 1 << 20, 1, 2, 10}, // errmax 2^-20 <= ERRCON: grows by 5
        {0, 1, 1, 2, 10},       // no particles: errmax 0
    };
    for (const auto& f : faelle) {
        AkkScheibe s;
        s.teilchen.resize(int(f[0]));
        s.t(1);
        hilfen::OhneDateien l;
        RungeKutta rk(s, l.io);
        rk.h = 2;
        rk.eps = std::fabs(2 * rk.dc5) * f[1];
        Feld feld(f[2]);
        double hdid, hnext;
        feld.derivatives(s, l.phys);
        rk.stepper(s, l.phys, feld, &hdid, &hnext);
        EXPECT_DOUBLE_EQ(hdid, f[3]);
        EXPECT_DOUBLE_EQ(hnext, f[4]);
        EXPECT_DOUBLE_EQ(s.t(), 1 + f[3]);
        if (s.tanz() == 0)
            continue;
        // A particle lost between steps: the stage discs follow; a stays the step start's.
        s.entferne_teilchen(0);
        feld.c = 0.5, feld.k = 0.01;
        feld.derivatives(s, l.phys);
        const Vektor3 a0 = s[0].a;
        rk.stepper(s, l.phys, feld, &hdid, &hnext);
        ASSERT_EQ(s.tanz(), 1);
        EXPECT_EQ(s[0].a, a0);
    }
}

struct Uhr : Odeint {
    double naechstes = 0;
    explicit Uhr(InitOdeint& i) : Odeint(i) {}
    void stepper(AkkScheibe& s, PhysSystem&, RechteSeiteDG&, double* hdid, double* hnext) override {
        s.t(s.t() + h);
        *hdid = h;
        *hnext = naechstes;
    }
};

TEST(Odeint, AusgabezeitenBeschneidenUndGrenzen) {
    // Output times 5, 10; steps of 3 clipped: 3, 2, 3, 2. Particles exactly at eta, rMax stay.
    hilfen::TempOrdner o;
    AkkScheibe s;
    s.name = o.datei("S-0");
    s.teilchen.resize(2);
    s[0].r[0] = 0.05, s[1].r[2] = 1;
    hilfen::OhneDateien l;
    l.phys.x1 = {0, 0, 0}, l.phys.eta = 0.05, l.phys.rMax = 1;
    Kraefte keine;
    Uhr uhr{l.io};
    uhr.maxstp = 100, uhr.outputfiles = 2, uhr.outputtime = 10;
    uhr.h = uhr.naechstes = uhr.hmin = 3;
    hilfen::Mitschnitt out(std::cout);
    uhr.odeint(s, l.phys, keine);
    EXPECT_EQ(out.text(), "step: 1 akk.t: 3\nStep size too small in odeint\n"
                          "step: 2 akk.t: 5\nStep size too small in odeint\n"
                          "step: 3 akk.t: 8\nStep size too small in odeint\n"
                          "step: 4 akk.t: 10\nremove_count :0\n");
    EXPECT_EQ(hilfen::anzahl(o.pfad()), 2);
    EXPECT_TRUE(hilfen::existiert(o.datei("S-5")) && hilfen::existiert(o.datei("S-10")));
}

} // namespace
