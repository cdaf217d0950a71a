// The force composite: its members in order after one preparation. (The external force is checked
// bit for bit in tests/odeint/FormelnTest.cpp and against the Jacobi integral in tests/validation.)

#include "kraefte/Kraefte.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

namespace {

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
    hilfen::OhneDateien l;
    h.s[0].a[0] = 5; // stale: the preparation must clear it
    k.derivatives(h.s, l.phys);
    k.derivatives(h.s, l.phys);
    EXPECT_EQ(h.s[0].a[0], 132);
    EXPECT_EQ(h.log, "E0E0");  // once per call, after clearing, before the members
    EXPECT_EQ(k.scheibe(), 3); // the largest code of the members
}

} // namespace
