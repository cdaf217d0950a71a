#include "scheibe/PhysviscAkkScheibe.h"

#include "physik/Kernel1.h"
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
    scheibe::_add_press(teilchen, ww.get(), phys, puffer);
}
void PhysviscAkkScheibe::add_artvisc(PhysSystem& phys) {
    scheibe::_add_artvisc(teilchen, ww.get(), phys, puffer);
}

// The four passes, each pair pass fused with the particle pass that follows
// it: the particle sums are scattered from the pair list in list order, which
// is the order of every particle's own pair list, so they equal the
// particles' own sigma() and add_physvisc() to the bit.
void PhysviscAkkScheibe::add_physvisc(PhysSystem& phys) {
    const std::size_t n = teilchen.size();
    PhysviscTeilchen* basis = teilchen.data();
    const double dfak = static_cast<Kernel1*>(phys.kernel)->dfak;
    std::vector<double>& S = puffer;
    S.assign(6 * n, 0.0);
    for (PhysviscWW& w : *ww) {
        w.sigma(phys);
        double* s1 = &S[6 * std::size_t(w.pt1 - basis)];
        double* s2 = &S[6 * std::size_t(w.pt2 - basis)];
        for (int c = 0; c < 6; ++c)
            s1[c] += w.sigmaTensor[c] / w.pt2->rho;
        for (int c = 0; c < 6; ++c)
            s2[c] += w.sigmaTensor[c] / w.pt1->rho;
    }
    const double fs = dfak * phys.mTeilchen;
    for (std::size_t i = 0; i < n; ++i)
        for (int c = 0; c < 6; ++c)
            teilchen[i].sigmaTensor[c] = S[6 * i + c] * fs;

    S.assign(3 * n, 0.0);
    for (PhysviscWW& w : *ww) {
        w.physvisc(phys);
        double* a1 = &S[3 * std::size_t(w.pt1 - basis)];
        double* a2 = &S[3 * std::size_t(w.pt2 - basis)];
        for (int k = 0; k < 3; ++k)
            a1[k] += w.physviscVektor[k];
        for (int k = 0; k < 3; ++k)
            a2[k] += -w.physviscVektor[k];
    }
    const double fa = phys.mTeilchen * phys.viskositaet * dfak;
    for (std::size_t i = 0; i < n; ++i) {
        PhysviscTeilchen& t = teilchen[i];
        for (int k = 0; k < 3; ++k) {
            const double a = S[3 * i + k] * fa;
            t.aPhysvisc[k] = a;
            t.a[k] = t.a[k] + a;
        }
    }
}
