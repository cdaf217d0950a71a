#include "scheibe/SphAkkScheibe.h"

#include "scheibe/SphTemplates.h"

SphAkkScheibe::SphAkkScheibe() = default;

SphAkkScheibe::SphAkkScheibe(InitAkkScheibe& init, PhysSystem& phys)
    : gitter(std::make_shared<Gitter<SphTeilchen>>()), ww(std::make_shared<Paarliste<SphWW>>()) {
    scheibe::_init(*this, teilchen, *gitter, init, phys);
}

AkkScheibe* SphAkkScheibe::clone() {
    return scheibe::_clone(this);
}
SphTeilchen& SphAkkScheibe::operator[](int i) {
    return teilchen[i];
}
int SphAkkScheibe::tanz() {
    return static_cast<int>(teilchen.size());
}
void SphAkkScheibe::entferne_teilchen(int i) {
    scheibe::_erase(teilchen, i);
}
void SphAkkScheibe::output(PhysSystem& phys) {
    scheibe::_output(*this, teilchen, phys);
}
void SphAkkScheibe::force_init(PhysSystem& phys) {
    scheibe::_force_init(*this, teilchen, *gitter, *ww, phys);
}
void SphAkkScheibe::odeint_init(AkkScheibe& other) {
    scheibe::_odeint_init(*this, teilchen, other);
}
void SphAkkScheibe::odeint_assign(AkkScheibe& other) {
    scheibe::_odeint_assign(*this, other);
}
void SphAkkScheibe::fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) {
    scheibe::_append(*this, teilchen, r, v);
}
void SphAkkScheibe::ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                         const std::vector<Vektor3>& v) {
    scheibe::_ordne(teilchen, folge, r, v);
}
