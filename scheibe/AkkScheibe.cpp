#include "scheibe/AkkScheibe.h"

#include "scheibe/ScheibenTemplates.h"

AkkScheibe::AkkScheibe() = default;

AkkScheibe::AkkScheibe(InitAkkScheibe& init, PhysSystem& phys) {
    scheibe::_init(*this, teilchen, init, phys);
}

AkkScheibe::~AkkScheibe() = default;

AkkScheibe* AkkScheibe::clone() {
    return scheibe::_clone(this);
}
Teilchen& AkkScheibe::operator[](int i) {
    return teilchen[i];
}
int AkkScheibe::tanz() {
    return static_cast<int>(teilchen.size());
}
void AkkScheibe::entferne_teilchen(int i) {
    scheibe::_erase(teilchen, i);
}
void AkkScheibe::output(PhysSystem& phys) {
    scheibe::_output(*this, teilchen, phys);
}
void AkkScheibe::force_init(PhysSystem&) {
    scheibe::_force_init(teilchen);
}
void AkkScheibe::odeint_init(AkkScheibe& other) {
    scheibe::_odeint_init(*this, teilchen, other);
}
void AkkScheibe::odeint_assign(AkkScheibe& other) {
    scheibe::_odeint_assign(*this, other);
}
void AkkScheibe::fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) {
    scheibe::_append(*this, teilchen, r, v);
}
void AkkScheibe::ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                         const std::vector<Vektor3>& v) {
    scheibe::_ordne(teilchen, folge, r, v);
}

void AkkScheibe::update() {
    if (updater)
        updater->update();
}

void AkkScheibe::processEvents() {
    if (updater)
        updater->processEvents();
}
