// Whole runs on small hand-made inputs: early ends and missing files.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace {

TEST(Lauf, FehlerFruehesEndeUndFehlendeDateien) {
    const std::string mitKraft = hilfen::parameter("Externforce\n");
    std::string ohneIntegrator = mitKraft;
    ohneIntegrator.erase(ohneIntegrator.find("RungeKutta\n"), 11);
    const std::string ab0 = "Teilchenanzahl 0\nZeit 0\nTeilchendaten:\n";
    // Empty discs: steps have no error and grow by 5; output times 20 and 40. From 50 they are
    // 45 and 40: the first step of 5 is clipped to -5, the next is 5 * -5; clipping looks only
    // forward, so it runs past 40 to 20, where the output test takes it as the last output.
    const struct {
        int dateien; // in data/, the inputs included
        std::string param, scheibe, err, out;
    } faelle[] = {
        {2, ohneIntegrator, ab0, "", "Kein Odeint initialisiert !\n\n"},
        {2, hilfen::parameter("Externforce\nOutputfiles 0\n"), ab0, "",
         "Odeint: Fehler: Outputfiles muss mindestens 1 sein !\n"},
        {2, hilfen::parameter("Externforce\nMaxSchritte 0\n"), ab0, "", ""},
        {4, mitKraft, "Teilchenanzahl 0\nZeit 50\nTeilchendaten:\n", "",
         "Odeint: Fehler: Anfangszeitpunkt ist gr\xf6\xdf"
         "er als Endzeitpunkt der Simulation !\n"
         "step: 1 akk.t: 45\nstep: 2 akk.t: 20\nremove_count :0\n"},
        {1, "", ab0,
         "error: unable to open parameterfile in InitPhysSystem!\n"
         "error: unable to open parameter file in InitOdeint!\n"
         "error: unable to open parameter file in InitRechteSeiteDG!\n",
         "Kein Kernel initialisiert !\n\nKein Odeint initialisiert !\n\n"},
        {3, mitKraft, "",
         "error: unable to open teilchenfile in InitPhysSystem!\n"
         "error: unable to open init file in AkkScheibe!\n",
         "step: 1 akk.t: 5\nstep: 2 akk.t: 20\nstep: 3 akk.t: 40\nremove_count :0\n"},
    };
    for (const auto& f : faelle) {
        hilfen::TempOrdner o;
        std::filesystem::create_directories(o.pfad() / "data");
        if (!f.param.empty())
            hilfen::schreibe(o.datei("data/OYCar.parameter"), f.param);
        if (!f.scheibe.empty())
            hilfen::schreibe(o.datei("data/Akk-OYCar-0"), f.scheibe);
        hilfen::Lauf l = hilfen::starte(o.pfad());
        EXPECT_EQ(l.out, f.out);
        EXPECT_EQ(l.err, f.err);
        EXPECT_EQ(l.status, 0);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(o.pfad() / "data"), {}),
                  f.dateien);
    }
}

} // namespace
