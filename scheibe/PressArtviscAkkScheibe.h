#pragma once

#include "scheibe/PressArtviscTeilchen.h"
#include "scheibe/PressArtviscWW.h"
#include "scheibe/SphAkkScheibe.h"

#include "scheibe/Paarliste.h"
#include <memory>
#include <vector>

// A gas disc: SPH particles with an equation of state, for the pressure force
// and the artificial viscosity. Uses the box and lengths of the SPH disc and
// its own particles, grid and pairs; those of the SPH disc stay empty.
class PressArtviscAkkScheibe : public SphAkkScheibe {
public:
    std::vector<PressArtviscTeilchen> teilchen;
    std::shared_ptr<Gitter<PressArtviscTeilchen>> gitter;
    std::shared_ptr<Paarliste<PressArtviscWW>> ww;

    PressArtviscAkkScheibe();
    PressArtviscAkkScheibe(InitAkkScheibe& init, PhysSystem& phys);

    AkkScheibe* clone() override;
    PressArtviscTeilchen& operator[](int i) override;
    int tanz() override;
    void entferne_teilchen(int i) override;
    void output(PhysSystem& phys) override;
    void force_init(PhysSystem& phys) override;
    void odeint_init(AkkScheibe& other) override;
    void odeint_assign(AkkScheibe& other) override;
    void fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v) override;
    void ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                        const std::vector<Vektor3>& v) override;
    // Adds the pressure acceleration to every particle.
    virtual void add_press(PhysSystem& phys);
    // Adds the artificial-viscosity acceleration to every particle.
    virtual void add_artvisc(PhysSystem& phys);
};
