// The disc generator: reproducible bytes, a file the simulator reads, the
// radial and vertical distributions, the Kepler velocity law, bad options.

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tests/Hilfen.h"
#include "tools/Scheibengenerator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>
#include <string>
#include <vector>

namespace {

using Args = std::vector<std::string>;

// A scratch folder with a parameter file of the default binary.
struct Umgebung {
    hilfen::TempOrdner ordner;
    std::string parameter = ordner.datei("OYCar.parameter");
    std::string out, err;
    Umgebung() { hilfen::schreibe(parameter, hilfen::parameter("")); }
    int lauf(Args a) {
        a.insert(a.begin(), {"-p", parameter}); // a later -p overrides
        std::ostringstream o, e;
        int status = generator::programm(a, o, e);
        out = o.str();
        err = e.str();
        return status;
    }
    PhysSystem phys() {
        InitPhysSystem init(parameter.c_str(), parameter.c_str());
        return PhysSystem(init, nullptr);
    }
};

generator::Optionen optionen(long anzahl, double hoehe, double steigung = 1.0,
                             double innen = 0.08, double aussen = 0.3) {
    generator::Optionen o;
    o.anzahl = anzahl;
    o.hoehe = hoehe;
    o.steigung = steigung;
    o.innen = innen;
    o.aussen = aussen;
    return o;
}

TEST(Scheibengenerator, GleicherSeedGleicheBytesUndDerSimulatorLiestSie) {
    Umgebung u;
    const std::string a = u.ordner.datei("a-0");
    ASSERT_EQ(0, u.lauf({"-n", "40", "--seed", "7", "-o", a}));
    ASSERT_EQ(0, u.lauf({"-n", "40", "--seed", "8"}));
    const std::string andererSeed = u.out;
    ASSERT_EQ(0, u.lauf({"--seed=7", "--anzahl=40"}));
    EXPECT_EQ(hilfen::lies(a), u.out);
    EXPECT_NE(u.out, andererSeed);
    // The simulator's snapshot header; every particle line ends in two blanks.
    EXPECT_EQ(0u, u.out.find("Teilchenanzahl 40\nTeilchenmasse 1.72815e-16\nZeit 0\n\n\n"
                             "Teilchendaten:\n\n"));
    EXPECT_EQ("  \n", u.out.substr(u.out.size() - 3));

    PhysSystem phys = u.phys();
    InitAkkScheibe datei(u.parameter.c_str(), a.c_str());
    AkkScheibe scheibe(datei, phys);
    ASSERT_EQ(40, scheibe.tanz());
    generator::Optionen o; // the defaults, as in the runs above
    o.anzahl = 40;
    o.seed = 7;
    generator::Punkt p = generator::erzeuge(o, phys)[39];
    for (int k = 0; k < 3; ++k) { // six significant digits survive the file
        EXPECT_NEAR(p.r[k], scheibe[39].r[k], 1e-5 * std::fabs(p.r[k]));
        EXPECT_NEAR(p.v[k], scheibe[39].v[k], 1e-5 * std::fabs(p.v[k]));
    }
}

// Sigma ~ R^-p: half of the particles lie inside the radius that halves the
// integral of R^(1-p) dR: the root mean square of the two radii for p = 0,
// their mean for p = 1, their geometric mean for p = 2, their harmonic mean
// for p = 3. Heights have standard deviation H, azimuths are uniform.
// Tolerances are 4 sigma for N = 20000.
TEST(Scheibengenerator, RadienHoehenUndAzimuteFolgenDenVerteilungen) {
    PhysSystem phys = Umgebung().phys();
    const double a = 0.08, b = 0.3, H = 0.004, N = 20000;
    const double median[4] = {std::sqrt((a * a + b * b) / 2), (a + b) / 2, std::sqrt(a * b),
                              2 * a * b / (a + b)};
    for (int p = 0; p <= 3; ++p) {
        double innerhalb = 0, zz = 0, c = 0, s = 0;
        for (const generator::Punkt& q : generator::erzeuge(optionen(20000, H, p), phys)) {
            double dx = q.r[0] - phys.x1[0], dy = q.r[1], R = std::hypot(dx, dy);
            ASSERT_TRUE(R >= a && R <= b) << R;
            innerhalb += R < median[p];
            zz += q.r[2] * q.r[2];
            c += dx / R;
            s += dy / R;
        }
        EXPECT_NEAR(0.5, innerhalb / N, 0.015) << "p = " << p;
        EXPECT_NEAR(H, std::sqrt(zz / N), 0.03 * H);
        EXPECT_NEAR(0.0, c / N, 0.02);
        EXPECT_NEAR(0.0, s / N, 0.02);
    }
}

// Seen from an inertial frame riding on the primary (w = v + omega z x d) a
// particle circles prograde at the speed whose centripetal acceleration is
// the in-plane pull of the primary: |w| = sqrt(G m1 R^2 / |d|^3).
TEST(Scheibengenerator, TeilchenLaufenAufKeplerbahnenUmDenPrimaer) {
    PhysSystem phys = Umgebung().phys();
    const double Gm1 = 3.9371199385708905e-7 * 0.685, omega = 6.283185306 / 5453.6;
    for (const generator::Punkt& q : generator::erzeuge(optionen(500, 0.01), phys)) {
        double d[3] = {q.r[0] - phys.x1[0], q.r[1], q.r[2]};
        double w[3] = {q.v[0] - omega * d[1], q.v[1] + omega * d[0], q.v[2]};
        double R2 = d[0] * d[0] + d[1] * d[1], d2 = R2 + d[2] * d[2];
        double betrag = std::sqrt(w[0] * w[0] + w[1] * w[1] + w[2] * w[2]);
        EXPECT_NEAR(std::sqrt(Gm1 * R2 / (d2 * std::sqrt(d2))), betrag, 1e-12 * betrag);
        EXPECT_NEAR(0.0, w[0] * d[0] + w[1] * d[1] + w[2] * d[2], 1e-12 * betrag);
        EXPECT_GT(d[0] * w[1] - d[1] * w[0], 0.0);
    }
    // In the plane at R = 0.1 the frame's speed is sqrt(G m1 / R) - omega R
    // = 1.6422324e-3 - 1.1521170e-4 = 1.5270207e-3 (worked out by hand).
    generator::Punkt q = generator::erzeuge(optionen(1, 0, 1, 0.1, 0.1 + 1e-12), phys)[0];
    EXPECT_NEAR(1.5270207e-3, std::hypot(q.v[0], q.v[1]), 1e-10);
    EXPECT_EQ(0.0, q.v[2]);
}

TEST(Scheibengenerator, SchlechteEingabenGebenMeldungUndStatus) {
    Umgebung u;
    const std::vector<Args> falsch = {
        {"-n", "0"}, {"-n", "12x"}, {"-n"}, {"--seed", "-1"}, {"--innen", "0"},
        {"--aussen", "0.07"}, {"--hoehe", "-1e-3"}, {"--steigung", "nan"}, {"--dicke", "1"},
        {"ausgabe.txt"}, {"--innen", "0.01"}, {"--aussen", "0.6"}}; // last two: eta, rMax
    for (const Args& a : falsch) {
        EXPECT_EQ(2, u.lauf(a)) << a[0];
        EXPECT_EQ(0u, u.err.find("scheibengenerator: ")) << a[0];
        EXPECT_EQ("", u.out) << a[0];
    }
    EXPECT_EQ(1, u.lauf({"-p", u.ordner.datei("fehlt")}));
    EXPECT_EQ(1, u.lauf({"-o", u.ordner.datei("fehlt/x-0")}));
    const std::string leer = u.ordner.datei("leer.parameter");
    hilfen::schreibe(leer, "Bahnperiode 5453.6\n");
    EXPECT_EQ(1, u.lauf({"-p", leer}));
    EXPECT_NE(std::string::npos, u.err.find("Primaersternmasse"));
    EXPECT_EQ(0, u.lauf({"--help"}));
    EXPECT_NE(std::string::npos, u.out.find("--steigung"));
}

} // namespace
