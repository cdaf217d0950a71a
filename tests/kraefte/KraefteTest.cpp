// The force composite and the external force of the binary.

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

using hilfen::Mitschnitt;

namespace {

PhysSystem oyCar() {
    Mitschnitt still(std::cerr); // no files: the reader only complains
    InitPhysSystem ip("", "");
    ip.Primaersternmasse = 0.685;
    ip.Sekundaersternmasse = 0.07;
    ip.Bahnperiode = 5453.6;
    return PhysSystem(ip, nullptr);
}

// A member that leaves a trace: a[0] := 10 a[0] + id, so the digits of a[0]
// show which members ran, in which order, on top of what value.
struct Spur : RechteSeiteDG {
    int id, art;
    Spur(int id, int art) : id(id), art(art) {}
    void deriv_ohne_init(AkkScheibe& s, PhysSystem&) override { s[0].a[0] = 10 * s[0].a[0] + id; }
    AkkScheibe* createAkkScheibe(InitAkkScheibe&, PhysSystem&) override { return nullptr; }
    int scheibe() override { return art; }
};

// processEvents logs the a[0] that it sees.
struct Haken : Update {
    AkkScheibe* s;
    std::string log;
    void update() override { log += "U"; }
    void processEvents() override { log += "E" + std::to_string(int((*s)[0].a[0])); }
};

TEST(Kraefte, MitgliederLaufenInReihenfolgeNachEinerVorbereitung) {
    Kraefte k;
    for (int id = 1; id <= 3; ++id)
        k.add(new Spur(id, 0));
    AkkScheibe s;
    s.teilchen.resize(1);
    Haken haken;
    haken.s = &s;
    s.set_update(&haken);
    PhysSystem p = oyCar();
    s[0].a[0] = 5; // stale: the preparation must clear it
    k.derivatives(s, p);
    EXPECT_EQ(s[0].a[0], 123);
    k.derivatives(s, p);
    EXPECT_EQ(s[0].a[0], 123);
    EXPECT_EQ(haken.log, "E0E0"); // once per call, after clearing, before the members
}

TEST(Kraefte, ScheibenartUndUnbekannteArtUndBlatt) {
    Kraefte leer, k, fremd;
    k.add(new Spur(1, 0));
    k.add(new Spur(2, 3));
    k.add(new Spur(3, 2));
    fremd.add(new Spur(1, 7));
    EXPECT_EQ(leer.scheibe(), 0);
    EXPECT_EQ(k.scheibe(), 3);

    InitAkkScheibe init("", "");
    PhysSystem p = oyCar();
    Mitschnitt out(std::cout);
    EXPECT_EQ(fremd.createAkkScheibe(init, p), nullptr);
    Externforce blatt;
    Spur nicht(1, 0);
    blatt.add(&nicht);
    EXPECT_EQ(out.text(), "Fehler in Kraefte::createAkkScheibe !\nadd in leaf geht nicht!\n");
}

AkkScheibe einTeilchen(std::valarray<double> r, std::valarray<double> v) {
    AkkScheibe s;
    s.teilchen.resize(1);
    s[0].r = r;
    s[0].v = v;
    return s;
}

TEST(Externforce, RuhendesTeilchenImL1PunktIstKraeftefrei) {
    // Gravity of both stars and the centrifugal term cancel at L1; each is
    // of order G m1 / 0.43^2 = 1.4e-6 there.
    PhysSystem p = oyCar();
    AkkScheibe s = einTeilchen({p.xL1, 0, 0}, {0, 0, 0});
    Externforce().deriv_ohne_init(s, p);
    EXPECT_NEAR(s[0].a[0], 0, 1e-18);
    EXPECT_EQ(s[0].a[1], 0);
    EXPECT_EQ(s[0].a[2], 0);
}

TEST(Externforce, HandgerechneteBeschleunigung) {
    // Stars m1 = 1 at (1, 0, 0), m2 = 0.5 at (-2, 0, 0), Omega = 1e-3.
    // Particle at rest at (1, 0, 4), off the orbital plane:
    //   d1 = (0, 0, 4), |d1| = 4: star 1 gives -G (0, 0, 4) / 64 = -G (0, 0, 0.0625)
    //   d2 = (3, 0, 4), |d2| = 5: star 2 gives -G 0.5 (3, 0, 4) / 125 = -G (0.012, 0, 0.016)
    //   centrifugal Omega^2 r = 1e-6 (1, 0, 4), z included.
    const double G = 3.9371199385708905e-7;
    PhysSystem p = oyCar();
    p.m1 = 1;
    p.m2 = 0.5;
    p.x1 = {1, 0, 0};
    p.x2 = {-2, 0, 0};
    p.omega = 1e-3;
    AkkScheibe s = einTeilchen({1, 0, 4}, {0, 0, 0});
    s[0].a = {1, 2, 3}; // added to what earlier forces (or calls) wrote
    Externforce e;
    e.deriv_ohne_init(s, p);
    EXPECT_NEAR(s[0].a[0], 1 + 1e-6 - G * 0.012, 1e-15);
    EXPECT_EQ(s[0].a[1], 2);
    EXPECT_NEAR(s[0].a[2], 3 + 4e-6 - G * 0.0785, 1e-15);

    // Coriolis -2 Omega x v = 2 Omega (v_y, -v_x, 0) = (4e-7, -2e-7, 0) for
    // v = (1e-4, 2e-4, 5e-4), on top of the value at rest.
    AkkScheibe bewegt = einTeilchen({1, 0, 4}, {1e-4, 2e-4, 5e-4});
    e.deriv_ohne_init(bewegt, p);
    EXPECT_NEAR(bewegt[0].a[0], 1e-6 - G * 0.012 + 4e-7, 1e-18);
    EXPECT_NEAR(bewegt[0].a[1], -2e-7, 1e-19);
    EXPECT_NEAR(bewegt[0].a[2], 4e-6 - G * 0.0785, 1e-18);
}

} // namespace
