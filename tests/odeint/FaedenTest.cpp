// The forces and the stepper give the same bits on any number of threads, every double of the
// state compared (a six-digit run rarely shows a changed order of additions). Pair-list order of
// each particle's sums, however the search was split: FormelnTest, on three threads.

#include "odeint/RungeKutta.h"
#include "tests/odeint/Zufallsscheibe.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace {

struct Zustand {
    std::vector<std::uint64_t> bits; // every double, as its bit pattern
    void operator<<(double x) {
        std::uint64_t b;
        std::memcpy(&b, &x, sizeof b);
        bits.push_back(b);
    }
};

// One evaluation of all four forces and one adaptive step on `faeden` threads; every per-particle
// double of the evaluation, then the state after the step (the partners' order: FormelnTest).
Zustand laufe(int faeden, unsigned seed) {
    hilfen::Fadenzahl f(faeden);
    hilfen::Zufallslauf l("Anfangsschrittweite 20", seed);
    PhysviscAkkScheibe& s = l.s;
    hilfen::Mitschnitt still(std::cout);
    Zustand z;
    l.k.derivatives(s, l.phys);
    for (const PhysviscTeilchen& t : s.teilchen) {
        for (int c = 0; c < 3; ++c)
            z << t.a[c], z << t.aPress[c], z << t.aArtvisc[c], z << t.aPhysvisc[c];
        for (double x : t.sigmaTensor)
            z << x;
        z << t.rho, z << t.p, z << t.temperatur, z << t.cs;
    }
    RungeKutta rk(s, l.io);
    double hdid = 0, hnext = 0;
    rk.stepper(s, l.phys, l.k, &hdid, &hnext);
    z << hdid, z << hnext, z << s.t();
    for (const PhysviscTeilchen& t : s.teilchen)
        for (int c = 0; c < 3; ++c)
            z << t.r[c], z << t.v[c], z << t.a[c];
    return z;
}

TEST(Faeden, JedeFadenzahlGibtDieselbenBits) {
    for (unsigned seed : {1u, 2u}) {
        const Zustand einer = laufe(1, seed);
        ASSERT_GT(einer.bits.size(), 100000u);
        for (int faeden : {2, 3, 5})
            EXPECT_TRUE(laufe(faeden, seed).bits == einer.bits) << faeden << " threads, seed " << seed;
    }
}

TEST(Faeden, DuennesGitterMitMilliardenEbenen) {
    // h = 1e-9: some 1e9 cell planes, only the occupied cells kept; lone particles, no pairs.
    hilfen::Fadenzahl f(3);
    hilfen::Zufallslauf l("Smoothinglength 1e-9", 4);
    hilfen::Mitschnitt still(std::cout);
    for (int i = 0; i < 20; ++i)
        l.s.force_init(l.phys);
    EXPECT_FALSE(l.s.gitter->dicht);
    EXPECT_EQ(l.s.ww->paare(), 0u);
}

} // namespace
