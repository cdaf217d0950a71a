#pragma once

#include "kraefte/RechteSeiteDG.h"

// Gravity of both stars plus the Coriolis and centrifugal accelerations of the
// frame co-rotating with the binary about the z axis:
//   a = -G m1 d1/|d1|^3 - G m2 d2/|d2|^3 - 2 Omega x v - Omega x (Omega x r),
// with d_k = r - x_k. The centrifugal term is applied as Omega^2 r, on all
// three components.
class Externforce : public RechteSeiteDG {
public:
    void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) override;
    AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) override;
    int scheibe() override { return 0; }
};
