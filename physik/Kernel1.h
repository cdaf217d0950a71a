#pragma once

#include "physik/Kernel.h"

// Cubic B-spline kernel (Monaghan & Lattanzio 1985) with compact support of
// radius h, the inner piece reaching to h/2:
//   W(q) = fak (1 - 6q^2 + 6q^3)   for 0 <= q <= 1/2
//   W(q) = fak 2 (1 - q)^3         for 1/2 < q <= 1,      q = r/h,
// normalised in three dimensions with fak = 8 / (pi h^3).
// There is no cut-off at q = 1: callers only pass distances below h.
class Kernel1 : public Kernel {
public:
    double fak;  // normalisation of the value, 8 / (h^3 pi)
    double dfak; // normalisation of the gradient, 48 / (h^4 pi)

    explicit Kernel1(InitPhysSystem& init);

    double W_ohne_fak(double r, Vektor3& v) override;
};
