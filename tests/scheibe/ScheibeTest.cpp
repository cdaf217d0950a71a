// The plain disc: ordered removal, scratch shaping, copies, snapshot files.

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "physik/PhysSystem.h"
#include "scheibe/ScheibenTemplates.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>

using hilfen::Mitschnitt;

namespace {

PhysSystem physik() {
    Mitschnitt still(std::cerr); // no files: the reader only complains
    InitPhysSystem ip("", "");
    return PhysSystem(ip, nullptr);
}

// Reads `text` as a disc file; returns the disc and what it printed.
std::pair<AkkScheibe, std::string> liesText(const std::string& text) {
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("S-0"), text);
    InitAkkScheibe init("", o.datei("S-0").c_str());
    PhysSystem p = physik();
    Mitschnitt m(std::cout);
    AkkScheibe s(init, p);
    return {s, m.text()};
}

std::string zuWenig(const std::string& n, const std::string& m) {
    return "gew\xfc" "nschte Teilchenzahl " + n + " ist gr\xf6\xdf" "er als vorhandene Teilchen !\n"
           "Teilchenanzahl wurde auf " + m + " gesetzt !\n";
}

TEST(AkkScheibe, EntfernenFormenKopieren) {
    AkkScheibe s; // P0, P1, P2 at x = 0, 1, 2
    s.teilchen.resize(3);
    s[1].r[0] = 1;
    s[2].r[0] = 2;
    AkkScheibe* kopie = s.clone();
    s.entferne_teilchen(0);
    ASSERT_EQ(s.tanz(), 2);
    EXPECT_EQ(s[0].r[0], 1);
    EXPECT_EQ(s[1].r[0], 2);
    EXPECT_EQ(kopie->tanz(), 3); // the clone is a copy of its own

    s.t(7);
    AkkScheibe leer;
    kopie->odeint_init(s); // shrinks to 2, values stay
    leer.odeint_init(s);   // grows to 2 particles at rest at the origin
    ASSERT_EQ(kopie->tanz(), 2);
    EXPECT_EQ(kopie->t(), 7);
    EXPECT_EQ((*kopie)[1].r[0], 1);
    ASSERT_EQ(leer.tanz(), 2);
    EXPECT_EQ(std::abs(leer[1].r).max() + std::abs(leer[1].v).max(), 0);

    s[1].a[2] = -8;
    leer.odeint_assign(s); // time and particles, the acceleration too
    EXPECT_EQ(leer.t(), 7);
    EXPECT_EQ(leer[1].r[0], 2);
    EXPECT_EQ(leer[1].a[2], -8);
    delete kopie;

    Teilchen t;
    t.v = {-3, 2, 1};
    EXPECT_EQ(t.max_v_koord(), 3);
}

TEST(Schnappschuss, DateiAufbauUndWiederEinlesen) {
    hilfen::TempOrdner o;
    AkkScheibe s;
    s.teilchen.resize(2);
    s.name = o.datei("Akk-OYCar-0");
    s.t(86400.7);
    s[0].r = {0.1, -0.2, 0};
    s[0].v = {0.001, 1.234567e-5, 0};
    s[1].r = {1234567, -0.5, 3};
    s[1].v = {0, 0, -2};
    PhysSystem p = physik();
    s.output(p);
    // Six significant digits, two blanks after every number.
    const std::string text = hilfen::lies(o.datei("Akk-OYCar-86400"));
    EXPECT_EQ(text, "Teilchenanzahl 2\nTeilchenmasse 1.72815e-16\nZeit 86400.7\n\n\nTeilchendaten:\n\n"
                    "0.1  -0.2  0  0.001  1.23457e-05  0  \n1.23457e+06  -0.5  3  0  0  -2  \n");
    AkkScheibe z = liesText(text).first;
    EXPECT_EQ(z.t(), 86400.7);
    ASSERT_EQ(z.tanz(), 2);
    EXPECT_EQ(z[0].v[1], 1.23457e-05);
    EXPECT_EQ(z[1].r[0], 1234570);
}

TEST(Schnappschuss, TeilchenzahlGegenZeilen) {
    const std::string rest = "Zeit 3\nTeilchendaten:\n1 2 3 4 5 6\n7 8 9 10 11 12\n13 14 15 16 17 18\n";
    auto g = liesText("Teilchenanzahl 5\n" + rest);
    EXPECT_EQ(g.first.tanz(), 3);
    EXPECT_EQ(g.first[2].v[2], 18);
    EXPECT_EQ(g.second, zuWenig("5", "3"));
    g = liesText("Teilchenanzahl 2\n" + rest);
    EXPECT_EQ(g.first.tanz(), 2);
    EXPECT_EQ(g.second, "");
    // Room is not made for the count up front; only the lines present count.
    g = liesText("Teilchenanzahl 2000000000\n" + rest);
    EXPECT_EQ(g.first.tanz(), 3);
    EXPECT_EQ(g.second, zuWenig("2000000000", "3"));
    g = liesText("Teilchenanzahl -4\n" + rest);
    EXPECT_EQ(g.first.tanz() + g.second.size(), 0u);
}

TEST(Schnappschuss, KopfUndZeilenFormen) {
    // Time before count, an unknown entry, seven numbers on a line, and a
    // last line without a line end.
    auto g = liesText("Zeit 12.5 Farbe blau Teilchenanzahl 2\nTeilchendaten:\n"
                      "1 2 3 4 5 6 99\n7 8 9 10 11 12");
    EXPECT_EQ(g.first.t(), 12.5);
    ASSERT_EQ(g.first.tanz(), 2);
    EXPECT_EQ(g.first[1].r[0], 7);
    EXPECT_EQ(g.first[1].v[2], 12);
    g = liesText("Teilchenanzahl 1\nTeilchendaten:\n1 2 3 4 5 6\n");
    EXPECT_EQ(g.first.t(), 0); // no time entry: the disc starts at 0
    // An overflowing time is not stored; the failed stream ends the reading.
    g = liesText("Teilchenanzahl 1\nZeit 1e999\nTeilchendaten:\n1 2 3 4 5 6\n");
    EXPECT_EQ(g.first.t(), 0);
    EXPECT_EQ(g.second, zuWenig("1", "0"));
}

TEST(Schnappschuss, AusgabeNamen) {
    EXPECT_EQ(scheibe::ausgabeName("./data/Akk-OYCar-0", 1234.99), "./data/Akk-OYCar-1234");
    EXPECT_EQ(scheibe::ausgabeName("a-b-", 0), "a-b-0");
    EXPECT_EQ(scheibe::ausgabeName("x-y/a-17", -3.7), "x-y/a--3"); // toward zero
    EXPECT_EQ(scheibe::ausgabeName("ohneStrich", 7), "7");
    EXPECT_EQ(scheibe::ausgabeName("a-1", std::nan("")), "a--2147483648");
    EXPECT_EQ(scheibe::ausgabeName("a-1", 3e9), "a--2147483648");
}

TEST(Schnappschuss, NichtZuOeffnendeDateien) {
    PhysSystem p = physik();
    Mitschnitt err(std::cerr);
    InitAkkScheibe init("", "/nicht/vorhanden/S-0");
    AkkScheibe s(init, p);
    s.output(p);
    EXPECT_EQ(s.tanz(), 0);
    EXPECT_EQ(err.text(), "error: unable to open init file in AkkScheibe!\n"
                          "error: unable to open output file!\n");
}

} // namespace
