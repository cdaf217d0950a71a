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
void PhysviscAkkScheibe::add_press(PhysSystem& phys) {
    scheibe::_add_press(teilchen, ww.get(), phys);
}
void PhysviscAkkScheibe::add_artvisc(PhysSystem& phys) {
    scheibe::_add_artvisc(teilchen, ww.get(), phys);
}

// The four passes, each complete before the next: pair tensors, particle
// tensors, pair vectors, particle accelerations.
void PhysviscAkkScheibe::add_physvisc(PhysSystem& phys) {
    scheibe::_fuer_alle_paare(*ww, [&](PhysviscWW& w) { w.sigma(phys); });
    scheibe::_fuer_alle_teilchen(teilchen, [&](PhysviscTeilchen& t) { t.sigma(phys); });
    scheibe::_fuer_alle_paare(*ww, [&](PhysviscWW& w) { w.physvisc(phys); });
    scheibe::_fuer_alle_teilchen(teilchen, [&](PhysviscTeilchen& t) { t.add_physvisc(phys); });
}
