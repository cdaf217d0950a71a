#pragma once

#include "scheibe/PhysviscTeilchen.h"

namespace scheibe {

// The pair list through which a particle type takes part in its disc's passes.
inline PaarSicht<SphWW>& paare(SphTeilchen& t) {
    return t.ww;
}
inline PaarSicht<PressArtviscWW>& paare(PressArtviscTeilchen& t) {
    return t.paww;
}
inline PaarSicht<PhysviscWW>& paare(PhysviscTeilchen& t) {
    return t.pvww;
}

} // namespace scheibe
