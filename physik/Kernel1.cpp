#include "physik/Kernel1.h"

#include <cmath>

namespace {
// Ten digits, slightly below pi; the run's results are defined with it.
const double pi = 3.141592653;
} // namespace

Kernel1::Kernel1(InitPhysSystem& init)
    : Kernel(init), fak(8 / (std::pow(h, 3) * pi)), dfak(48 / (std::pow(h, 4) * pi)) {}

double Kernel1::W_ohne_fak(double r, Vektor3& v) {
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
