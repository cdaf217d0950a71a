#pragma once

#include "scheibe/PhysviscTeilchen.h"

#include <vector>

namespace scheibe {

// The pair list through which a particle type takes part in its disc's passes.
inline std::vector<SphWW*>& paare(SphTeilchen& t) {
    return t.ww;
}
inline std::vector<PressArtviscWW*>& paare(PressArtviscTeilchen& t) {
    return t.paww;
}
inline std::vector<PhysviscWW*>& paare(PhysviscTeilchen& t) {
    return t.pvww;
}

} // namespace scheibe
