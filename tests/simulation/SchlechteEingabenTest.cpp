// Whole runs on faulty or missing input files and settings that end a run
// early: every fault is reported or passed over, the run goes on as far as it
// can, and the program ends with status 0. (More than the lines hold, comment
// words, integers written as reals and removals at both radii are reference
// runs in tests/data/beispiele, as are the combinations of forces.)

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

namespace fs = std::filesystem;

namespace {

// The memory limit would also cap the sanitizer's shadow memory; there the
// sanitizer's own ceiling on a single allocation stands in for it.
#if defined(__SANITIZE_ADDRESS__)
const char* const wenigSpeicher = "ASAN_OPTIONS=$ASAN_OPTIONS:max_allocation_size_mb=1000 ";
#else
const char* const wenigSpeicher = "ulimit -v 1000000 && ";
#endif

std::string scheibe(const std::string& kopf, const std::string& zeilen) {
    return kopf + "\n\nTeilchendaten:\n\n" + zeilen;
}
std::string ein(const std::string& x) { return x + " 0 0 0 0 0\n"; }
std::string aus(const std::string& x) { return x + "  0  0  0  0  0  \n"; }
// The last snapshot: particles at rest stay exactly where they were read.
std::string am_ende(const std::string& n, const std::string& zeilen) {
    return "Teilchenanzahl " + n + "\nTeilchenmasse 1.72815e-16\nZeit 40\n\n\nTeilchendaten:\n\n" +
           zeilen;
}
std::string zu_wenige(const std::string& n, const std::string& bleiben) {
    return "gew\xfcnschte Teilchenzahl " + n + " ist gr\xf6\xdf" "er als vorhandene Teilchen !\n"
           "Teilchenanzahl wurde auf " + bleiben + " gesetzt !\n";
}
// Without forces (or with non-finite ones) the error estimate is 0: each step is
// five times the last, clipped to the output times 20 and 40.
const std::string lauf =
    "step: 1 akk.t: 5\nstep: 2 akk.t: 20\nstep: 3 akk.t: 40\nremove_count :0\n";

TEST(SchlechteEingaben, WerdenGemeldetOderUebergangenUndDerLaufGehtWeiter) {
    const std::string param = hilfen::parameter("");
    std::string ohneKern = param, ohneIntegrator = param;
    ohneKern.erase(ohneKern.find("Kern1\n"), 6);
    ohneIntegrator.erase(ohneIntegrator.find("RungeKutta\n"), 11);
    const std::string zwei = ein("0.2") + ein("0.3"), zweiAus = aus("0.2") + aus("0.3");
    const std::string keinKern = "Kein Kernel initialisiert !\n\n";
    const struct {
        const char* fall;
        std::optional<std::string> param, scheibe; // nullopt: the file is missing
        std::string err, out;
        int dateien;                      // in data/ after the run, inputs included
        std::optional<std::string> ende;  // data/Akk-OYCar-40, when it is certain
        bool speicher = false, ordner20 = false;
    } faelle[] = {
        {"beide fehlen", std::nullopt, std::nullopt,
         "error: unable to open parameterfile in InitPhysSystem!\n"
         "error: unable to open teilchenfile in InitPhysSystem!\n"
         "error: unable to open parameter file in InitOdeint!\n"
         "error: unable to open parameter file in InitRechteSeiteDG!\n"
         "error: unable to open init file in AkkScheibe!\n",
         keinKern + "Kein Odeint initialisiert !\n\n", 0, std::nullopt},
        {"Scheibe fehlt", param, std::nullopt,
         "error: unable to open teilchenfile in InitPhysSystem!\n"
         "error: unable to open init file in AkkScheibe!\n",
         lauf, 3, std::nullopt},
        {"beide leer", "", "", "", keinKern + "Kein Odeint initialisiert !\n\n", 2, std::nullopt},
        {"Scheibe leer", param, "", "", lauf, 4, am_ende("0", "")},
        {"ohne Integrator", ohneIntegrator, "", "", "Kein Odeint initialisiert !\n\n", 2,
         std::nullopt},
        {"keine Ausgaben", param + "Outputfiles 0\n", "", "",
         "Odeint: Fehler: Outputfiles muss mindestens 1 sein !\n", 2, std::nullopt},
        {"keine Schritte", param + "MaxSchritte 0\n", "", "", "", 2, std::nullopt},
        // Steps from 50 are 45 and 40: the first step of 5 is clipped to -5, the
        // next is 5 * -5; clipping looks only forward, so it runs past 40 to 20,
        // where the output test takes it as the last output.
        {"Anfang nach Ende", param, scheibe("Zeit 50", ""), "",
         "Odeint: Fehler: Anfangszeitpunkt ist gr\xf6\xdf" "er als Endzeitpunkt der Simulation !\n"
         "step: 1 akk.t: 45\nstep: 2 akk.t: 20\nremove_count :0\n",
         4, std::nullopt},
        // A value that does not parse ends the reader's scan: the later key is not read.
        {"int-Wert", param + "Outputfiles zwei\nOutputfiles 1\n", scheibe("Teilchenanzahl 2", zwei),
         "", lauf, 4, am_ende("2", zweiAus)},
        {"double-Wert", ohneKern + "Smoothinglength x\nKern1\n",
         scheibe("Teilchenanzahl 2", zwei), "", keinKern + lauf, 4, am_ende("2", zweiAus)},
        {"Doppelpunkt", param + "Outputfiles: 1\n", scheibe("Teilchenanzahl 2\nZeit: 30", zwei),
         "", lauf, 4, am_ende("2", zweiAus)},
        {"Anzahl unlesbar", param, scheibe("Teilchenanzahl zwei\nZeit 30", zwei), "", lauf, 4,
         am_ende("0", "")},
        {"Anzahl ueber int", param, scheibe("Teilchenanzahl 99999999999\nZeit 30", zwei), "",
         lauf, 4, am_ende("0", "")},
        // The failed stream reads no particle line either.
        {"Anzahl ueber int nach gueltiger", param,
         scheibe("Teilchenanzahl 2\nTeilchenanzahl 99999999999", zwei), "",
         zu_wenige("2", "0") + lauf, 4, am_ende("0", "")},
        {"Zeit unlesbar", param, scheibe("Zeit x\nTeilchenanzahl 2", zwei), "", lauf, 4,
         am_ende("0", "")},
        {"riesige Anzahl", param, scheibe("Teilchenanzahl 2000000000", zwei + ein("0.25")), "",
         zu_wenige("2000000000", "3") + lauf, 4, am_ende("3", zweiAus + aus("0.25")), true},
        {"negative Anzahl", param, scheibe("Teilchenanzahl -3", zwei), "", lauf, 4,
         am_ende("0", "")},
        {"ohne letztes Zeilenende", param, scheibe("Teilchenanzahl 2", ein("0.2") + "0.3 0 0 0 0 0"),
         "", lauf, 4, am_ende("2", zweiAus)},
        // Lines are not counted: the missing velocity is the start of the next
        // line, whose rest is dropped.
        {"zu wenige Zahlen", param,
         scheibe("Teilchenanzahl 3", "0.2 0 0\n0 0 0 0.3 0 0\n" + ein("0.25")), "",
         zu_wenige("3", "2") + lauf, 4, am_ende("2", aus("0.2") + aus("0.25"))},
        {"zu viele Zahlen", param, scheibe("Teilchenanzahl 2", "0.2 0 0 0 0 0 7 8\n" + ein("0.3")),
         "", lauf, 4, am_ende("2", zweiAus)},
        // Stream extraction knows no "nan" or "inf": only the first number of a
        // line is checked, a later failure ends the reading after that particle.
        {"nan", param, scheibe("Teilchenanzahl 2", ein("0.2") + "nan 0 0 0 0 0\n"), "",
         zu_wenige("2", "1") + lauf, 4, am_ende("1", aus("0.2"))},
        {"inf", param, scheibe("Teilchenanzahl 2", "0.2 0 0 0 inf 0\n" + ein("0.3")), "",
         zu_wenige("2", "1") + lauf, 4, am_ende("1", aus("0.2"))},
        // Without a secondary's mass the primary sits at the origin: 0/0 gives
        // NaN, which the error test accepts and the removal keeps.
        {"auf dem Stern", param + "Externforce\nSekundaersternmasse 0\n",
         scheibe("Teilchenanzahl 1", ein("0")), "", lauf, 4, std::nullopt},
        {"Ausgabe unschreibbar", param, scheibe("Teilchenanzahl 2", zwei),
         "error: unable to open output file!\n", lauf, 4, am_ende("2", zweiAus), false, true},
        {"SPH ohne Kern", ohneKern + "Pressure\n", scheibe("Teilchenanzahl 2", zwei), "",
         keinKern + "Fehler: SPH-Kr\xe4" "fte brauchen einen Kernel (Kern1) !\n", 2, std::nullopt},
    };
    for (const auto& f : faelle) {
        SCOPED_TRACE(f.fall);
        hilfen::TempOrdner o;
        hilfen::eingaben(o, f.param, f.scheibe);
        if (f.ordner20)
            fs::create_directory(o.pfad() / "data/Akk-OYCar-20");
        // A reader that never stops (end of file inside a line) fails with 124.
        const hilfen::Lauf l =
            hilfen::starte(o.pfad(), std::string(f.speicher ? wenigSpeicher : "") + "timeout 60 ");
        EXPECT_EQ(l.err, f.err);
        EXPECT_EQ(l.out, f.out);
        EXPECT_EQ(l.status, 0);
        EXPECT_EQ(hilfen::anzahl(o.pfad() / "data"), f.dateien);
        if (f.ende) {
            EXPECT_EQ(hilfen::lies(o.datei("data/Akk-OYCar-40")), *f.ende);
        }
    }
}

} // namespace
