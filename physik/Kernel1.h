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

    // The same, non-virtual, for the pair passes: the value without fak,
    // and v[0..2] scaled into the gradient without dfak.
    double wert(double r, double* v) const {
        double q = r / h;
        if (h * 0.5 >= r) {
            // Inner piece: dW/dr / r = (18q^2 - 12q)/(h r) = (3q - 2) 6/h^2; the
            // factor 6/h^2 is folded into dfak. No division by r, so r = 0 is fine.
            double faktor = (3 * q - 2) / h;
            for (int i = 0; i < 3; ++i)
                v[i] = v[i] * faktor;
            return q * ((q - 1) * 6 * q) + 1;
        }
        // Outer piece, also taken when r is not a number.
        double t = 1 - q;
        double faktor = -(t * t) / r;
        for (int i = 0; i < 3; ++i)
            v[i] = v[i] * faktor;
        return 2 * (t * t * t);
    }
};
