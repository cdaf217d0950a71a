#pragma once

#include "kraefte/RechteSeiteDG.h"

// Physical shear viscosity with constant kinematic viscosity.
// Needs a PhysviscAkkScheibe (std::bad_cast for any other disc).
class Physvisc : public RechteSeiteDG {
public:
    void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) override;
    AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) override;
    int scheibe() override { return 3; }
};
