#pragma once

#include <array>

// Three-component vectors (positions, velocities, accelerations, separations,
// gradients) and symmetric 3x3 tensors (xx, xy, xz, yy, yz, zz), held inside
// the records that own them: no heap block per vector, so particle and pair
// records are contiguous and copied without allocating.
using Vektor3 = std::array<double, 3>;
using Tensor6 = std::array<double, 6>;
