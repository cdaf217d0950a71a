#pragma once

#include "physik/Vektor.h"

// A test particle: the state (r, v) that the integrator advances and the
// acceleration a that the forces accumulate.
class Teilchen {
public:
    Vektor3 r{}; // position, solar radii
    Vektor3 v{}; // velocity, solar radii / s
    Vektor3 a{}; // dv/dt from the forces, solar radii / s^2; never written to a file

    // Acceleration to zero, before every evaluation of the forces.
    void init();
    // Largest absolute velocity component, from 0.0 (NaN components are ignored).
    double max_v_koord() const;
};
