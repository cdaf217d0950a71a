#pragma once

#include "physik/Vektor.h"

class InitPhysSystem;

// Smoothing kernel of the SPH method. W_ohne_fak returns the kernel value
// without its normalisation and turns the separation vector it is given into
// the gradient, also without normalisation; the caller multiplies the factors
// of the concrete kernel in where needed.
class Kernel {
public:
    double h; // smoothing length (radius of the support), solar radii

    explicit Kernel(InitPhysSystem& init);
    virtual ~Kernel() = default;

    // r: distance of two particles (r >= 0); v: on entry their separation
    // vector, on return scaled so that the gradient is (normalisation) * v.
    virtual double W_ohne_fak(double r, Vektor3& v) = 0;
};
