// Physics against independent results: kernel normalisation, L1, orbits under Cash-Karp steps.

#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "odeint/RungeKutta.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using V = Vektor3;
const double G = 3.9371199385708905e-7, pi = std::acos(-1.0), omega = 2 * pi / 5453.6; // R_sun, s
const double eps = 1e-12; // Genauigkeit: absolute error bound of each velocity component per step
const auto betrag = [](const V& v) { return std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]); };
const auto minus = [](const V& a, const V& b) { return V{a[0] - b[0], a[1] - b[1], a[2] - b[2]}; };

TEST(Validierung, KernIntegriertZuEins) {
    // The smoothing kernel is normalised: its integral over space is 1.
    hilfen::Aufbau a("Smoothinglength 1");
    // Midpoint rule on cubic cells of edge h/100 in one octant (W is radial), inside r < h.
    V v{};
    double summe = 0;
    for (int i = 0; i < 100; ++i)
        for (int j = 0; j < 100; ++j)
            for (int l = 0; l < 100; ++l) {
                const double x = (i + 0.5) / 100, y = (j + 0.5) / 100, z = (l + 0.5) / 100;
                const double r = std::sqrt(x * x + y * y + z * z);
                if (r < 1)
                    summe += 8 * a.kernel.fak * a.kernel.W_ohne_fak(r, v) * 1e-6;
            }
    EXPECT_NEAR(summe, 1.0, 1e-3);
}

TEST(Validierung, L1AusDemKraeftegleichgewicht) {
    // L1 is where both stars' pull and the centrifugal force balance; a published fit agrees.
    for (double q : {0.03, 0.1, 0.2, 0.5, 1.0}) {
        double x = 0.5; // axial force balance, x from the primary in units of a, by Newton
        for (int i = 0; i < 50; ++i)
            x -= (1 / (x * x) - q / ((1 - x) * (1 - x)) - (1 + q) * x + q) /
                 (-2 / (x * x * x) - 2 * q / std::pow(1 - x, 3) - (1 + q));
        hilfen::Aufbau a("Primaersternmasse 1 Sekundaersternmasse " + std::to_string(q));
        const double xs = (a.phys.x1[0] - a.phys.xL1) / a.phys.a;
        EXPECT_NEAR(xs, x, 1e-9) << q;
        EXPECT_NEAR(xs, 1 - std::pow(q, 0.33071) / (0.51233 * std::pow(q, 0.49128) + 1.487864),
                    6e-5);
    }
}

// Integrates particles (r, v) with the external force to tEnde as the driver does; the drift
// of `groesse` must stay within a tolerance that grows by `zuwachs` per step.
const auto laufe = [](const std::vector<std::pair<V, V>>& start, const std::string& zusatz,
                      double tEnde, auto groesse, auto zuwachs) {
    AkkScheibe s;
    s.teilchen.resize(start.size());
    std::vector<double> tol(start.size()), g0;
    for (size_t i = 0; i < start.size(); ++i) {
        std::tie(s.teilchen[i].r, s.teilchen[i].v) = start[i];
        g0.push_back(groesse(s.teilchen[i]));
    }
    hilfen::Aufbau a(zusatz + " Anfangsschrittweite 1 Genauigkeit 1e-12");
    InitOdeint io(a.param.c_str());
    PhysSystem& phys = a.phys;
    Kraefte kraefte;
    kraefte.add(new Externforce);
    RungeKutta rk(s, io);
    double hdid, hnext;
    for (int n = 0; s.t() < tEnde && n < 100000; ++n) {
        kraefte.derivatives(s, phys);
        rk.h = std::fmin(rk.h, tEnde - s.t());
        rk.stepper(s, phys, kraefte, &hdid, &hnext);
        rk.h = hnext;
        for (size_t i = 0; i < g0.size(); ++i) {
            tol[i] += zuwachs(s.teilchen[i]);
            ASSERT_LE(std::fabs(groesse(s.teilchen[i]) - g0[i]), tol[i]) << i;
        }
    }
    EXPECT_DOUBLE_EQ(s.t(), tEnde);
};

TEST(Validierung, KreisbahnUmEinzelnenStern) {
    // A circular Kepler orbit of radius R about a lone star at the origin keeps its radius, seen
    // from the rotating frame (speed vk - Omega R there).
    const double R = 0.2, vk = std::sqrt(G * 0.685 / R), umlauf = 2 * pi / (vk / R - omega);
    // Per step |dv| <= sqrt(3) eps swings the radius by up to 4 R |dv| / vk.
    laufe(
        {{{R, 0, 0}, {0, vk - omega * R, 0}}}, "Sekundaersternmasse 0", 10 * umlauf,
        [](const Teilchen& t) { return betrag(t.r); },
        [&](const Teilchen&) { return std::sqrt(3.0) * eps * 4 * R / vk; });
}

TEST(Validierung, JacobiEnergieBleibtErhalten) {
    // The Jacobi integral is conserved in the frame co-rotating with the default binary (primary
    // on +x, separation from Kepler's law).
    const double m1 = 0.685, m2 = 0.07, a = std::cbrt(G * (m1 + m2) / (omega * omega));
    const double x1 = a * m2 / (m1 + m2), v1 = std::sqrt(G * m1);
    auto energie = [&](const Teilchen& t) {
        const double v = betrag(t.v), r = betrag(t.r);
        return 0.5 * v * v - G * m1 / betrag(minus(t.r, {x1, 0, 0})) -
               G * m2 / betrag(minus(t.r, {x1 - a, 0, 0})) - 0.5 * omega * omega * r * r;
    };
    // In the primary's Roche lobe: near-circular, eccentric, and off the plane.
    // Per step |dE| <= sqrt(3) eps (|v| + h |grad Phi|) < 2 sqrt(3) eps |v| for short steps.
    laufe({{{x1 + 0.12, 0, 0}, {0, v1 / std::sqrt(0.12) - omega * (x1 + 0.12), 0}},
           {{x1, -0.2, 0}, {0.8 * v1 / std::sqrt(0.2) - omega * 0.2, 0, 0}},
           {{x1 - 0.15, 0, 0.03}, {0, omega * 0.15 - v1 / std::sqrt(0.153), 2e-4}}},
          "", 3 * 5453.6, energie,
          [](const Teilchen& t) { return 2 * std::sqrt(3.0) * eps * betrag(t.v); });
}

} // namespace
