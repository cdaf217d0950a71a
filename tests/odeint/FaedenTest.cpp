// Threads: the force evaluation and the stepper give the same bits on any
// number of threads, and every particle lists its pairs in pair-list order
// however the pair search was split. A whole run rounds its output to six
// digits and rarely shows a changed order of additions; these tests compare
// every double of the state.

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "kraefte/Artvisc.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "kraefte/Physvisc.h"
#include "kraefte/Pressure.h"
#include "odeint/RungeKutta.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "tests/Hilfen.h"
#include "tests/odeint/Zufallsscheibe.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <map>
#include <omp.h>
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

// One evaluation of all four forces and one adaptive step on `faeden`
// threads; every per-particle and per-pair double of the evaluation, then the
// state after the step.
Zustand laufe(int faeden, unsigned seed) {
    const int vorher = omp_get_max_threads();
    omp_set_num_threads(faeden);
    hilfen::TempOrdner ordner;
    const std::string p = ordner.datei("p"), d = ordner.datei("Akk-0");
    hilfen::schreibe(p, hilfen::parameter("Anfangsschrittweite 20"));
    hilfen::schreibe(d, hilfen::zufallsscheibe(seed));
    InitPhysSystem ip(p.c_str(), d.c_str());
    Kernel1 kernel(ip);
    PhysSystem phys(ip, &kernel);
    InitAkkScheibe ia(p.c_str(), d.c_str());
    InitOdeint io(p.c_str());
    PhysviscAkkScheibe s(ia, phys);
    Kraefte k;
    k.add(new Externforce);
    k.add(new Pressure);
    k.add(new Artvisc);
    k.add(new Physvisc);
    hilfen::Mitschnitt still(std::cout);

    Zustand z;
    k.derivatives(s, phys);
    for (const PhysviscTeilchen& t : s.teilchen) {
        for (int c = 0; c < 3; ++c)
            z << t.a[c], z << t.aPress[c], z << t.aArtvisc[c], z << t.aPhysvisc[c];
        for (double x : t.sigmaTensor)
            z << x;
        z << t.rho, z << t.p, z << t.temperatur, z << t.cs;
    }
    for (PhysviscWW& w : *s.ww) {
        z << double(w.pt1 - s.teilchen.data()), z << double(w.pt2 - s.teilchen.data());
        z << w.d, z << w.W, z << w.press, z << w.pi;
        for (int c = 0; c < 3; ++c)
            z << w.r[c], z << w.dv[c], z << w.dW[c], z << w.physviscVektor[c];
        for (double x : w.sigmaTensor)
            z << x;
    }
    RungeKutta rk(s, io);
    double hdid = 0, hnext = 0;
    rk.stepper(s, phys, k, &hdid, &hnext);
    z << hdid, z << hnext, z << s.t();
    for (const PhysviscTeilchen& t : s.teilchen)
        for (int c = 0; c < 3; ++c)
            z << t.r[c], z << t.v[c], z << t.a[c];
    omp_set_num_threads(vorher);
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

// A viscous random disc whose forces were prepared `mal` times on 3 threads.
struct DreiSlabs {
    hilfen::TempOrdner ordner;
    std::string p = ordner.datei("p"), d = ordner.datei("Akk-0");
    bool geschrieben;
    InitPhysSystem ip;
    Kernel1 kernel{ip};
    PhysSystem phys{ip, &kernel};
    InitAkkScheibe ia;
    PhysviscAkkScheibe s{ia, phys};
    DreiSlabs(const std::string& zusatz, unsigned seed, int mal)
        : geschrieben((hilfen::schreibe(p, hilfen::parameter(zusatz)),
                       hilfen::schreibe(d, hilfen::zufallsscheibe(seed)), true)),
          ip(p.c_str(), d.c_str()), ia(p.c_str(), d.c_str()) {
        const int vorher = omp_get_max_threads();
        omp_set_num_threads(3);
        hilfen::Mitschnitt still(std::cout);
        for (int i = 0; i < mal; ++i)
            s.force_init(phys);
        omp_set_num_threads(vorher);
    }
};

TEST(Faeden, SlabsEinesDuennenGittersMitMilliardenEbenen) {
    // h = 1e-9 over a box of about a solar radius: some 1e9 cell planes, of
    // which only the few hundred occupied ones are kept. Cutting them into 3
    // slabs must visit the occupied planes, not every plane (that took
    // seconds per evaluation), and the lone particles find no pairs.
    DreiSlabs l("Smoothinglength 1e-9", 4, 20);
    EXPECT_EQ(l.s.ww->anzahlTeile(), 3u);
    EXPECT_EQ(l.s.ww->size(), 0u);
}

TEST(Faeden, JedesTeilchenListetSeinePaareInListenordnung) {
    // Split over 3 slabs, each particle's list must be exactly its pairs, in
    // the order in which they stand in the pair list.
    DreiSlabs l("", 3, 1);
    PhysviscAkkScheibe& s = l.s;
    ASSERT_EQ(s.ww->anzahlTeile(), 3u);
    std::map<const PhysviscTeilchen*, std::vector<const PhysviscWW*>> erwartet;
    for (PhysviscWW& w : *s.ww) {
        erwartet[w.pt1].push_back(&w);
        erwartet[w.pt2].push_back(&w);
    }
    std::size_t mitPaaren = 0;
    for (const PhysviscTeilchen& t : s.teilchen) {
        const std::vector<const PhysviscWW*> liste(t.pvww.begin(), t.pvww.end());
        EXPECT_EQ(liste, erwartet[&t]);
        mitPaaren += !liste.empty();
    }
    EXPECT_GT(mitPaaren, 3500u);
}

} // namespace
