// The binary's derived quantities and the cubic spline kernel.

#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <valarray>

namespace {

InitPhysSystem lese(const std::string& text) {
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("p"), text + " Bahnperiode 5453.6");
    return InitPhysSystem(o.datei("p").c_str(), o.datei("p").c_str());
}

// Kepler's third law in closed form: a^3 = G M P^2 / (4 pi^2).
double kepler(double m) {
    return std::cbrt(3.9371199385708905e-7 * m * 5453.6 * 5453.6 /
                     (4 * std::pow(std::acos(-1.0), 2)));
}

TEST(PhysSystem, Doppelsterne) {
    InitPhysSystem ini = lese("Primaersternmasse 0.685 Sekundaersternmasse 0.07");
    PhysSystem p(ini, nullptr);
    const double a = kepler(0.755);
    EXPECT_NEAR(p.a, a, 1e-9 * a);
    EXPECT_NEAR(p.x1[0], a * 0.07 / 0.755, 1e-9);
    EXPECT_NEAR(p.x2[0], -0.55096, 1e-5);
    EXPECT_NEAR(p.xL1, -0.378367, 1e-6);
    EXPECT_NEAR(p.rMax, 0.478137, 1e-6);
    EXPECT_EQ(p.mTeilchen, 1.7281541e-16);
    EXPECT_EQ(p.eta, 0.05);

    // Equal masses: stars at +-a/2, L1 at the centre of mass.
    InitPhysSystem gleich = lese("Primaersternmasse 0.5 Sekundaersternmasse 0.5");
    PhysSystem g(gleich, nullptr);
    EXPECT_NEAR(g.x1[0], g.a / 2, 1e-15);
    EXPECT_NEAR(g.x2[0], -g.a / 2, 1e-15);
    EXPECT_NEAR(g.xL1, 0.0, 1e-15);

    // No secondary: primary at the origin, and the balance point on the axis
    // moves onto the massless secondary at -a.
    InitPhysSystem allein = lese("Primaersternmasse 0.685 Sekundaersternmasse 0");
    PhysSystem e(allein, nullptr);
    EXPECT_EQ(e.x1[0], 0.0);
    EXPECT_NEAR(e.x2[0], -kepler(0.685), 1e-9);
    EXPECT_NEAR(e.xL1, -kepler(0.685), 1e-9);
    EXPECT_NEAR(e.rMax, 1.1 * kepler(0.685), 1e-9);
}

TEST(Kernel1, WerteGradientenfaktorenUndNormierung) {
    const double h = 0.5;
    InitPhysSystem ini = lese("Smoothinglength 0.5");
    Kernel1 k(ini);
    auto bei = [&](double r) { // value and gradient factor at distance r
        std::valarray<double> v = {1.0, 0.0, 0.0};
        double w = k.W_ohne_fak(r, v);
        return std::make_pair(w, v[0]);
    };
    EXPECT_EQ(bei(0), std::make_pair(1.0, -2 / h));
    // The seam at h/2: both pieces give 1/4 and the factor -0.5/h.
    EXPECT_EQ(bei(h / 2), std::make_pair(0.25, -0.5 / h));
    EXPECT_NEAR(bei(h / 2 * (1 + 1e-12)).first, 0.25, 1e-11);
    EXPECT_NEAR(bei(h / 2 * (1 + 1e-12)).second, -0.5 / h, 1e-10);
    EXPECT_EQ(bei(h), std::make_pair(0.0, 0.0));
    EXPECT_DOUBLE_EQ(bei(2 * h).first, -2.0); // no cut-off beyond h

    InitPhysSystem eins = lese("Smoothinglength 1");
    Kernel1 k1(eins);
    EXPECT_NEAR(k1.fak, 2.5464791, 1e-7);
    EXPECT_NEAR(k1.dfak, 15.2788745, 1e-7);

    // dfak * v is the gradient of fak * W with respect to the position v
    // points away from: compare with central differences, in the inner piece,
    // the outer one and just past the seam. A fourth component stays as it is.
    for (std::valarray<double> s :
         {std::valarray<double>{0.05, -0.1, 0.08}, {0.2, 0.15, -0.18}, {0.0, 0.25, 0.02}}) {
        std::valarray<double> v = {s[0], s[1], s[2], 7.0}, leer(3);
        k.W_ohne_fak(std::sqrt((s * s).sum()), v);
        EXPECT_EQ(v[3], 7.0);
        for (int i = 0; i < 3; ++i) {
            std::valarray<double> p = s, m = s;
            p[i] += 1e-6;
            m[i] -= 1e-6;
            double d = k.fak *
                       (k.W_ohne_fak(std::sqrt((p * p).sum()), leer) -
                        k.W_ohne_fak(std::sqrt((m * m).sum()), leer)) /
                       2e-6;
            EXPECT_NEAR(k.dfak * v[i], d, 1e-5) << s[0] << " " << s[1] << " " << s[2];
        }
    }
}

} // namespace
