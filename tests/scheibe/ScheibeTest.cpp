// The plain disc: the reader's header, snapshot names, a snapshot that cannot
// be written whole. The reader's faults and ordered removal are checked by
// whole runs (tests/simulation).

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

TEST(Schnappschuss, KopfInBeliebigerReihenfolge) {
    // Time before count, an unknown entry; fewer particles wanted than lines.
    hilfen::TempOrdner o;
    hilfen::schreibe(o.datei("S-0"), "Zeit 12.5 Farbe blau Teilchenanzahl 2\nTeilchendaten:\n"
                                     "1 2 3 4 5 6\n7 8 9 10 11 12\n13 14 15 16 17 18\n");
    InitAkkScheibe init("", o.datei("S-0").c_str());
    PhysSystem p = physik();
    hilfen::Mitschnitt m(std::cout);
    AkkScheibe s(init, p);
    EXPECT_EQ(s.t(), 12.5);
    ASSERT_EQ(s.tanz(), 2);
    EXPECT_EQ(s[1].v[2], 12);
    EXPECT_EQ(m.text(), "");
}

TEST(Schnappschuss, AusgabeNamen) {
    EXPECT_EQ(scheibe::ausgabeName("x-y/a-17", -3.7), "x-y/a--3"); // toward zero
    EXPECT_EQ(scheibe::ausgabeName("ohneStrich", 7), "7");
    EXPECT_EQ(scheibe::ausgabeName("a-1", std::nan("")), "a--2147483648");
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
