// Runs of akkstrom: without mass transfer it is akkscheibe byte for byte;
// with it, particles appear behind L1 and leave at the removal radii like
// any others, and the progress shown on standard error leaves the output
// alone; bad stream keys and options stop the run before its first step. (The
// shipped example on two threads is checked against one in SicherungTest.)

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const std::string ohneWW = "Stromgeschwindigkeit 7e-6 Stromstreuung 7e-7 Stromabstand 0.005 "
                           "Strombreite 0.006 Stromsaat 3\n";
const std::string leer = "Teilchenanzahl 0\nZeit 0\nTeilchendaten:\n";

hilfen::Lauf akkstrom(const fs::path& ordner, const std::string& vor = "",
                      const std::string& optionen = "") {
    return hilfen::starte(ordner, vor, AKK_STROM, optionen);
}

// The particle lines of a snapshot, six numbers each.
std::vector<std::vector<double>> teilchen(const std::string& datei) {
    std::istringstream ein(hilfen::lies(datei));
    std::string wort;
    while (ein >> wort && wort != "Teilchendaten:") {
    }
    std::vector<std::vector<double>> zeilen;
    std::vector<double> z(6);
    while (ein >> z[0] >> z[1] >> z[2] >> z[3] >> z[4] >> z[5])
        zeilen.push_back(z);
    return zeilen;
}

TEST(Akkstrom, OhneMassenstromGleichtDenAufgezeichnetenLaeufenVonAkkscheibe) {
    // Each recorded run of akkscheibe, with a stream of rate 0 added to its parameters.
    for (const auto& e : fs::directory_iterator(fs::path(AKK_TESTDATEN) / "regression")) {
        if (!e.is_directory())
            continue;
        hilfen::TempOrdner arbeit;
        fs::copy(e.path() / "data", arbeit.pfad() / "data", fs::copy_options::recursive);
        std::ofstream(arbeit.datei("data/OYCar.parameter"), std::ios::app)
            << "\nStromrate 0 " << ohneWW;
        const hilfen::Lauf l = akkstrom(arbeit.pfad());
        const fs::path erwartet = e.path() / "expected";
        EXPECT_EQ(std::to_string(l.status) + "\n", hilfen::lies((erwartet / "exit").string()));
        EXPECT_EQ(l.out, hilfen::lies((erwartet / "stdout").string())) << e.path();
        EXPECT_EQ(l.err, hilfen::lies((erwartet / "stderr").string()));
        for (const auto& s : fs::directory_iterator(erwartet / "data"))
            EXPECT_EQ(hilfen::lies(s.path().string()),
                      hilfen::lies(arbeit.datei("data/" + s.path().filename().string())))
                << s.path();
    }
}

