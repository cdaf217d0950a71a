// The tools on the OY Car binary (0.685 and 0.07 solar masses, 5453.6 s):
// the Roche lobe of the pictures, the diagnostics by hand and in order of
// time, the tables for splash (the SPH density, splash's kernel convention,
// the files) and the frames of a film.

#include "tests/Hilfen.h"
#include "tools/Scheibenbild.h"
#include "tools/Scheibendiagnose.h"
#include "tools/Scheibensplash.h"
#include "tools/Schnappschuesse.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

namespace {

using Args = std::vector<std::string>;

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
};

// Roche lobe: tip at L1 = -0.378367, on the contour, wider than Eggleton's sphere (0.35006).
TEST(Scheibenbild, RocheLappen) {
    Umgebung u;
    const PhysSystem& s = *u.phys;
    auto phi = [&s, G = 3.9371199385708905e-7](double x, double y) {
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

// Four particles on the x axis, inside the grid box around the primary
// (x1 = 0.0563, the box reaches 0.44 from it).
const std::string vier = "Zeit 42\nTeilchenanzahl 4\nTeilchendaten:\n"
                         "0.15 0 0 0 1e-3 0\n"
                         "0.16 0 0 0 2e-3 0\n"
                         "0.135 0 0 0 3e-3 0\n"
                         "0.25 0 0 0 4e-3 0\n";
// Five wanted, two there: the reader complains on the console.
const std::string kurz = "Teilchenanzahl 5\nTeilchendaten:\n0.15 0 0 0 0 0\n0.2 0 0 0 0 0\n";

// H = 0.02: the partners of 0.15 are 0.16 (q = 1/2, w = 1 - 6/4 + 6/8 = 1/4) and
// 0.135 (q = 3/4, w = 2 (1/4)^3 = 1/32); 0.16 and 0.135 are 0.025 apart, 0.25 is
// alone. rho = m 8/(pi H^3) (1 + sum w), with the simulator's pi.
TEST(Scheibensplash, DichteVonHand) {
    Umgebung u;
    hilfen::schreibe(u.datei("s-42"), vier);
    splash::Tabelle t;
    ASSERT_TRUE(splash::lies(u.datei("s-42"), *u.phys, t, u.err));
    ASSERT_EQ(4u, t.zeilen.size());
    EXPECT_EQ(0, t.weggelassen);
    EXPECT_EQ(42, t.zeit);
    const double m = 1.7281541e-16, fak = 8 / (3.141592653 * 0.02 * 0.02 * 0.02);
    const double x[] = {0.15, 0.16, 0.135, 0.25}, w[] = {1 + 0.25 + 0.03125, 1.25, 1.03125, 1};
    for (int i = 0; i < 4; ++i) {
        const splash::Zeile& z = t.zeilen[i];
        EXPECT_EQ(x[i], z.r[0]) << i; // file order kept
        EXPECT_EQ(1e-3 * (i + 1), z.v[1]) << i;
        EXPECT_EQ(0.01, z.h);
        EXPECT_EQ(m, z.m);
        EXPECT_NEAR(m * fak * w[i], z.rho, 1e-12 * m * fak) << i;
    }
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
    hilfen::schreibe(u.datei("s-7"), kurz); // the reader's messages: passed on with the name
    const std::string ordner = u.datei("aus");
    ASSERT_EQ(0, splash::programm({"-p", u.p, "-o", ordner, u.datei("s-")}, u.out, u.err));
    EXPECT_EQ("x\ny\nz\nvx\nvy\nvz\nh\nm\ndensity\n", hilfen::lies(ordner + "/columns"));
    std::istringstream tabelle(hilfen::lies(ordner + "/s-42.dat"));
    std::string kopf[3];
    for (std::string& k : kopf)
        std::getline(tabelle, k);
    EXPECT_EQ("#  42.00000000  time [s]", kopf[1]); // splash wants the point
    EXPECT_NE(std::string::npos, hilfen::lies(ordner + "/splash.defaults").find("&PAGEOPTS"));
    EXPECT_EQ("#  x  y  z  vx  vy  vz  h  m  density", kopf[2]);
    double zeile[9];
    int zeilen = 0;
    while (tabelle >> zeile[0]) {
        for (int k = 1; k < 9; ++k)
            tabelle >> zeile[k];
        ++zeilen;
    }
    EXPECT_EQ(4, zeilen);
    EXPECT_EQ(0.25, zeile[0]); // the lone particle, last
    EXPECT_EQ(4e-3, zeile[4]);
    EXPECT_NEAR(1.7281541e-16 * 8 / (3.141592653 * 8e-6), zeile[8], 1e-19);
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
        {{"-p", u.p}, 2},                                   // no snapshot
        {{"-p", u.p, "-o", "", u.datei("s-1")}, 2},         // empty folder name
        {{"-p", u.p, "-o", o, u.datei("kein-2")}, 1},       // no "Teilchendaten:"
        {{"-p", u.datei("ohne-h"), "-o", o, u.datei("s-1")}, 1},
        {{"-p", u.p, "-o", u.datei("s-1") + "/x", u.datei("s-1")}, 1}, // folder under a file
    };
    for (const auto& [a, status] : faelle) {
        u.out.str(""), u.err.str("");
        EXPECT_EQ(status, splash::programm(a, u.out, u.err)) << a.back();
        EXPECT_EQ(0u, u.err.str().rfind("scheibensplash: ", 0)) << a.back() << ": " << u.err.str();
    }
}

// PNG width and height from the IHDR chunk.
std::pair<unsigned, unsigned> groesse(const std::string& png) {
    auto zahl = [&](std::size_t i) {
        unsigned w = 0;
        for (std::size_t k = i; k < i + 4; ++k)
            w = w * 256 + static_cast<unsigned char>(png.at(k));
        return w;
    };
    return {zahl(16), zahl(20)};
}

// Snapshots at 9 s (one particle) and 3 s (two), given out of order.
TEST(Werkzeuge, ZeitfolgeUndFilm) {
    Umgebung u;
    const std::string teilchen = "\nTeilchendaten:\n0.2 0 0 0 1e-3 0\n0.3 0 0 0 1e-3 0\n";
    hilfen::schreibe(u.datei("a-9"), "Teilchenanzahl 1 Zeit 9" + teilchen);
    hilfen::schreibe(u.datei("a-3"), "Teilchenanzahl 2 Zeit 3" + teilchen);
    // Diagnostics: rows (time, orbits, N, lost, ...) in order of time, lost
    // counted from the earliest. A picture of an unreadable file: status 1.
    ASSERT_EQ(0, diagnose::programm({"-p", u.p, u.datei("a-9"), u.datei("a-3")}, u.out, u.err));
    const std::string t = u.out.str();
    EXPECT_LT(t.find("\n3\t0.0005500953499\t2\t0\t"), t.find("\n9\t0.00165028605\t1\t1\t") + 1);
    EXPECT_EQ(1, bild::programm({"-p", u.p, u.datei("fehlt-1")}, u.out, u.err));
    // Frames are numbered in order of time and drawn exactly as the pictures
    // of the same run named after the snapshots; odd sizes are made even. One
    // view of 101 pixels: 241 x 205 + 12 per extra legend line before rounding up.
    const Args lauf = {"-p", u.p, "--pixel", "101", "--ansicht", "oben", u.datei("a-9"),
                       u.datei("a-3")};
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
    const auto [breite, hoehe] = groesse(b0);
    EXPECT_TRUE(breite % 2 == 0 && hoehe % 2 == 0 && breite == 242) << breite << " x " << hoehe;
    EXPECT_NE(std::string::npos, u.err.str().find("bild-0002.png is left from an earlier run"));
    EXPECT_EQ(2, bild::programm({"-p", u.p, "--film", u.datei("a-9")}, u.out, u.err));
}

} // namespace
