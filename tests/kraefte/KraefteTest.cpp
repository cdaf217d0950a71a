// The force composite and the external force of the binary.

#include "kraefte/Kraefte.h"
#include "init/InitPhysSystem.h"
#include "kraefte/Externforce.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

namespace {

PhysSystem oyCar() {
    hilfen::Mitschnitt still(std::cerr); // no files: the reader only complains
    InitPhysSystem ip("", "");
    ip.Primaersternmasse = 0.685;
    ip.Sekundaersternmasse = 0.07;
    ip.Bahnperiode = 5453.6;
    return PhysSystem(ip, nullptr);
}

// a[0] := 10 a[0] + id: the digits of a[0] show which members ran, in which order.
struct Spur : RechteSeiteDG {
    int id;
    explicit Spur(int id) : id(id) {}
    void deriv_ohne_init(AkkScheibe& s, PhysSystem&) override { s[0].a[0] = 10 * s[0].a[0] + id; }
    AkkScheibe* createAkkScheibe(InitAkkScheibe&, PhysSystem&) override { return nullptr; }
    int scheibe() override { return id; }
};

struct Haken : Update {
    AkkScheibe s;
    std::string log;
    void update() override {}
    void processEvents() override { log += "E" + std::to_string(int(s[0].a[0])); }
};

TEST(Kraefte, MitgliederLaufenInReihenfolgeNachEinerVorbereitung) {
    Kraefte k;
    for (int id : {1, 3, 2})
        k.add(new Spur(id));
    Haken h;
    h.s.teilchen.resize(1);
    h.s.set_update(&h);
    PhysSystem p = oyCar();
    h.s[0].a[0] = 5; // stale: the preparation must clear it
    k.derivatives(h.s, p);
    k.derivatives(h.s, p);
    EXPECT_EQ(h.s[0].a[0], 132);
    EXPECT_EQ(h.log, "E0E0");  // once per call, after clearing, before the members
    EXPECT_EQ(k.scheibe(), 3); // the largest code of the members
}

TEST(Externforce, RuhendesTeilchenImL1PunktIstKraeftefrei) {
    // Gravity of both stars and the centrifugal term cancel at L1 (each of
    // order G m1 / 0.43^2 = 1.4e-6 there); at rest there is no Coriolis term.
    PhysSystem p = oyCar();
    AkkScheibe s;
    s.teilchen.resize(1);
    s[0].r = {p.xL1, 0, 0};
    Externforce().deriv_ohne_init(s, p);
    for (double a : s[0].a)
        EXPECT_NEAR(a, 0, 1e-18);
}

} // namespace
