// Tables for splash (the SPH density, splash's kernel convention, the files)
// and the frames of a film.

#include "tests/Hilfen.h"
#include "tools/Scheibenbild.h"
#include "tools/Scheibensplash.h"
#include "tools/Schnappschuesse.h"

#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"

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

// Frames are numbered in order of time and drawn exactly as the pictures of
// the same run named after the snapshots; odd sizes are made even.
TEST(Scheibenbild, FilmBilder) {
    Umgebung u;
    const std::string teilchen = "\nTeilchendaten:\n0.2 0 0 0 1e-3 0\n0.3 0 0 0 1e-3 0\n";
    hilfen::schreibe(u.datei("a-9"), "Teilchenanzahl 1 Zeit 9" + teilchen);
    hilfen::schreibe(u.datei("a-30"), "Teilchenanzahl 2 Zeit 30" + teilchen);
    // One view of 101 pixels: 241 x 205 + 12 per extra legend line before rounding up.
    const Args lauf = {"-p", u.p, "--pixel", "101", "--ansicht", "oben", u.datei("a-30"),
                       u.datei("a-9")};
    Args film = lauf, namen = lauf;
    film.insert(film.end(), {"--film", "-o", u.datei("film")});
    namen.insert(namen.end(), {"-o", u.datei("namen")});
    std::filesystem::create_directory(u.datei("film"));
    hilfen::schreibe(u.datei("film/bild-0002.png"), "");
    ASSERT_EQ(0, bild::programm(namen, u.out, u.err));
    ASSERT_EQ(0, bild::programm(film, u.out, u.err));
    const std::string b0 = hilfen::lies(u.datei("film/bild-0000.png"));
    EXPECT_EQ(hilfen::lies(u.datei("namen/a-9.png")), b0);
    EXPECT_EQ(hilfen::lies(u.datei("namen/a-30.png")), hilfen::lies(u.datei("film/bild-0001.png")));
    const auto [breite, hoehe] = groesse(b0);
    EXPECT_TRUE(breite % 2 == 0 && hoehe % 2 == 0 && breite == 242) << breite << " x " << hoehe;
    EXPECT_NE(std::string::npos, u.err.str().find("bild-0002.png is left from an earlier run"));
    EXPECT_EQ(2, bild::programm({"-p", u.p, "--film", u.datei("a-9")}, u.out, u.err));
}

} // namespace
