#pragma once

#include "scheibe/SphTeilchen.h"

#include <vector>

class PhysSystem;
class PressArtviscWW;

// A gas particle: density plus equation of state, and the accelerations of
// pressure and artificial viscosity of the last evaluation.
class PressArtviscTeilchen : public SphTeilchen {
public:
    std::vector<PressArtviscWW*> paww; // pairs of this particle (not owned)
    std::vector<double> aPress;        // pressure acceleration
    std::vector<double> aArtvisc;      // artificial-viscosity acceleration
    double p = 0;                      // pressure
    double temperatur = 0;             // temperature, K
    double cs = 0;                     // sound speed, solar radii / s

    PressArtviscTeilchen();

    // Density and equation of state from the pairs in paww.
    void _force_init(PhysSystem& phys);
    // The same from summe = 1 + the sum of W over the pairs.
    void _dichte(double summe, PhysSystem& phys);
};
