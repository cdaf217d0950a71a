// The disc generator: reproducible bytes, the radial distribution, the Kepler
// velocity law, bad options.

#include "tools/Scheibengenerator.h"
#include "init/InitPhysSystem.h"
#include "physik/PhysSystem.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <valarray>

namespace {

using Args = std::vector<std::string>;
using V = std::valarray<double>;

struct Umgebung : hilfen::TempOrdner { // with a parameter file of the default binary
    std::string parameter = datei("p");
    std::ostringstream out, err;
    Umgebung() { hilfen::schreibe(parameter, hilfen::parameter("")); }
    int lauf(Args a) {
        a.insert(a.begin(), {"-p", parameter}); // a later -p overrides
        out.str(""), err.str("");
        return generator::programm(a, out, err);
    }
};

TEST(Scheibengenerator, GleicherSeedGleicheBytes) {
    Umgebung u;
    ASSERT_EQ(0, u.lauf({"-n", "40", "--seed", "7", "-o", u.datei("a-0")}));
    ASSERT_EQ(0, u.lauf({"--seed=7", "--anzahl=40"}));
    EXPECT_EQ(hilfen::lies(u.datei("a-0")), u.out.str());
    ASSERT_EQ(0, u.lauf({"-n", "40", "--seed", "8"}));
    EXPECT_NE(hilfen::lies(u.datei("a-0")), u.out.str());
}

// Sigma ~ R^-p: half of the N = 20000 particles (4 sigma: 0.014) lie inside Rm, the arithmetic,
// geometric, harmonic mean of a and b for p = 1, 2, 3. Seen from an inertial frame on the primary
// (w = v + omega z x d) each particle circles prograde, w = sqrt(G m1 / |d|^3) z x d.
TEST(Scheibengenerator, RadienUndKeplerbahnen) {
    Umgebung u;
    InitPhysSystem ini(u.parameter.c_str(), u.parameter.c_str());
    PhysSystem phys(ini, nullptr);
    const double a = 0.08, b = 0.3, N = 20000, Gm1 = 3.9371199385708905e-7 * 0.685;
    for (auto [p, Rm] :
         {std::pair{1.0, (a + b) / 2}, {2.0, std::sqrt(a * b)}, {3.0, 2 * a * b / (a + b)}}) {
        generator::Optionen o; // radii from a to b by default
        o.anzahl = N;
        o.steigung = p;
        double innerhalb = 0;
        for (const generator::Punkt& q : generator::erzeuge(o, phys)) {
            const V d = {q.r[0] - phys.x1[0], q.r[1], q.r[2]};
            const V w = {q.v[0] - phys.omega * d[1], q.v[1] + phys.omega * d[0], q.v[2]};
            const V kepler = std::sqrt(Gm1 / std::pow((d * d).sum(), 1.5)) * V{-d[1], d[0], 0};
            const double R = std::hypot(d[0], d[1]);
            ASSERT_TRUE(R >= a && R <= b) << R;
            ASSERT_LE(std::abs(w - kepler).max(), 1e-12 * std::abs(kepler).max());
            innerhalb += R < Rm;
        }
        EXPECT_NEAR(0.5, innerhalb / N, 0.015) << "p = " << p;
    }
}

TEST(Scheibengenerator, SchlechteEingabenWerdenAbgelehnt) {
    Umgebung u;
    const std::vector<Args> falsch = {
        {"-n", "0"},          {"-n", "12x"},         {"-n"},
        {"--seed", "-1"},     {"--innen", "0"},      {"--aussen", "0.07"},
        {"--hoehe", "-1e-3"}, {"--steigung", "nan"}, {"--dicke", "1"},
        {"ausgabe.txt"},      {"--innen", "0.01"},   {"--aussen", "0.6"}}; // last two: eta, rMax
    for (const Args& a : falsch) // status 2, a message on err, nothing on out
        EXPECT_TRUE(u.lauf(a) == 2 && u.err.str().rfind("scheibengenerator: ", 0) == 0 &&
                    u.out.str().empty())
            << a[0] << ": " << u.err.str();
    EXPECT_EQ(1, u.lauf({"-p", u.datei("fehlt")}));
    EXPECT_EQ(1, u.lauf({"-o", u.datei("fehlt/x-0")}));
}

} // namespace
