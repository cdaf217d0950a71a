#include "physik/PhysSystem.h"

#include "init/InitPhysSystem.h"

#include <cmath>

namespace {
const double G = 3.9371199385708905e-7; // gravitational constant, R_sun^3 / (M_sun s^2)
const double zweiPi = 6.283185306;      // ten digits, slightly below 2 pi
} // namespace

PhysSystem::PhysSystem(InitPhysSystem& init, Kernel* k) {
    mTeilchen = 1.7281541e-16;
    alpha = init.ArtVisk_alpha;
    beta = init.ArtVisk_beta;
    h = init.Smoothinglength;
    x1 = std::valarray<double>(0.0, 3);
    x2 = std::valarray<double>(0.0, 3);
    kernel = k;

    m1 = init.Primaersternmasse;
    m2 = init.Sekundaersternmasse;
    periode = init.Bahnperiode;
    omega = zweiPi / periode;
    viskositaet = init.Viskositaet;

    // Kepler's third law, omega^2 a^3 = G (m1 + m2); a general power, not a
    // cube root, so that a base of 0 gives 0.
    a = std::pow(G * (m1 + m2) / (omega * omega), 0.3333333333333333);

    x1[0] = a * m2 / (m1 + m2);
    x2[0] = x1[0] - a;

    // L1 by bisection between the stars. f is the balance of centrifugal force
    // and the pull of both stars on the x axis, divided by omega^2 a^2; it
    // rises from -inf at the secondary to +inf at the primary. The fixed 199
    // rounds take the interval far below rounding; no tolerance test.
    double unten = x2[0];
    double oben = x1[0];
    for (int runde = 0; runde < 199; ++runde) {
        double x = (unten + oben) * 0.5;
        xL1 = x;
        double d2 = x - x2[0];
        double d1 = x - x1[0];
        double f = x / (a * a) - x1[0] / (d2 * d2) - x2[0] / (d1 * d1);
        if (f >= 0)
            oben = x;
        else
            unten = x; // also when f is not a number
    }
    xL1 = (unten + oben) * 0.5;

    rMax = std::fabs(x1[0] - xL1) * 1.1;
    eta = 0.05;
}