TEST(Akkstrom, EingespeisteTeilchenVerlassenDieScheibeWieAndereUndDerFortschrittStoertNicht) {
    // No forces: the steps end at 5, 20 and 40 s (the error estimate is 0, so
    // each step is five times the last, clipped to the output times 20 and 40),
    // and the particles fly straight on at 0.025 along the x axis. At 0.26
    // particles per second particle 0 is appended at 5 s, 1 to 4 at 20 s;
    // particle k crossed x = xL1 + 0.01 = -0.368367 at (k + 1) / 0.26 s. The
    // primary is at 0.056303, eta^2 = 0.0025, rMax^2 = 0.228615: particle 0 is
    // at 0.035479 at 20 s, inside eta, and is removed; at 40 s particles 1 to 4
    // are at 0.439325, 0.343171, 0.247018 and 0.150864.
    const double x40[] = {0.439325, 0.343171, 0.247018, 0.150864};
    // The progress: the first step at once, the end always; a slow machine may
    // show the step at 20 s between them. Quiet when stderr is not a terminal
    // and it is not asked for.
    const std::string zahl = "[0-9.e+-]+";
    const std::string zeilen = "t 5 s \\(" + zahl + " Bahnen\\), 1 Teilchen, " + zahl +
                               " Schritte/s, Rest [0-9]+:[0-9]{2}:[0-9]{2}\n(t 20 s .*\n)?"
                               "t 40 s \\(0.00733[0-9]* Bahnen\\), 4 Teilchen, (" + zahl +
                               "|-) Schritte/s, Rest 0:00:00\n";
    const struct {
        std::string vor, option; // shell text before and after the program
        std::string err;         // a regular expression
    } arten[] = {{"", "", ""},
                 {"AKKSTROM_FORTSCHRITT=1 ", "", zeilen},
                 {"", "--fortschritt", zeilen},
                 {"AKKSTROM_FORTSCHRITT=0 ", "", ""}};
    for (const auto& a : arten) {
        SCOPED_TRACE(a.vor + a.option);
        hilfen::TempOrdner o;
        hilfen::eingaben(o,
                         hilfen::parameter("Stromrate 4.49320066e-17 Stromgeschwindigkeit 0.025 "
                                           "Stromstreuung 0 Stromabstand 0.01 Strombreite 0 "
                                           "Stromsaat 1\n"),
                         leer);
        const hilfen::Lauf l = akkstrom(o.pfad(), a.vor, a.option);
        EXPECT_EQ(l.status, 0);
        EXPECT_TRUE(std::regex_match(l.err, std::regex(a.err))) << l.err;
        // The removed particle's abst_sqr is 0.020824^2.
        std::smatch abst;
        ASSERT_TRUE(std::regex_match(
            l.out, abst,
            std::regex("step: 1 akk.t: 5\nstep: 2 akk.t: 20\n Entferne Teilchen : 0 von 1 "
                       "Teilchen  zur Zeit: 20 : 0.0025 < abst_sqr < 0.228615ist : ([-0-9.e]+)"
                       "\n\nstep: 3 akk.t: 40\nremove_count :1\n")))
            << l.out;
        EXPECT_NEAR(std::stod(abst[1]) / (0.020824 * 0.020824), 1, 1e-4);
        EXPECT_EQ(teilchen(o.datei("data/Akk-OYCar-20")).size(), 0u);
        const auto am_ende = teilchen(o.datei("data/Akk-OYCar-40"));
        ASSERT_EQ(am_ende.size(), 4u);
        // x to the six digits of the snapshot and of xL1 and x1 above.
        for (std::size_t i = 0; i < 4; ++i) {
            EXPECT_NEAR(am_ende[i][0], x40[i], 2e-6) << i;
            EXPECT_EQ(am_ende[i], (std::vector<double>{am_ende[i][0], 0, 0, 0.025, 0, 0}));
        }
    }
}

TEST(Akkstrom, SchlechteStromschluesselUndOptionenBeendenDenLaufVorDemErstenSchritt) {
    const std::string f = "Strom: Fehler: ";
    const std::string param = hilfen::parameter("Externforce\nStromrate 1e-17 " + ohneWW);
    std::string ohneIntegrator = param;
    ohneIntegrator.erase(ohneIntegrator.find("RungeKutta\n"), 11);
    const struct {
        std::optional<std::string> param; // nullopt: no parameter file
        std::string option;
        std::string out, err; // out: its first line only when the keys are missing
        int status;
    } faelle[] = {
        // Each missing key has its line (StromquelleTest has them all).
        {std::nullopt, "",
         f + "Stromrate fehlt (Massenrate durch L1, Sonnenmassen pro Sekunde) !\n",
         "error: unable to open parameter file in InitStrom!\n", 1},
        {param + "Strombreite -1", "", f + "Strombreite muss mindestens 0 sein, nicht '-1' !\n", "",
         1},
        {param + "Stromabstand 0.4", "",
         f + "Stromabstand 0.4 reicht von L1 bis an eta um den Prim\xe4rstern: L1 liegt 0.43467 "
             "vom Prim\xe4rstern, eta ist 0.05 !\n",
         "", 1},
        // An option it does not know: refused before anything is read.
        {param, "--fortschrit", "",
         "akkstrom: unbekannte Option '--fortschrit' (bekannt: --fortschritt, --weiter, "
         "--sicherung DATEI, --sicherung-schritte N, --sicherung-minuten M, --halt-nach N)\n",
         2},
        // The stream is fine, the run is not: as akkscheibe, status 0.
        {ohneIntegrator, "", "Kein Odeint initialisiert !\n\n", "", 0},
    };
    for (const auto& c : faelle) {
        hilfen::TempOrdner o;
        hilfen::eingaben(o, c.param, leer);
        const hilfen::Lauf l = akkstrom(o.pfad(), "", c.option);
        const bool fehlen = c.out.find(" fehlt ") != std::string::npos;
        EXPECT_EQ(fehlen ? l.out.substr(0, l.out.find('\n') + 1) : l.out, c.out);
        if (fehlen) {
            EXPECT_EQ(std::count(l.out.begin(), l.out.end(), '\n'), 6);
        }
        EXPECT_EQ(l.err, c.err);
        EXPECT_EQ(l.status, c.status);
        EXPECT_EQ(hilfen::anzahl(o.pfad() / "data"), c.param ? 2 : 1); // no snapshot
    }
}

} // namespace
