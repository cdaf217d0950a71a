// The plain disc: ordered removal, scratch shaping, the reader's edge cases.

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "physik/PhysSystem.h"
#include "scheibe/ScheibenTemplates.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

PhysSystem physik() {
    hilfen::Mitschnitt still(std::cerr); // no files: the reader only complains
    InitPhysSystem ip("", "");
    return PhysSystem(ip, nullptr);
}

// Reads `text` as a disc file; returns the disc and what it printed.
std::pair<AkkScheibe, std::string> liesText(const std::string& text) {
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("S-0"), text);
    InitAkkScheibe init("", o.datei("S-0").c_str());
    PhysSystem p = physik();
    hilfen::Mitschnitt m(std::cout);
    AkkScheibe s(init, p);
    return {s, m.text()};
}

TEST(AkkScheibe, EntfernenUndFormen) {
    AkkScheibe s, kratz; // s: P0, P1, P2 at x = 0, 1, 2
    s.teilchen.resize(3);
    s[1].r[0] = 1;
    s[2].r[0] = 2;
    kratz.odeint_init(s);
    EXPECT_EQ(kratz.tanz(), 3);
    s.entferne_teilchen(0);
    ASSERT_EQ(s.tanz(), 2);
    EXPECT_EQ(s[0].r[0], 1);
    kratz.odeint_init(s);
    EXPECT_EQ(kratz.tanz(), 2);
}

TEST(Schnappschuss, Einlesen) {
    const std::string daten = "Teilchendaten:\n1 2 3 4 5 6\n7 8 9 10 11 12\n13 14 15 16 17 18\n";
    // Time before count, an unknown entry; room is not made for the count up front.
    auto g = liesText("Zeit 12.5 Farbe blau Teilchenanzahl 2000000000\n" + daten);
    EXPECT_EQ(g.first.t(), 12.5);
    ASSERT_EQ(g.first.tanz(), 3);
    EXPECT_EQ(g.second, "gew\xfcnschte Teilchenzahl 2000000000 ist gr\xf6\xdf"
                        "er als vorhandene Teilchen !\nTeilchenanzahl wurde auf 3 gesetzt !\n");
    EXPECT_EQ(liesText("Teilchenanzahl 2\n" + daten).first.tanz(), 2);
    g = liesText("Teilchenanzahl -4\n" + daten);
    EXPECT_EQ(g.first.tanz() + g.second.size(), 0u);
    // No time entry, seven numbers on a line, a last line without a line end.
    g = liesText("Teilchenanzahl 2\nTeilchendaten:\n1 2 3 4 5 6 99\n7 8 9 10 11 12");
    EXPECT_EQ(g.first.t(), 0);
    ASSERT_EQ(g.first.tanz(), 2);
    EXPECT_EQ(g.first[1].v[2], 12);
    EXPECT_EQ(g.second, "");
}

TEST(Schnappschuss, AusgabeNamen) {
    EXPECT_EQ(scheibe::ausgabeName("x-y/a-17", -3.7), "x-y/a--3"); // toward zero
    EXPECT_EQ(scheibe::ausgabeName("ohneStrich", 7), "7");
    EXPECT_EQ(scheibe::ausgabeName("a-1", std::nan("")), "a--2147483648");
}

TEST(Schnappschuss, NichtZuOeffnendeDateien) {
    PhysSystem p = physik();
    hilfen::Mitschnitt err(std::cerr);
    InitAkkScheibe init("", "/nicht/vorhanden/S-0");
    AkkScheibe s(init, p);
    s.output(p);
    EXPECT_EQ(s.tanz(), 0);
    EXPECT_EQ(err.text(), "error: unable to open init file in AkkScheibe!\n"
                          "error: unable to open output file!\n");
}

TEST(Schnappschuss, VolleAusgabeWirdGemeldet) {
    // The snapshot for time 0 of disc "o/S-..." is o/S-0, here a link to a full device.
    PhysSystem p = physik();
    hilfen::TempOrdner o;
    std::filesystem::create_symlink("/dev/full", o.datei("S-0"));
    AkkScheibe s;
    s.name = o.datei("S-x");
    s.teilchen.resize(2000); // more than the stream's buffer, so the write itself fails
    hilfen::Mitschnitt err(std::cerr);
    s.output(p);
    EXPECT_EQ(err.text(), "error: unable to write output file!\n");
}

} // namespace
