#include "scheibe/PhysviscAkkScheibe.h"

#include "scheibe/PressArtviscTemplates.h"
#include "scheibe/SphTemplates.h"

PhysviscAkkScheibe::PhysviscAkkScheibe() = default;

PhysviscAkkScheibe::PhysviscAkkScheibe(InitAkkScheibe& init, PhysSystem& phys)
    : gitter(std::make_shared<Gitter<PhysviscTeilchen>>()),
      ww(std::make_shared<Paarliste<PhysviscWW>>()) {
    scheibe::_init(*this, teilchen, *gitter, init, phys);
}

AkkScheibe* PhysviscAkkScheibe::clone() {
    return scheibe::_clone(this);
}
PhysviscTeilchen& PhysviscAkkScheibe::operator[](int i) {
    return teilchen[i];
}
int PhysviscAkkScheibe::tanz() {
    return static_cast<int>(teilchen.size());
}
void PhysviscAkkScheibe::entferne_teilchen(int i) {
    scheibe::_erase(teilchen, i);
}
void PhysviscAkkScheibe::output(PhysSystem& phys) {
    scheibe::_output(*this, teilchen, phys);
}
void PhysviscAkkScheibe::force_init(PhysSystem& phys) {
    scheibe::_force_init(*this, teilchen, *gitter, *ww, phys);
}
void PhysviscAkkScheibe::odeint_init(AkkScheibe& other) {
    scheibe::_odeint_init(*this, teilchen, other);
}
void PhysviscAkkScheibe::odeint_assign(AkkScheibe& other) {
    scheibe::_odeint_assign(*this, other);
}
void PhysviscAkkScheibe::fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) {
    scheibe::_append(*this, teilchen, r, v);
}
void PhysviscAkkScheibe::ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                         const std::vector<Vektor3>& v) {
    scheibe::_ordne(teilchen, folge, r, v);
}
void PhysviscAkkScheibe::add_press(PhysSystem& phys) {
    scheibe::_add_press(teilchen, *gitter, ww.get(), phys);
}
void PhysviscAkkScheibe::add_artvisc(PhysSystem& phys) {
    scheibe::_add_artvisc(teilchen, *gitter, ww.get(), phys);
}

// The four passes (pair tensors, particle tensors, pair vectors, particle
// accelerations), formed per particle: each particle's tensor from its own
// pairs (with the gas terms, if not done), then each particle's viscous
// acceleration from its pairs, the pair vectors formed on the way.
void PhysviscAkkScheibe::add_physvisc(PhysSystem& phys) {
    scheibe::_gaspass(teilchen, *gitter, *ww, scheibe::scherung, phys);
    const std::size_t n = ww->gas.size();
    mitVorrat(ww->aPhysvisc, n);
    ww->aPhysvisc.resize(n);
    scheibe::_proSlot(*ww, n, scheibe::kosten::viskos, [&](std::uint32_t x) {
        ww->aPhysvisc[x] = PhysviscTeilchen::beschleunigung(*ww, x, phys);
    });
    scheibe::_proTeilchen(teilchen, *gitter, [&](PhysviscTeilchen& t, std::uint32_t x) {
        t.aPhysvisc = ww->aPhysvisc[x];
        for (int c = 0; c < 3; ++c)
            t.a[c] = t.a[c] + t.aPhysvisc[c];
    });
}
