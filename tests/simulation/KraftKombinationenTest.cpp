// Every combination of forces from the parameter file runs from the console
// with the disc class it needs; SPH forces without a kernel stop cleanly.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace fs = std::filesystem;

namespace {

// Runs two steps (MaxSchritte 2, end time far away) of the 150-particle gas
// disc of the reference runs with the given parameter text.
hilfen::Lauf zweiSchritte(const std::string& parameterText) {
    hilfen::TempOrdner ordner;
    fs::create_directory(ordner.pfad() / "data");
    fs::copy_file(fs::path(AKK_TESTDATEN) / "beispiele/f05_extern_pressure_artvisc/data/Akk-OYCar-0",
                  ordner.pfad() / "data/Akk-OYCar-0");
    hilfen::schreibe(ordner.datei("data/OYCar.parameter"), parameterText);
    return hilfen::starte(ordner.pfad());
}

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
    for (Fall f : {Fall{"", false}, Fall{"Externforce", false}, Fall{"Pressure", true},
                   Fall{"Artvisc", true}, Fall{"Physvisc", true}, Fall{"Pressure Pressure", true},
                   Fall{"Physvisc Externforce Physvisc", true},
                   Fall{"Externforce Pressure Artvisc Physvisc", true}}) {
        hilfen::Lauf l = zweiSchritte(hilfen::parameter(std::string(f.kraefte) +
                                                        "\nMaxSchritte 2\nOutputtime 1e9\n"));
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

TEST(KraftKombinationen, SphKraefteOhneKernelBrechenMitMeldungAb) {
    std::string p = hilfen::parameter("Externforce Artvisc\n");
    p.erase(p.find("Kern1"), 5);
    hilfen::Lauf l = zweiSchritte(p);
    EXPECT_EQ(l.status, 0);
    EXPECT_EQ(l.out, "Kein Kernel initialisiert !\n\n"
                     "Fehler: SPH-Kr\xe4" "fte brauchen einen Kernel (Kern1) !\n");
    EXPECT_EQ(l.err, "");
}

} // namespace
