#include "tests/Hilfen.h"
#include "tools/Scheibenbild.h"
#include "tools/Scheibendiagnose.h"
#include "tools/Schnappschuesse.h"
#include <cmath>
#include <gtest/gtest.h>
// Picture and diagnostics tools on the OY Car binary: 0.685 and 0.07 solar masses, 5453.6 s.
struct Binaer : hilfen::TempOrdner {
    std::unique_ptr<PhysSystem> s;
    std::string p = datei("p"),
                f = (hilfen::schreibe(p, hilfen::parameter("")), schnappschuss::leseBinaer(p, s));
    std::ostringstream out, err;
};

// Roche lobe: tip at L1 = -0.378367, on the contour, wider than Eggleton's sphere (0.35006).
TEST(Scheibenbild, RocheLappen) {
    Binaer b;
    auto phi = [&s = *b.s, G = 3.9371199385708905e-7](double x, double y) {
        return -G * (s.m1 / std::hypot(x - s.x1[0], y) + s.m2 / std::hypot(x - s.x2[0], y)) -
               s.omega * s.omega * (x * x + y * y) / 2;
    };
    const auto l = bild::rocheLappen(*b.s, 720);
    EXPECT_NEAR(-0.378367, l.at(360).x, 1e-6);
    double A = 0; // shoelace area
    for (std::size_t i = 0; i < l.size(); ++i) {
        const bild::Punkt2 p = l[i], q = l[(i + 1) % l.size()];
        EXPECT_NEAR(phi(b.s->xL1, 0), phi(p.x, p.y), 1e-12 * std::fabs(phi(b.s->xL1, 0))) << i;
        A += (p.x * q.y - q.x * p.y) / 2;
    }
    EXPECT_TRUE(A > 0.384977 && A < 0.465663) << A; // pi 0.35006^2, pi 0.385^2
}

// Lz = 0.1 (0.001 + 0.1 w) + 0.2 (0.002 + 0.2 w), NaN skipped; S = 1 - i: A1 = 2^-1/2, -45 deg.
TEST(Scheibendiagnose, ZweiTeilchenVonHand) {
    Binaer b;
    AkkScheibe s;
    s.teilchen.resize(3);
    s.teilchen[0].r = {b.s->x1[0] + 0.1, 0, 0}, s.teilchen[0].v = {0, 0.001, 0};
    s.teilchen[1].r = {b.s->x1[0], -0.2, 0}, s.teilchen[1].v = {0.002, 0, 0};
    s.teilchen[2].r = {NAN, 0, 0}, s.teilchen[2].v = {0, 0, 0};
    const diagnose::Werte d = diagnose::werte(s, *b.s);
    const double soll[] = {1, 5e-4 + 0.05 * 6.283185306 / 5453.6, 0.15, 0.2, std::sqrt(0.5), -45};
    const double ist[] = {double(d.nichtEndlich), d.Lz, d.Rmittel, d.R90, d.A1, d.phase};
    for (int i = 0; i < 6; ++i)
        EXPECT_NEAR(soll[i], ist[i], 1e-13 * std::fabs(soll[i])) << i;
}

// Rows in order of time, lost counted from the earliest; a PNG; an unreadable file: status 1.
TEST(Scheibendiagnose, ZeitfolgeUndDateien) {
    Binaer b;
    const std::string teilchen = "\nTeilchendaten:\n0.2 0 0 0 1e-3 0\n0.3 0 0 0 1e-3 0\n";
    hilfen::schreibe(b.datei("a-9"), "Teilchenanzahl 1 Zeit 9" + teilchen);
    hilfen::schreibe(b.datei("a-3"), "Teilchenanzahl 2 Zeit 3" + teilchen);
    ASSERT_EQ(0, diagnose::programm({"-p", b.p, b.datei("a-9"), b.datei("a-3")}, b.out, b.err));
    const std::string t = b.out.str(); // rows: time, orbits, N, lost, ...; 9 missing: + 1 = 0
    EXPECT_LT(t.find("\n3\t0.0005500953499\t2\t0\t"), t.find("\n9\t0.00165028605\t1\t1\t") + 1);
    EXPECT_EQ(1, bild::programm({"-p", b.p, b.datei("fehlt-1")}, b.out, b.err));
    ASSERT_EQ(0, bild::programm({"-p", b.p, "-o", b.datei("a.png"), b.datei("a-3")}, b.out, b.err));
    EXPECT_EQ("\x89PNG", hilfen::lies(b.datei("a.png")).substr(0, 4));
}
