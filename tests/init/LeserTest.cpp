// The readers of the parameter file and of the disc file's header: each scans
// whitespace-separated words for its own keys, the last occurrence wins, and
// a value that does not parse ends that reader's scan without being stored.

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "init/InitRechteSeiteDG.h"
#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <tuple>
#include <vector>

using hilfen::Mitschnitt;

namespace {

// Files in a scratch folder that lives as long as the test.
struct Dateien {
    hilfen::TempOrdner o;
    std::list<std::string> pfade;
    const char* operator()(const std::string& name, const std::string& inhalt) {
        hilfen::schreibe(o.datei(name), inhalt);
        return pfade.emplace_back(o.datei(name)).c_str();
    }
};

TEST(InitOdeint, SchluesselUeberallDerLetzteGewinnt) {
    Dateien f;
    Mitschnitt err(std::cerr);
    // Keys after labels and mid-line, a repeat, a key with a colon attached
    // (no key: its 10 is skipped) and a key word inside a comment (counts).
    InitOdeint ini(f("p", "# integrator: Outputfiles 4 snapshots\nOutputfiles: 10\n"
                          "Ende Outputtime 800.5 s  Anfangsschrittweite 2.5E+01\n"
                          "MinSchrittweite 1e-12\tMaxSchritte -7\n"
                          "Genauigkeit 1e-6 dann Genauigkeit 1e-8\nRungeKutta\n"));
    EXPECT_EQ(std::make_tuple(ini.Outputfiles, ini.Outputtime, ini.Anfangsschrittweite,
                              ini.MinSchrittweite, ini.MaxSchritte, ini.Genauigkeit, ini.odeintArt),
              std::make_tuple(4, 800.5, 25.0, 1e-12, -7, 1e-8, 0));
    ini.init(f("z", "Outputfiles 5")); // overwrites only what it finds
    EXPECT_EQ(ini.Outputfiles, 5);
    EXPECT_EQ(ini.Genauigkeit, 1e-8);
    EXPECT_EQ(err.text(), "");
}

TEST(InitOdeint, FehlerhafteZahlBeendetDieSuche) {
    Dateien f;
    // "abc": not stored (the earlier 7 stays) and nothing later is read.
    InitOdeint a(f("a", "Outputtime 7 Outputfiles 3 Outputtime abc MaxSchritte 100 RungeKutta"));
    EXPECT_EQ(std::make_tuple(a.Outputtime, a.Outputfiles, a.MaxSchritte, a.odeintArt),
              std::make_tuple(7.0, 3, 0, -1));
    // Integer key, real value: the digits before the point are stored and
    // ".5e4" is skipped as an unknown word; the scan goes on.
    InitOdeint b(f("b", "MaxSchritte 1.5e4 Genauigkeit 1e-7"));
    EXPECT_EQ(std::make_tuple(b.MaxSchritte, b.Genauigkeit), std::make_tuple(1, 1e-7));
    // Out of range for int: the extraction fails, nothing stored, scan ends.
    InitOdeint c(f("c", "Outputfiles 2 Outputfiles 99999999999 RungeKutta"));
    EXPECT_EQ(std::make_tuple(c.Outputfiles, c.odeintArt), std::make_tuple(2, -1));
}

TEST(Leser, NichtLesbareDateienMeldenUndLassenAllesUnberuehrt) {
    Dateien f;
    const std::string pfad = f.o.datei("fehlt");
    const char* fehlt = pfad.c_str();
    Mitschnitt err(std::cerr);
    InitOdeint io(fehlt);
    EXPECT_EQ(err.text(), "error: unable to open parameter file in InitOdeint!\n");
    EXPECT_EQ(std::make_tuple(io.Outputtime, io.odeintArt), std::make_tuple(0.0, -1));
    InitPhysSystem ps(fehlt, fehlt);
    InitRechteSeiteDG rs(fehlt);
    InitAkkScheibe as(fehlt, "data/Akk-OYCar-0"); // opens nothing
    EXPECT_EQ(err.text(), "error: unable to open parameter file in InitOdeint!\n"
                          "error: unable to open parameterfile in InitPhysSystem!\n"
                          "error: unable to open teilchenfile in InitPhysSystem!\n"
                          "error: unable to open parameter file in InitRechteSeiteDG!\n");
    EXPECT_EQ(std::make_tuple(ps.Primaersternmasse, ps.Teilchenmasse, ps.kernelArt),
              std::make_tuple(0.0, 0.0, -1));
    EXPECT_TRUE(rs.kraefte().empty());
    EXPECT_EQ(std::string(as.dateiname), "data/Akk-OYCar-0");
}

TEST(InitPhysSystem, ParameterUndTeilchenmasseAusDemScheibenkopf) {
    Dateien f;
    // "Teilchenmasse" counts before "Teilchendaten:" only.
    InitPhysSystem ini(f("p", hilfen::parameter("Rate 5 MinAbstand 0.1 MaxAbstand 2.0\n"
                                                "Sekundaersternmasse: 9 Smoothinglength 0.03\n")),
                       f("s", "Zeit 0 Teilchenmasse 2.5e-16 Teilchendaten:\nTeilchenmasse 9\n"));
    EXPECT_EQ(std::make_tuple(ini.Primaersternmasse, ini.Sekundaersternmasse, ini.Bahnperiode,
                              ini.Viskositaet, ini.ArtVisk_alpha, ini.ArtVisk_beta),
              std::make_tuple(0.685, 0.07, 5453.6, 1e-6, 1.0, 2.0));
    EXPECT_EQ(std::make_tuple(ini.Smoothinglength, ini.Rate, ini.MinAbstand, ini.MaxAbstand,
                              ini.kernelArt, ini.Teilchenmasse),
              std::make_tuple(0.03, 5, 0.1, 2.0, 0, 2.5e-16));

    // A malformed value ends the parameter scan only; the disc scan stops at
    // its own malformed value, keeping the earlier one.
    Mitschnitt err(std::cerr);
    InitPhysSystem kaputt(f("q", "Bahnperiode 3 Rate x Kern1"),
                          f("t", "Teilchenmasse 1e-16 Teilchenmasse e5 Teilchenmasse 3"));
    EXPECT_EQ(std::make_tuple(kaputt.Bahnperiode, kaputt.kernelArt, kaputt.Teilchenmasse),
              std::make_tuple(3.0, -1, 1e-16));
    InitPhysSystem spaet(f("r", ""), f("u", "Teilchendaten: Teilchenmasse 1e-16"));
    EXPECT_EQ(spaet.Teilchenmasse, 0.0);
    EXPECT_EQ(err.text(), "");
}

TEST(InitRechteSeiteDG, KraefteInDateireihenfolgeMitWiederholungen) {
    Dateien f;
    // "Pressure" inside a comment counts; "Pressure:" and "pressure" do not.
    InitRechteSeiteDG ini(f("p", "Physvisc Externforce\n# no Pressure here\n"
                                 "Pressure: pressure Artvisc Physvisc\n"));
    EXPECT_EQ(ini.kraefte(),
              (std::vector<Forces>{physvisc, externforce, pressure, artvisc, physvisc}));
    ini.init(f("q", "Externforce Pressure Artvisc")); // appends
    ASSERT_EQ(ini.kraefte().size(), 8u);
    EXPECT_EQ(ini.kraefte()[5], externforce);
}

} // namespace
