#include "physik/Kernel1.h"

#include <cmath>

namespace {
// Ten digits, slightly below pi; the run's results are defined with it.
const double pi = 3.141592653;
} // namespace

Kernel1::Kernel1(InitPhysSystem& init)
    : Kernel(init), fak(8 / (std::pow(h, 3) * pi)), dfak(48 / (std::pow(h, 4) * pi)) {}

double Kernel1::W_ohne_fak(double r, Vektor3& v) {
    return wert(r, v.data());
}
