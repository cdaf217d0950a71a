// The tools on the OY Car binary (0.685 and 0.07 solar masses, 5453.6 s): generator, Roche lobe,
// diagnostics, the tables for splash (SPH density, splash's kernel, files) and film frames.

#include "tests/Hilfen.h"
#include "tools/Scheibenbild.h"
#include "tools/Scheibendiagnose.h"
#include "tools/Scheibengenerator.h"
#include "tools/Scheibensplash.h"
#include "tools/Schnappschuesse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>
#include <valarray>

namespace {

using Args = std::vector<std::string>;
using V = std::valarray<double>;
const double G = 3.9371199385708905e-7; // R_sun^3 / (M_sun s^2)

// The default binary with h = 0.02 (hilfen::parameter), a kernel as the tool sets it.
struct Umgebung : hilfen::TempOrdner {
    std::string p = datei("p");
    std::unique_ptr<PhysSystem> phys;
    std::unique_ptr<Kernel1> kernel;
    std::ostringstream out, err;
    Umgebung() {
        hilfen::schreibe(p, hilfen::parameter(""));
        schnappschuss::leseBinaer(p, phys);
        InitPhysSystem init(p.c_str(), p.c_str());
        kernel = std::make_unique<Kernel1>(init);
        phys->kernel = kernel.get();
    }
    int generator(Args a) { // with -p p first: a later -p overrides
        a.insert(a.begin(), {"-p", p});
        out.str(""), err.str("");
        return generator::programm(a, out, err);
    }
};

TEST(Scheibengenerator, GleicherSeedGleicheBytes) {
    Umgebung u;
    ASSERT_EQ(0, u.generator({"-n", "40", "--seed", "7", "-o", u.datei("a-0")}));
    ASSERT_EQ(0, u.generator({"--seed=7", "--anzahl=40"}));
    EXPECT_EQ(hilfen::lies(u.datei("a-0")), u.out.str());
    ASSERT_EQ(0, u.generator({"-n", "40", "--seed", "8"}));
    EXPECT_NE(hilfen::lies(u.datei("a-0")), u.out.str());
}

// Sigma ~ R^-p: half of the N = 20000 particles (4 sigma: 0.014) lie inside Rm, the arithmetic,
// geometric, harmonic mean of a and b for p = 1, 2, 3. Seen from an inertial frame on the primary
// (w = v + omega z x d) each particle circles prograde, w = sqrt(G m1 / |d|^3) z x d.
TEST(Scheibengenerator, RadienUndKeplerbahnen) {
    Umgebung u;
    const PhysSystem& phys = *u.phys;
    const double a = 0.08, b = 0.3, N = 20000;
    for (auto [p, Rm] :
         {std::pair{1.0, (a + b) / 2}, {2.0, std::sqrt(a * b)}, {3.0, 2 * a * b / (a + b)}}) {
        generator::Optionen o; // radii from a to b by default
        o.anzahl = N;
        o.steigung = p;
        double innerhalb = 0;
        for (const generator::Punkt& q : generator::erzeuge(o, phys)) {
            const V d = {q.r[0] - phys.x1[0], q.r[1], q.r[2]};
            const V w = {q.v[0] - phys.omega * d[1], q.v[1] + phys.omega * d[0], q.v[2]};
            const V kepler =
                std::sqrt(G * 0.685 / std::pow((d * d).sum(), 1.5)) * V{-d[1], d[0], 0};
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
        EXPECT_TRUE(u.generator(a) == 2 && u.err.str().rfind("scheibengenerator: ", 0) == 0 &&
                    u.out.str().empty())
            << a[0] << ": " << u.err.str();
    EXPECT_EQ(1, u.generator({"-p", u.datei("fehlt")}));
    EXPECT_EQ(1, u.generator({"-o", u.datei("fehlt/x-0")}));
}

// Roche lobe: tip at L1 = -0.378367, on the contour, wider than Eggleton's sphere (0.35006).
TEST(Scheibenbild, RocheLappen) {
    Umgebung u;
    const PhysSystem& s = *u.phys;
    auto phi = [&s](double x, double y) {
        return -G * (s.m1 / std::hypot(x - s.x1[0], y) + s.m2 / std::hypot(x - s.x2[0], y)) -
               s.omega * s.omega * (x * x + y * y) / 2;
    };
    const auto l = bild::rocheLappen(s, 720);
    EXPECT_NEAR(-0.378367, l.at(360).x, 1e-6);
    double A = 0; // shoelace area
    for (std::size_t i = 0; i < l.size(); ++i) {
        const bild::Punkt2 p = l[i], q = l[(i + 1) % l.size()];
        EXPECT_NEAR(phi(s.xL1, 0), phi(p.x, p.y), 1e-12 * std::fabs(phi(s.xL1, 0))) << i;
        A += (p.x * q.y - q.x * p.y) / 2;
    }
    EXPECT_TRUE(A > 0.384977 && A < 0.465663) << A; // pi 0.35006^2, pi 0.385^2
}

// Lz = 0.1 (0.001 + 0.1 w) + 0.2 (0.002 + 0.2 w), NaN skipped; S = 1 - i: A1 = 2^-1/2, -45 deg.
TEST(Scheibendiagnose, ZweiTeilchenVonHand) {
    Umgebung u;
    const double x1 = u.phys->x1[0];
    AkkScheibe s;
    s.teilchen.resize(3);
    s.teilchen[0].r = {x1 + 0.1, 0, 0}, s.teilchen[0].v = {0, 0.001, 0};
    s.teilchen[1].r = {x1, -0.2, 0}, s.teilchen[1].v = {0.002, 0, 0};
    s.teilchen[2].r = {NAN, 0, 0}, s.teilchen[2].v = {0, 0, 0};
    const diagnose::Werte d = diagnose::werte(s, *u.phys);
    const double soll[] = {1, 5e-4 + 0.05 * 6.283185306 / 5453.6, 0.15, 0.2, std::sqrt(0.5), -45};
    const double ist[] = {double(d.nichtEndlich), d.Lz, d.Rmittel, d.R90, d.A1, d.phase};
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(soll[i], ist[i], 1e-13 * std::fabs(soll[i])) << i;
}

// Four particles on the x axis, inside the grid box (0.44 around the primary at x1 = 0.0563).
const std::string vier = "Zeit 42\nTeilchenanzahl 4\nTeilchendaten:\n0.15 0 0 0 1e-3 0\n"
                         "0.16 0 0 0 2e-3 0\n0.135 0 0 0 3e-3 0\n0.25 0 0 0 4e-3 0\n";

// H = 0.02: the partners of 0.15 are 0.16 (q = 1/2, w = 1 - 6/4 + 6/8 = 1/4) and
// 0.135 (q = 3/4, w = 2 (1/4)^3 = 1/32); 0.16 and 0.135 are 0.025 apart, 0.25 is
// alone. rho = m 8/(pi H^3) (1 + sum w), with the simulator's pi.
TEST(Scheibensplash, DichteVonHand) {
    Umgebung u;
    hilfen::schreibe(u.datei("s-42"), vier);
    splash::Tabelle t;
    ASSERT_TRUE(splash::lies(u.datei("s-42"), *u.phys, t, u.err));
    ASSERT_EQ(4u, t.zeilen.size()); // the other columns: the whole table in DateienUndMeldungen
    const double m = 1.7281541e-16, fak = 8 / (3.141592653 * 0.02 * 0.02 * 0.02);
    const double w[] = {1 + 0.25 + 0.03125, 1.25, 1.03125, 1};
    for (int i = 0; i < 4; ++i)
        EXPECT_NEAR(m * fak * w[i], t.zeilen[i].rho, 1e-12 * m * fak) << i;
    // splash's cubic spline, W = 1/(pi h^3) (1 - 3/2 s^2 + 3/4 s^3) for s < 1,
    // (2 - s)^3 / 4 for 1 <= s < 2, s = r/h, with the table's h gives the
    // same density: particle 0 sees itself, 0.16 (s = 1) and 0.135 (s = 1.5).
    const double h = t.zeilen[0].h, pi = 3.141592653589793;
    const double W = (1 + 0.25 + 0.125 / 4) / (pi * h * h * h);
    EXPECT_NEAR(m * W, t.zeilen[0].rho, 1e-9 * t.zeilen[0].rho); // pi: ten digits vs. all
}

TEST(Scheibensplash, DateienUndMeldungen) {
    Umgebung u;
    hilfen::schreibe(u.datei("s-42"), vier);
    // Five wanted, two there: the reader's complaint is passed on with the name.
    hilfen::schreibe(u.datei("s-7"),
                     "Teilchenanzahl 5\nTeilchendaten:\n0.15 0 0 0 0 0\n0.2 0 0 0 0 0\n");
    const std::string ordner = u.datei("aus");
    ASSERT_EQ(0, splash::programm({"-p", u.p, "-o", ordner, u.datei("s-")}, u.out, u.err));
    EXPECT_EQ("x\ny\nz\nvx\nvy\nvz\nh\nm\ndensity\n", hilfen::lies(ordner + "/columns"));
    // Time with the point splash wants; the rows in file order, the lone particle last.
    EXPECT_EQ("# akkscheibe snapshot " + u.datei("s-42") +
                  ": 4 particles; solar masses, solar radii, seconds\n"
                  "#  42.00000000  time [s]\n#  x  y  z  vx  vy  vz  h  m  density\n"
                  "0.15  0  0  0  0.001  0  0.01  1.7281541e-16  7.048009354e-11\n"
                  "0.16  0  0  0  0.002  0  0.01  1.7281541e-16  6.876106687e-11\n"
                  "0.135  0  0  0  0.003  0  0.01  1.7281541e-16  5.672788017e-11\n"
                  "0.25  0  0  0  0.004  0  0.01  1.7281541e-16  5.50088535e-11\n",
              hilfen::lies(ordner + "/s-42.dat"));
    EXPECT_NE(std::string::npos, hilfen::lies(ordner + "/splash.defaults").find("&PAGEOPTS"));
    const std::string e = u.err.str(); // two lines, both named
    EXPECT_EQ(2, std::count(e.begin(), e.end(), '\n')) << e;
    EXPECT_NE(std::string::npos, e.find("s-7: Teilchenanzahl wurde auf 2 gesetzt !")) << e;
    EXPECT_EQ(u.datei("aus/s-42.dat") + "\n" + u.datei("aus/s-7.dat") + "\n", u.out.str());
    // settings saved in splash are kept
    hilfen::schreibe(ordner + "/splash.defaults", "eigene");
    ASSERT_EQ(0, splash::programm({"-p", u.p, "-o", ordner, u.datei("s-42")}, u.out, u.err));
    EXPECT_EQ("eigene", hilfen::lies(ordner + "/splash.defaults"));
}

TEST(Scheibensplash, SchlechteEingaben) {
    Umgebung u;
    hilfen::schreibe(u.datei("s-1"), vier);
    hilfen::schreibe(u.datei("kein-2"), "Teilchenanzahl 3\n0.1 0 0 0 0 0\n");
    hilfen::schreibe(u.datei("ohne-h"), hilfen::parameter("Smoothinglength 0\n"));
    const std::string o = u.datei("aus");
    const std::vector<std::pair<Args, int>> faelle = {
        {{"-p", u.p}, 2},                             // no snapshot
        {{"-p", u.p, "-o", "", u.datei("s-1")}, 2},   // empty folder name
        {{"-p", u.p, "-o", o, u.datei("kein-2")}, 1}, // no "Teilchendaten:"
        {{"-p", u.datei("ohne-h"), "-o", o, u.datei("s-1")}, 1},
        {{"-p", u.p, "-o", u.datei("s-1") + "/x", u.datei("s-1")}, 1}, // folder under a file
    };
    for (const auto& [a, status] : faelle) {
        u.out.str(""), u.err.str("");
        EXPECT_EQ(status, splash::programm(a, u.out, u.err)) << a.back();
        EXPECT_EQ(0u, u.err.str().rfind("scheibensplash: ", 0)) << a.back() << ": " << u.err.str();
    }
}

// Snapshots at 9 s (one particle) and 3 s (two), given out of order.
TEST(Werkzeuge, ZeitfolgeUndFilm) {
    Umgebung u;
    const std::string teilchen = "\nTeilchendaten:\n0.2 0 0 0 1e-3 0\n0.3 0 0 0 1e-3 0\n";
    hilfen::schreibe(u.datei("a-9"), "Teilchenanzahl 1 Zeit 9" + teilchen);
    hilfen::schreibe(u.datei("a-3"), "Teilchenanzahl 2 Zeit 3" + teilchen);
    // Diagnostics: rows (time, orbits, N, lost from the earliest, ...) in order of time.
    ASSERT_EQ(0, diagnose::programm({"-p", u.p, u.datei("a-9"), u.datei("a-3")}, u.out, u.err));
    const std::string t = u.out.str();
    EXPECT_LT(t.find("\n3\t0.0005500953499\t2\t0\t"), t.find("\n9\t0.00165028605\t1\t1\t") + 1);
    EXPECT_EQ(1, bild::programm({"-p", u.p, u.datei("fehlt-1")}, u.out, u.err));
    // Frames are numbered in order of time, drawn as the pictures named after the snapshots; odd
    // sizes made even. One view of 101 pixels: 241 x 205 + 12 per extra legend line, rounded up.
    const Args lauf = {"-p",        u.p,    "--pixel",      "101",
                       "--ansicht", "oben", u.datei("a-9"), u.datei("a-3")};
    Args film = lauf, namen = lauf;
    film.insert(film.end(), {"--film", "-o", u.datei("film")});
    namen.insert(namen.end(), {"-o", u.datei("namen")});
    std::filesystem::create_directory(u.datei("film"));
    hilfen::schreibe(u.datei("film/bild-0002.png"), "");
    ASSERT_EQ(0, bild::programm(namen, u.out, u.err));
    ASSERT_EQ(0, bild::programm(film, u.out, u.err));
    const std::string b0 = hilfen::lies(u.datei("film/bild-0000.png"));
    EXPECT_EQ(hilfen::lies(u.datei("namen/a-3.png")), b0);
    EXPECT_EQ(hilfen::lies(u.datei("namen/a-9.png")), hilfen::lies(u.datei("film/bild-0001.png")));
    // PNG width and height: big-endian at bytes 16 and 20 of the IHDR chunk.
    auto zahl = [&b0](std::size_t i) {
        unsigned w = 0;
        for (std::size_t k = i; k < i + 4; ++k)
            w = w * 256 + static_cast<unsigned char>(b0.at(k));
        return w;
    };
    EXPECT_TRUE(zahl(16) == 242 && zahl(20) % 2 == 0) << zahl(16) << " x " << zahl(20);
    EXPECT_NE(std::string::npos, u.err.str().find("bild-0002.png is left from an earlier run"));
    EXPECT_EQ(2, bild::programm({"-p", u.p, "--film", u.datei("a-9")}, u.out, u.err));
}

} // namespace
