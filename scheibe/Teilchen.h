#pragma once

#include <valarray>

// A test particle: the state (r, v) that the integrator advances and the
// acceleration a that the forces accumulate.
class Teilchen {
public:
    std::valarray<double> r; // position, solar radii
    std::valarray<double> v; // velocity, solar radii / s
    std::valarray<double> a; // dv/dt from the forces, solar radii / s^2; never written to a file

    Teilchen();

    // Acceleration to zero, before every evaluation of the forces.
    void init();
    // Largest absolute velocity component, from 0.0 (NaN components are ignored).
    double max_v_koord() const;
};
