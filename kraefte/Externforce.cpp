#include "kraefte/Externforce.h"

#include "kraefte/Scheibenfabrik.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/Faeden.h"

#include <cmath>

void Externforce::deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) {
    const double minusG = -3.9371199385708905e-7; // -G, R_sun^3 / (M_sun s^2)
    const double omega = phys.omega;
    const double omega2 = std::pow(omega, 2.0);
    // Each particle on its own: spread over the threads.
    scheibe::fuerAlle(std::size_t(scheibe.tanz()), scheibe::kosten::extern_, [&](std::size_t i) {
        Teilchen& t = scheibe[int(i)];
        double d1[3], d2[3];
        for (int k = 0; k < 3; ++k) {
            d1[k] = t.r[k] - phys.x1[k];
            d2[k] = t.r[k] - phys.x2[k];
        }
        double r1 = std::sqrt(d1[0] * d1[0] + d1[1] * d1[1] + d1[2] * d1[2]);
        double r2 = std::sqrt(d2[0] * d2[0] + d2[1] * d2[1] + d2[2] * d2[2]);
        double r1hoch3 = std::pow(r1, 3.0);
        double r2hoch3 = std::pow(r2, 3.0);
        double c[3] = {t.v[1] * omega, -t.v[0] * omega, 0};
        for (int k = 0; k < 3; ++k) {
            double A = minusG * (phys.m1 * (d1[k] / r1hoch3));
            A += minusG * (phys.m2 * (d2[k] / r2hoch3));
            A += 2.0 * c[k];
            A += omega2 * t.r[k];
            t.a[k] = t.a[k] + A;
        }
    });
}

AkkScheibe* Externforce::createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) {
    return erzeugeScheibe(scheibe(), init, phys);
}
