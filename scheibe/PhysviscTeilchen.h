#pragma once

#include "scheibe/PressArtviscTeilchen.h"

class PhysSystem;
class PhysviscWW;

// A particle of a viscous gas disc: adds its shear-tensor estimate and its
// viscous acceleration.
class PhysviscTeilchen : public PressArtviscTeilchen {
public:
    PaarSicht<PhysviscWW> pvww; // pairs of this particle
    Vektor3 aPhysvisc{};        // viscous acceleration
    Tensor6 sigmaTensor{};      // shear tensor: xx, xy, xz, yy, yz, zz

    // Density and equation of state from the pairs in pvww.
    void _force_init(PhysSystem& phys);
    // sigma = f_grad m sum over the pairs of (pair tensor / rho of the partner).
    void sigma(PhysSystem& phys);
    // A = m nu f_grad sum over the pairs of the pair's viscous vector; added to a.
    void add_physvisc(PhysSystem& phys);
    // A for the particle in slot x of a pair list whose shear tensors are formed.
    static Vektor3 beschleunigung(const Partnerliste& ww, std::uint32_t x, const PhysSystem& phys);
};
