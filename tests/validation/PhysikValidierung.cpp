// Physics checks against independent results: kernel normalisation, the
// inner Lagrange point, and orbits integrated with the Cash-Karp stepper.

#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "odeint/RungeKutta.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <string>

namespace {

const double G = 3.9371199385708905e-7; // R_sun^3 / (M_sun s^2)
const double pi = std::acos(-1.0);
const double periode = 5453.6;
const double omega = 2 * pi / periode;

InitPhysSystem physik(const std::string& zusatz) {
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("p"), hilfen::parameter(zusatz));
    return InitPhysSystem(o.datei("p").c_str(), o.datei("p").c_str());
}

TEST(Validierung, KernIntegriertZuEins) {
    InitPhysSystem ini = physik("Smoothinglength 1");
    Kernel1 k(ini);
    // Midpoint rule over one octant of the cube [0, h]^3, cells of h/200,
    // points beyond the support left out; times 8 for the whole space.
    const double d = 1.0 / 200;
    std::valarray<double> v(3);
    double summe = 0;
    for (double x = d / 2; x < 1; x += d)
        for (double y = d / 2; y < 1; y += d)
            for (double z = d / 2; z < 1; z += d)
                if (double r = std::sqrt(x * x + y * y + z * z); r < 1.0)
                    summe += k.fak * k.W_ohne_fak(r, v);
    EXPECT_NEAR(8 * summe * d * d * d, 1.0, 1e-3);
}

TEST(Validierung, L1AusDemKraeftegleichgewicht) {
    for (double q : {0.03, 0.1, 0.2, 0.5, 1.0}) {
        // Force balance on the axis in units of the separation, x measured
        // from the primary towards the secondary, solved by Newton's method.
        double x = 0.5;
        for (int i = 0; i < 50; ++i) {
            double f = 1 / (x * x) - q / ((1 - x) * (1 - x)) - (1 + q) * x + q;
            double df = -2 / (x * x * x) - 2 * q / std::pow(1 - x, 3) - (1 + q);
            x -= f / df;
        }
        InitPhysSystem ini =
            physik("Primaersternmasse 0.8 Sekundaersternmasse " + std::to_string(0.8 * q));
        PhysSystem p(ini, nullptr);
        double xSystem = (p.x1[0] - p.xL1) / p.a;
        EXPECT_NEAR(xSystem, x, 1e-9) << "q=" << q;
        double fit = 1 - std::pow(q, 0.33071) / (0.51233 * std::pow(q, 0.49128) + 1.487864);
        EXPECT_NEAR(xSystem, fit, 6e-5) << "q=" << q;
    }
}

const double eps = 1e-12; // Genauigkeit: absolute tolerance of each velocity component per step

// Integrates test particles with the external force up to tEnde as the driver
// does (forces on the disc, then one adaptive step), calling `pruefe` after
// every step.
void laufe(AkkScheibe& s, const std::string& zusatz, double tEnde,
           const std::function<void()>& pruefe) {
    InitPhysSystem ini = physik(zusatz);
    PhysSystem phys(ini, nullptr);
    Kraefte kraefte;
    kraefte.add(new Externforce);
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("i"), "Anfangsschrittweite 1 Genauigkeit 1e-12 RungeKutta");
    InitOdeint io(o.datei("i").c_str());
    RungeKutta rk(s, io);
    for (int n = 0; s.t() < tEnde && n < 100000; ++n) { // bounded if the orbit runs away
        kraefte.derivatives(s, phys);
        rk.h = std::fmin(rk.h, tEnde - s.t());
        double hdid, hnext;
        rk.stepper(s, phys, kraefte, &hdid, &hnext);
        rk.h = hnext;
        pruefe();
    }
}

void teilchen(AkkScheibe& s, std::valarray<double> r, std::valarray<double> v) {
    s.teilchen.emplace_back();
    s.teilchen.back().r = r;
    s.teilchen.back().v = v;
}

