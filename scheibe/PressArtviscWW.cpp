#include "scheibe/PressArtviscWW.h"

#include "scheibe/PressArtviscTeilchen.h"

void PressArtviscWW::_init(PressArtviscTeilchen* p, PressArtviscTeilchen* q, const double s[3],
                           double s2, const double dv[3], Kernel& kernel) {
    SphWW::_init(p, q, s, s2, dv, kernel);
    pt1 = p;
    pt2 = q;
}
