#pragma once

#include "scheibe/SphTeilchen.h"

class PhysSystem;
class PressArtviscWW;

// A gas particle: density plus equation of state, and the accelerations of
// pressure and artificial viscosity of the last evaluation.
class PressArtviscTeilchen : public SphTeilchen {
public:
    PaarSicht<PressArtviscWW> paww; // pairs of this particle
    Vektor3 aPress{};               // pressure acceleration
    Vektor3 aArtvisc{};             // artificial-viscosity acceleration
    double p = 0;                   // pressure
    double temperatur = 0;          // temperature, K
    double cs = 0;                  // sound speed, solar radii / s

    // Density and equation of state from the pairs in paww.
    void _force_init(PhysSystem& phys);
    // The same from S = 1 + sum of W.
    void dichte(double S, PhysSystem& phys);
};
