#pragma once

#include "scheibe/PaarSicht.h"
#include "scheibe/Teilchen.h"

class PhysSystem;
class SphWW;

// A particle of an SPH disc: a test particle with its interaction pairs and
// its density.
class SphTeilchen : public Teilchen {
public:
    PaarSicht<SphWW> ww; // pairs of this particle, rebuilt per evaluation
    double rho = 0;      // SPH density, solar masses / solar radii^3

    // rho = m fak (1 + sum of W over the pairs): the 1 is the particle's own
    // kernel value at distance 0.
    void _force_init(PhysSystem& phys);
    // The same from S = 1 + sum of W, in the order (S m) fak.
    void dichte(double S, PhysSystem& phys);
    static double dichteAus(double S, const PhysSystem& phys);
};
