// Every combination of forces from the parameter file runs from the console
// with the disc class it needs.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <string>

namespace {

int zaehle(const std::string& text, const std::string& wort) {
    int n = 0;
    for (auto p = text.find(wort); p != std::string::npos; p = text.find(wort, p + 1))
        ++n;
    return n;
}

TEST(KraftKombinationen, JedeKombinationLaeuftMitIhrerScheibe) {
    struct Fall {
        const char* kraefte;
        bool sph; // the disc works with pairs and prints their count
    };
    // The 150-particle gas disc of the reference runs.
    const std::string scheibe = hilfen::lies(
        std::string(AKK_TESTDATEN) + "/beispiele/f05_extern_pressure_artvisc/data/Akk-OYCar-0");
    for (Fall f : {Fall{"", false}, Fall{"Externforce", false}, Fall{"Pressure", true},
                   Fall{"Artvisc", true}, Fall{"Physvisc", true}, Fall{"Pressure Pressure", true},
                   Fall{"Physvisc Externforce Physvisc", true},
                   Fall{"Externforce Pressure Artvisc Physvisc", true}}) {
        // Two steps, the end time far away.
        hilfen::TempOrdner o;
        hilfen::eingaben(
            o, hilfen::parameter(std::string(f.kraefte) + "\nMaxSchritte 2\nOutputtime 1e9\n"),
            scheibe);
        const hilfen::Lauf l = hilfen::starte(o.pfad());
        EXPECT_EQ(l.status, 0) << f.kraefte;
        EXPECT_EQ(l.err, "") << f.kraefte;
        EXPECT_EQ(zaehle(l.out, "step: "), 2) << f.kraefte;
        // One pair count per evaluation: the driver's one per step plus five
        // per try of the stepper.
        int paarzeilen = zaehle(l.out, "Anzahl WWPartnern: ");
        if (f.sph)
            EXPECT_TRUE(paarzeilen >= 12 && (paarzeilen - 2) % 5 == 0) << f.kraefte << paarzeilen;
        else
            EXPECT_EQ(paarzeilen, 0) << f.kraefte;
    }
}

} // namespace
