// Whole runs on faulty or missing inputs and settings that end a run early: each fault is reported
// or passed over, the run goes as far as it can, status 0. (More than the lines hold, comments,
// integers written as reals, removals, force combinations: reference runs in tests/data/beispiele.)

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <string>

namespace fs = std::filesystem;

namespace {

// A memory limit would cap the sanitizer's shadow memory: its allocation ceiling stands in.
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
// Without finite forces the error estimate is 0: steps grow 5-fold, clipped to outputs 20, 40.
const std::string lauf =
    "step: 1 akk.t: 5\nstep: 2 akk.t: 20\nstep: 3 akk.t: 40\nremove_count :0\n";

TEST(SchlechteEingaben, WerdenGemeldetOderUebergangenUndDerLaufGehtWeiter) {
    const std::string param = hilfen::parameter("");
    std::string ohneKern = param, ohneIntegrator = param;
    ohneKern.erase(ohneKern.find("Kern1\n"), 6);
    ohneIntegrator.erase(ohneIntegrator.find("RungeKutta\n"), 11);
    const std::string zwei = ein("0.2") + ein("0.3"), zweiAus = aus("0.2") + aus("0.3");
    const std::string keinKern = "Kein Kernel initialisiert !\n\n",
                      keinOdeint = "Kein Odeint initialisiert !\n\n";
    // Two particles read, and the last snapshot with none or with both.
    const std::string mitZwei = scheibe("Teilchenanzahl 2", zwei), keins = am_ende("0", ""),
                      beide = am_ende("2", zweiAus);
    const struct {
        const char* fall;
        std::optional<std::string> param, scheibe; // nullopt: the file is missing
        std::string err, out;
        int dateien;                                    // in data/ after the run, inputs included
        std::optional<std::string> ende = std::nullopt; // data/Akk-OYCar-40, when certain
        bool speicher = false, ordner20 = false;
    } faelle[] = {
        {"beide fehlen", std::nullopt, std::nullopt,
         "error: unable to open parameterfile in InitPhysSystem!\n"
         "error: unable to open teilchenfile in InitPhysSystem!\n"
         "error: unable to open parameter file in InitOdeint!\n"
         "error: unable to open parameter file in InitRechteSeiteDG!\n"
         "error: unable to open init file in AkkScheibe!\n",
         keinKern + keinOdeint, 0},
        {"Scheibe fehlt", param, std::nullopt,
         "error: unable to open teilchenfile in InitPhysSystem!\n"
         "error: unable to open init file in AkkScheibe!\n",
         lauf, 3},
        {"beide leer", "", "", "", keinKern + keinOdeint, 2},
        {"Scheibe leer", param, "", "", lauf, 4, keins},
        {"ohne Integrator", ohneIntegrator, "", "", keinOdeint, 2},
        {"keine Ausgaben", param + "Outputfiles 0\n", "", "",
         "Odeint: Fehler: Outputfiles muss mindestens 1 sein !\n", 2},
        {"keine Schritte", param + "MaxSchritte 0\n", "", "", "", 2},
        // Steps from 50: 5 is clipped to -5, the next is 5 * -5; clipping looks only forward, so
        // it runs past 40 to 20, where the output test takes it as the last output.
        {"Anfang nach Ende", param, scheibe("Zeit 50", ""), "",
         "Odeint: Fehler: Anfangszeitpunkt ist gr\xf6\xdf" "er als Endzeitpunkt der Simulation !\n"
         "step: 1 akk.t: 45\nstep: 2 akk.t: 20\nremove_count :0\n",
         4},
        // A value that does not parse ends the reader's scan: the later key is not read.
        {"int-Wert", param + "Outputfiles zwei\nOutputfiles 1\n", mitZwei, "", lauf, 4, beide},
        {"double-Wert", ohneKern + "Smoothinglength x\nKern1\n", mitZwei, "", keinKern + lauf, 4,
         beide},
        {"Doppelpunkt", param + "Outputfiles: 1\n", scheibe("Teilchenanzahl 2\nZeit: 30", zwei),
         "", lauf, 4, beide},
        {"Anzahl unlesbar", param, scheibe("Teilchenanzahl zwei\nZeit 30", zwei), "", lauf, 4,
         keins},
        {"Anzahl ueber int", param, scheibe("Teilchenanzahl 99999999999\nZeit 30", zwei), "",
         lauf, 4, keins},
        // The failed stream reads no particle line either.
        {"Anzahl ueber int nach gueltiger", param,
         scheibe("Teilchenanzahl 2\nTeilchenanzahl 99999999999", zwei), "",
         zu_wenige("2", "0") + lauf, 4, keins},
        {"Zeit unlesbar", param, scheibe("Zeit x\nTeilchenanzahl 2", zwei), "", lauf, 4, keins},
        {"riesige Anzahl", param, scheibe("Teilchenanzahl 2000000000", zwei + ein("0.25")), "",
         zu_wenige("2000000000", "3") + lauf, 4, am_ende("3", zweiAus + aus("0.25")), true},
        {"negative Anzahl", param, scheibe("Teilchenanzahl -3", zwei), "", lauf, 4, keins},
        {"ohne letztes Zeilenende", param, scheibe("Teilchenanzahl 2", ein("0.2") + "0.3 0 0 0 0 0"),
         "", lauf, 4, beide},
        // Lines are not counted: the missing velocity is the next line's start, its rest dropped.
        {"zu wenige Zahlen", param,
         scheibe("Teilchenanzahl 3", "0.2 0 0\n0 0 0 0.3 0 0\n" + ein("0.25")), "",
         zu_wenige("3", "2") + lauf, 4, am_ende("2", aus("0.2") + aus("0.25"))},
        {"zu viele Zahlen", param, scheibe("Teilchenanzahl 2", "0.2 0 0 0 0 0 7 8\n" + ein("0.3")),
         "", lauf, 4, beide},
        // Extraction knows no "nan" or "inf": only a line's first number is checked, a later
        // failure ends the reading after that particle.
        {"nan", param, scheibe("Teilchenanzahl 2", ein("0.2") + "nan 0 0 0 0 0\n"), "",
         zu_wenige("2", "1") + lauf, 4, am_ende("1", aus("0.2"))},
        {"inf", param, scheibe("Teilchenanzahl 2", "0.2 0 0 0 inf 0\n" + ein("0.3")), "",
         zu_wenige("2", "1") + lauf, 4, am_ende("1", aus("0.2"))},
        // Without a secondary the primary is at the origin: 0/0 gives NaN, which the error test
        // accepts and the removal keeps.
        {"auf dem Stern", param + "Externforce\nSekundaersternmasse 0\n",
         scheibe("Teilchenanzahl 1", ein("0")), "", lauf, 4},
        {"Ausgabe unschreibbar", param, mitZwei, "error: unable to open output file!\n", lauf, 4,
         beide, false, true},
        {"SPH ohne Kern", ohneKern + "Pressure\n", mitZwei, "",
         keinKern + "Fehler: SPH-Kr\xe4" "fte brauchen einen Kernel (Kern1) !\n", 2},
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
