#pragma once

#include "scheibe/SphWW.h"

class Kernel;
class PressArtviscTeilchen;

// Pair of a gas disc: adds the pair terms of the pressure force and of the
// artificial viscosity.
class PressArtviscWW : public SphWW {
public:
    PressArtviscTeilchen* pt1 = nullptr; // first partner, typed
    PressArtviscTeilchen* pt2 = nullptr; // second partner, typed
    double press = 3.0;                  // (P_i + P_j) / (rho_i rho_j); recomputed before use
    double pi = 0;                       // artificial viscosity Pi_ij

    void _init(PressArtviscTeilchen* p, PressArtviscTeilchen* q, const double s[3], double s2,
               const double dv[3], Kernel& kernel);
};