double betrag(const std::valarray<double>& v) {
    return std::sqrt((v * v).sum());
}

TEST(Validierung, KreisbahnUmEinzelnenStern) {
    // Circular orbit of radius R about the lone primary at the origin: in the
    // rotating frame the tangential speed is the Kepler speed minus Omega R,
    // and the orbit closes after 2 pi / (vk/R - Omega).
    const double R = 0.2, vk = std::sqrt(G * 0.685 / R), umlauf = 2 * pi / (vk / R - omega);
    AkkScheibe s;
    teilchen(s, {R, 0, 0}, {0, vk - omega * R, 0});
    // A velocity error dv changes the orbit's energy and eccentricity, and
    // the radius then swings by up to about 4 R dv / vk. Per step
    // |dv| <= sqrt(3) eps; summed over the steps.
    double toleranz = 0, schlimmste = 0; // worst ratio of deviation to tolerance
    laufe(s, "Sekundaersternmasse 0", 10 * umlauf, [&] {
        toleranz += std::sqrt(3.0) * eps * 4 * R / vk;
        schlimmste = std::fmax(schlimmste, std::fabs(betrag(s[0].r) - R) / toleranz);
    });
    EXPECT_LE(schlimmste, 1.0);
    EXPECT_DOUBLE_EQ(s.t(), 10 * umlauf);
}

TEST(Validierung, JacobiEnergieBleibtErhalten) {
    // Stars of the default binary from Kepler's law, primary on +x.
    const double m1 = 0.685, m2 = 0.07, a = std::cbrt(G * (m1 + m2) / (omega * omega));
    const std::valarray<double> x1 = {a * m2 / (m1 + m2), 0, 0},
                                x2 = x1 - std::valarray<double>{a, 0, 0};
    auto energie = [&](const Teilchen& t) {
        return 0.5 * (t.v * t.v).sum() - G * m1 / betrag(t.r - x1) - G * m2 / betrag(t.r - x2) -
               0.5 * omega * omega * (t.r * t.r).sum();
    };
    // Inside the primary's Roche lobe: a near-circular orbit, an eccentric
    // one, and one off the orbital plane (the centrifugal term acts along z too).
    AkkScheibe s;
    teilchen(s, {x1[0] + 0.12, 0, 0}, {0, std::sqrt(G * m1 / 0.12) - omega * (x1[0] + 0.12), 0});
    teilchen(s, {x1[0], -0.2, 0}, {0.8 * std::sqrt(G * m1 / 0.2) - omega * 0.2, 0, 0});
    teilchen(s, {x1[0] - 0.15, 0, 0.03}, {0, omega * 0.15 - std::sqrt(G * m1 / 0.153), 2e-4});
    const double e0[3] = {energie(s[0]), energie(s[1]), energie(s[2])};
    // Per step each velocity component is off by at most eps and the position
    // by about h eps, so the Jacobi energy moves by at most
    // sqrt(3) eps (|v| + h |grad Phi_eff|) (the Coriolis term does no work).
    // With steps far shorter than an orbit h |grad Phi_eff| < |v|, which
    // leaves 2 sqrt(3) eps |v| per step, summed over the steps.
    double toleranz[3] = {0, 0, 0}, schlimmste[3] = {0, 0, 0};
    laufe(s, "", 3 * periode, [&] {
        for (int i = 0; i < 3; ++i) {
            toleranz[i] += 2 * std::sqrt(3.0) * eps * betrag(s[i].v);
            schlimmste[i] =
                std::fmax(schlimmste[i], std::fabs(energie(s[i]) - e0[i]) / toleranz[i]);
        }
    });
    EXPECT_DOUBLE_EQ(s.t(), 3 * periode);
    for (int i = 0; i < 3; ++i)
        EXPECT_LE(schlimmste[i], 1.0) << "particle " << i;
}

} // namespace
