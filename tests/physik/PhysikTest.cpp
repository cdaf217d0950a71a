// The binary's derived quantities and the cubic spline kernel.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using V = std::valarray<double>;

TEST(PhysSystem, Doppelsterne) {
    hilfen::Aufbau a;
    const PhysSystem& p = a.phys;
    // By hand for m1 = 0.685, m2 = 0.07, P = 5453.6 s: a^3 = G (m1 + m2) P^2 / (4 pi^2),
    // x1 = a m2 / (m1 + m2), x2 = x1 - a, rMax = 1.1 (x1 - xL1).
    EXPECT_NEAR(p.a, 0.6072639, 1e-7);
    EXPECT_NEAR(p.x1[0], 0.0563026, 1e-7);
    EXPECT_NEAR(p.x2[0], -0.5509613, 1e-7);
    EXPECT_NEAR(p.xL1, -0.378367, 1e-6);
    EXPECT_NEAR(p.rMax, 0.478137, 1e-6);
}

TEST(Kernel1, WerteUndGradient) {
    const double h = 0.5;
    hilfen::Aufbau a("Smoothinglength 0.5");
    Kernel1& k = a.kernel;
    // (r, W, gradient factor): both pieces agree at h/2; nothing is cut off beyond h.
    for (V c : {V{0, 1, -2 / h}, V{h / 2, 0.25, -0.5 / h}, V{h, 0, 0}, V{2 * h, -2, -0.5 / h}}) {
        Vektor3 v = {1, 0, 0};
        EXPECT_DOUBLE_EQ(k.W_ohne_fak(c[0], v), c[1]) << c[0];
        EXPECT_DOUBLE_EQ(v[0], c[2]) << c[0];
    }
    // dfak * v is the gradient of fak * W at the position v points away from: central
    // differences in the inner piece, the outer one, and just past the seam.
    auto W = [&](V s) {
        Vektor3 g = {s[0], s[1], s[2]};
        return k.fak * k.W_ohne_fak(std::sqrt((s * s).sum()), g);
    };
    for (V s : {V{0.05, -0.1, 0.08}, V{0.2, 0.15, -0.18}, V{0.0, 0.25, 0.02}}) {
        Vektor3 v = {s[0], s[1], s[2]};
        k.W_ohne_fak(std::sqrt((s * s).sum()), v);
        for (V d : {V{1e-6, 0, 0}, V{0, 1e-6, 0}, V{0, 0, 1e-6}})
            EXPECT_NEAR(k.dfak * (v[0] * d[0] + v[1] * d[1] + v[2] * d[2]) / 1e-6,
                        (W(s + d) - W(s - d)) / 2e-6, 1e-5);
    }
}

} // namespace
