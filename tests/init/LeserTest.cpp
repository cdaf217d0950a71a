// The readers scan words for their keys; the last occurrence wins, and a value that does not parse
// ends that reader's scan unstored. (Bad values, integers as reals, missing files: whole runs.)

#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "init/InitRechteSeiteDG.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <list>
#include <tuple>
#include <vector>

namespace {

struct Dateien : hilfen::TempOrdner { // writes a file, returns its path
    std::list<std::string> pfade;
    const char* operator()(const std::string& inhalt) {
        hilfen::schreibe(pfade.emplace_back(datei(std::to_string(pfade.size()))), inhalt);
        return pfade.back().c_str();
    }
};

TEST(Leser, Suchregeln) {
    Dateien f;
    // "Outputfiles:" is no key (its 10 is skipped); the key in the comment counts.
    InitOdeint ini(f("# integrator: Outputfiles 4 snapshots\nOutputfiles: 10 Outputtime 800.5 s\n"
                     "Anfangsschrittweite 2.5E+01 MinSchrittweite 1e-12\tMaxSchritte -7\n"
                     "Genauigkeit 1e-6 dann Genauigkeit 1e-8\nRungeKutta\n"));
    EXPECT_EQ(std::make_tuple(ini.Outputfiles, ini.Outputtime, ini.Anfangsschrittweite,
                              ini.MinSchrittweite, ini.MaxSchritte, ini.Genauigkeit, ini.odeintArt),
              std::make_tuple(4, 800.5, 25.0, 1e-12, -7, 1e-8, 0));
    // Forces in file order with repeats; "# Pressure" counts, "Pressure:" and "pressure" do not.
    InitRechteSeiteDG rs(f("Physvisc Externforce # Pressure\nPressure: pressure Artvisc Physvisc"));
    EXPECT_EQ(rs.kraefte(),
              (std::vector<Forces>{physvisc, externforce, pressure, artvisc, physvisc}));
    // Each file has its own scan: the parameters end at "x", the disc header at "e5".
    InitPhysSystem c(f("Bahnperiode 3 Rate x Kern1"),
                     f("Teilchenmasse 1e-16 Teilchenmasse e5 Teilchenmasse 3"));
    EXPECT_EQ(std::make_tuple(c.Bahnperiode, c.kernelArt, c.Teilchenmasse),
              std::make_tuple(3.0, -1, 1e-16));
}

} // namespace
