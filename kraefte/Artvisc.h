#pragma once

#include "kraefte/RechteSeiteDG.h"

// Artificial viscosity between approaching SPH particles (shock capturing).
// Needs a PressArtviscAkkScheibe (std::bad_cast for any other disc).
class Artvisc : public RechteSeiteDG {
public:
    void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) override;
    AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) override;
    int scheibe() override { return 2; }
};
