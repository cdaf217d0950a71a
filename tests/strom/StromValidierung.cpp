// The ballistic stream: gas released just behind L1 with a small velocity, under the stars' gravity
// and the frame's Coriolis and centrifugal terms alone (the external force), integrated with the
// Cash-Karp stepper, against the published stream of Lubow & Shu.

#include "init/InitOdeint.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "odeint/RungeKutta.h"
#include "scheibe/AkkScheibe.h"
#include "strom/InitStrom.h"
#include "strom/Stromquelle.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

namespace {

const double G = 3.9371199385708905e-7; // R_sun^3 / (M_sun s^2)

struct Vorbeiflug {
    double rmin;      // closest approach to the primary / a
    double rKreisL1;  // j^2 / (G m1 a) with j at the release
    double rKreisMin; // the same with j at the closest approach
};

// One particle from the stream of a binary with m1 = 0.685 and m2 = q m1 (period of
// OY Car), released 1e-4 a behind L1 at 1e-3 a omega toward the primary, until it
// has passed the primary. j is the specific angular momentum about the primary in
// the non-rotating frame: d x (v + omega z x d), d the offset from the primary.
Vorbeiflug fliege(double q) {
    std::ostringstream p;
    p.precision(17);
    p << "Sekundaersternmasse " << 0.685 * q << " Genauigkeit 1e-13 Anfangsschrittweite 1\n";
    hilfen::Aufbau o(p.str());
    InitOdeint io(o.param.c_str());
    PhysSystem& phys = o.phys;
    const double a = phys.a, omega = phys.omega, x1 = phys.x1[0], b1 = x1 - phys.xL1;
    p.str("");
    p << "Stromrate 1e-16 Stromgeschwindigkeit " << 1e-3 * a * omega << " Stromstreuung 0"
      << " Stromabstand " << 1e-4 * a << " Strombreite 0 Stromsaat 1\n";
    hilfen::schreibe(o.datei("s"), p.str());
    InitStrom init(o.datei("s").c_str());
    AkkScheibe scheibe;
    Stromquelle quelle(scheibe, phys, init);
    Vektor3 r, v;
    quelle.neuesTeilchen(0, scheibe.t(), r, v);
    scheibe.fuege_teilchen_hinzu(r, v);
    auto drehimpuls = [&](const Teilchen& t) {
        const double dx = t.r[0] - x1, dy = t.r[1];
        return dx * t.v[1] - dy * t.v[0] + omega * (dx * dx + dy * dy);
    };
    const double j0 = drehimpuls(scheibe[0]);

    Kraefte kraefte;
    kraefte.add(new Externforce);
    RungeKutta rk(scheibe, io);
    double naechster = std::numeric_limits<double>::infinity(), jmin = 0, hdid, hnext;
    // Steps of at most P / 4000 sample the approach at distances that differ from
    // the closest by some 1e-4 of it.
    for (int n = 0; n < 20000; ++n) {
        kraefte.derivatives(scheibe, phys);
        rk.h = std::fmin(rk.h, phys.periode / 4000);
        rk.stepper(scheibe, phys, kraefte, &hdid, &hnext);
        rk.h = hnext;
        const Teilchen& t = scheibe[0];
        const double d = std::hypot(t.r[0] - x1, t.r[1], t.r[2]);
        if (d < naechster) {
            naechster = d;
            jmin = drehimpuls(t);
        } else if (d < 0.5 * b1) {
            break; // moving away from the primary again
        }
    }
    const double Gm1a = G * phys.m1 * a;
    return {naechster / a, j0 * j0 / Gm1a, jmin * jmin / Gm1a};
}

TEST(StromValidierung, BallistischerStromNachLubowUndShu) {
    for (double q : {0.1, 0.2, 0.3, 0.5, 1.0}) {
        const Vorbeiflug f = fliege(q);
        // Closest approach of the stream, Lubow & Shu (1975, ApJ 198, 383) as fitted by Ulrich &
        // Burger (1976, ApJ 206, 509) for 0.05 < q < 1: r_min / a = 0.0488 q^-0.464. Tolerance 5 %.
        EXPECT_NEAR(f.rmin / (0.0488 * std::pow(q, -0.464)), 1, 0.05) << q;
        // Circularisation radius of the angular momentum the gas takes out of L1, j = omega b1^2:
        // r_circ / a = (1 + q) (b1 / a)^4, with b1 / a = 0.500 - 0.227 log q (Plavec & Kratochvil
        // 1964), r_circ / a = (1 + q) (0.500 - 0.227 log q)^4 (Hessman & Hopp 1990, A&A 228, 387;
        // Frank, King & Raine, Accretion Power in Astrophysics). Tolerance 3 %; at q = 0.1 the b1
        // fit itself is 1.3 % high (0.7270 against the root 0.7175 of the force balance on the
        // axis), which the fourth power makes 5.4 %: tolerance 6 % there.
        const double hh = (1 + q) * std::pow(0.500 - 0.227 * std::log10(q), 4);
        EXPECT_NEAR(f.rKreisL1 / hh, 1, q < 0.15 ? 0.06 : 0.03) << q;
        // On its way in the secondary's pull takes angular momentum from the gas: at the closest
        // approach j gives the disc radius of Lubow & Shu, r_d / a = 0.0859 q^-0.426 (fit of Ulrich
        // & Burger 1976 for 0.05 < q < 1), a quarter below r_circ. Tolerance 3 %.
        EXPECT_NEAR(f.rKreisMin / (0.0859 * std::pow(q, -0.426)), 1, 0.03) << q;
    }
}

} // namespace
