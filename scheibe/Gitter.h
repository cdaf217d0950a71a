#pragma once

#include <vector>

// Cell grid of an SPH disc: x-slabs, y-columns, z-cells, and in each cell the
// addresses of the particles binned there.
template <class T> using Gitter = std::vector<std::vector<std::vector<std::vector<T*>>>>;
