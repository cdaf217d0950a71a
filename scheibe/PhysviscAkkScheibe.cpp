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
    scheibe::_append(teilchen, r, v);
}
void PhysviscAkkScheibe::add_press(PhysSystem& phys) {
    scheibe::_add_press(teilchen, *gitter, ww.get(), phys);
}
void PhysviscAkkScheibe::add_artvisc(PhysSystem& phys) {
    scheibe::_add_artvisc(teilchen, *gitter, ww.get(), phys);
}

// The four passes (pair tensors, particle tensors, pair vectors, particle
// accelerations), each pair pass fused into the particle pass that follows
// it: a particle forms the terms of its own pairs on the way, exactly as the
// pair pass would, and each pair's first partner stores them in the pair.
// Every particle sums over its own pairs in pair-list order.
void PhysviscAkkScheibe::add_physvisc(PhysSystem& phys) {
    const double dfak = scheibe::kernel1(phys).dfak;
    const double fs = dfak * phys.mTeilchen;
    scheibe::_fuer_alle_teilchen(teilchen, *gitter, [&](PhysviscTeilchen& t) {
        double s[6] = {0, 0, 0, 0, 0, 0};
        scheibe::vorladen(t.pvww, &SphWW::dv, &SphWW::dW, &PhysviscWW::pt1,
                          &PhysviscWW::sigmaTensor);
        for (PhysviscWW* w : t.pvww) {
            double paar[6];
            w->schertensor(paar);
            const PhysviscTeilchen* anderer = w->pt2;
            if (w->pt1 != &t)
                anderer = w->pt1;
            else
                for (int c = 0; c < 6; ++c)
                    w->sigmaTensor[c] = paar[c];
            for (int c = 0; c < 6; ++c)
                s[c] += paar[c] / anderer->rho;
        }
        for (int c = 0; c < 6; ++c)
            t.sigmaTensor[c] = s[c] * fs;
    });
    // The pair vectors take twelve divisions each: formed once per pair.
    scheibe::_fuer_alle_paare(*ww, [&](PhysviscWW& w) { w.physvisc(phys); });
    const double fa = phys.mTeilchen * phys.viskositaet * dfak;
    scheibe::_fuer_alle_teilchen(teilchen, *gitter, [&](PhysviscTeilchen& t) {
        double A[3] = {0, 0, 0};
        scheibe::vorladen(t.pvww, &PhysviscWW::pt1, &PhysviscWW::physviscVektor);
        for (const PhysviscWW* w : t.pvww) {
            if (w->pt1 == &t) {
                for (int k = 0; k < 3; ++k)
                    A[k] += w->physviscVektor[k];
            } else {
                for (int k = 0; k < 3; ++k)
                    A[k] += -w->physviscVektor[k];
            }
        }
        for (int k = 0; k < 3; ++k) {
            A[k] = A[k] * fa;
            t.aPhysvisc[k] = A[k];
            t.a[k] = t.a[k] + A[k];
        }
    });
}
