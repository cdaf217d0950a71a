#include "scheibe/PressArtviscAkkScheibe.h"

#include "scheibe/PressArtviscTemplates.h"
#include "scheibe/SphTemplates.h"

PressArtviscAkkScheibe::PressArtviscAkkScheibe() = default;

PressArtviscAkkScheibe::PressArtviscAkkScheibe(InitAkkScheibe& init, PhysSystem& phys)
    : gitter(std::make_shared<Gitter<PressArtviscTeilchen>>()),
      ww(std::make_shared<Paarliste<PressArtviscWW>>()) {
    scheibe::_init(*this, teilchen, *gitter, init, phys);
}

AkkScheibe* PressArtviscAkkScheibe::clone() {
    return scheibe::_clone(this);
}
PressArtviscTeilchen& PressArtviscAkkScheibe::operator[](int i) {
    return teilchen[i];
}
int PressArtviscAkkScheibe::tanz() {
    return static_cast<int>(teilchen.size());
}
void PressArtviscAkkScheibe::entferne_teilchen(int i) {
    scheibe::_erase(teilchen, i);
}
void PressArtviscAkkScheibe::output(PhysSystem& phys) {
    scheibe::_output(*this, teilchen, phys);
}
void PressArtviscAkkScheibe::force_init(PhysSystem& phys) {
    scheibe::_force_init(*this, teilchen, *gitter, *ww, phys);
}
void PressArtviscAkkScheibe::odeint_init(AkkScheibe& other) {
    scheibe::_odeint_init(*this, teilchen, other);
}
void PressArtviscAkkScheibe::odeint_assign(AkkScheibe& other) {
    scheibe::_odeint_assign(*this, other);
}
void PressArtviscAkkScheibe::fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) {
    scheibe::_append(*this, teilchen, r, v);
}
void PressArtviscAkkScheibe::ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                         const std::vector<Vektor3>& v) {
    scheibe::_ordne(teilchen, folge, r, v);
}
void PressArtviscAkkScheibe::add_press(PhysSystem& phys) {
    scheibe::_add_press(teilchen, *gitter, ww.get(), phys);
}
void PressArtviscAkkScheibe::add_artvisc(PhysSystem& phys) {
    scheibe::_add_artvisc(teilchen, *gitter, ww.get(), phys);
}
