#pragma once

#include "kraefte/RechteSeiteDG.h"

// Gas pressure of the SPH particles, from their equation of state.
// Needs a PressArtviscAkkScheibe (std::bad_cast for any other disc).
class Pressure : public RechteSeiteDG {
public:
    void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) override;
    AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) override;
    int scheibe() override { return 2; }
};
