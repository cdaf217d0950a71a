// Whole runs on small hand-made inputs: messages, snapshots, early ends.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

namespace fs = std::filesystem;
using hilfen::TempOrdner;
using Namen = std::vector<std::string>;

namespace {

// Two particles about 0.2 from the primary (at x = 0.056), well inside the
// allowed shell 0.05 < |r - x1| < 0.478.
const std::string zweiTeilchen =
    "Teilchenanzahl 2\nTeilchenmasse 1.7281541e-16\nZeit 0\n\n\nTeilchendaten:\n\n"
    "0.2085385  -0.146846  -0.001872614  0.000614702  0.0006372642  0  \n"
    "0.2245706  -0.04119104  0.0006572749  0.0002492136  0.001018053  0  \n";

// Writes the input files that are not empty and runs the program.
hilfen::Lauf lauf(const TempOrdner& o, const std::string& param, const std::string& scheibe) {
    fs::create_directories(o.pfad() / "data");
    if (!param.empty())
        hilfen::schreibe(o.datei("data/OYCar.parameter"), param);
    if (!scheibe.empty())
        hilfen::schreibe(o.datei("data/Akk-OYCar-0"), scheibe);
    return hilfen::starte(o.pfad());
}

// The disc files in data/, sorted.
Namen scheiben(const TempOrdner& o) {
    Namen n;
    for (auto& e : fs::directory_iterator(o.pfad() / "data"))
        if (e.path().filename() != "OYCar.parameter")
            n.push_back(e.path().filename().string());
    std::sort(n.begin(), n.end());
    return n;
}

TEST(Lauf, SchnappschussNamenUndZahl) {
    TempOrdner o;
    auto l = lauf(o, hilfen::parameter("Externforce\nOutputfiles 3\nOutputtime 30\n"),
                  zweiTeilchen);
    EXPECT_EQ(l.status, 0);
    EXPECT_EQ(l.err, "");
    EXPECT_EQ(l.out.substr(l.out.size() - 16), "remove_count :0\n");
    EXPECT_EQ(scheiben(o), (Namen{"Akk-OYCar-0", "Akk-OYCar-10", "Akk-OYCar-20", "Akk-OYCar-30"}));
    EXPECT_EQ(hilfen::lies(o.datei("data/Akk-OYCar-30")).rfind("Teilchenanzahl 2\nTeilchenmasse "
                                                                "1.72815e-16\nZeit 30\n", 0),
              0u);
}

TEST(Lauf, StartNachDemEndeLaeuftTrotzdem) {
    // Start 50, end 40: output times 45 and 40. The first step of 5 s is
    // clipped to -5 and lands on 45; its error is below ERRCON, so the next
    // step is 5 * -5. Clipping looks only forward, so it runs past 40 to 20,
    // where the output test takes it as the last output.
    TempOrdner o;
    std::string scheibe = zweiTeilchen;
    scheibe.replace(scheibe.find("Zeit 0"), 6, "Zeit 50");
    auto l = lauf(o, hilfen::parameter("Externforce\n"), scheibe);
    EXPECT_EQ(l.out, "Odeint: Fehler: Anfangszeitpunkt ist gr\xf6\xdf" "er als Endzeitpunkt der "
                     "Simulation !\nstep: 1 akk.t: 45\nstep: 2 akk.t: 20\nremove_count :0\n");
    EXPECT_EQ(scheiben(o), (Namen{"Akk-OYCar-0", "Akk-OYCar-20", "Akk-OYCar-45"}));
}

TEST(Lauf, EndeVorDemErstenSchritt) {
    std::string ohneIntegrator = hilfen::parameter("Externforce\n");
    ohneIntegrator.erase(ohneIntegrator.find("RungeKutta\n"), 11);
    TempOrdner a, b, c;
    auto l = lauf(a, ohneIntegrator, zweiTeilchen);
    EXPECT_EQ(l.out, "Kein Odeint initialisiert !\n\n");
    EXPECT_EQ(l.err, "");
    EXPECT_EQ(l.status, 0);
    l = lauf(b, hilfen::parameter("Externforce\nOutputfiles 0\n"), zweiTeilchen);
    EXPECT_EQ(l.out, "Odeint: Fehler: Outputfiles muss mindestens 1 sein !\n");
    l = lauf(c, hilfen::parameter("Externforce\nMaxSchritte 0\n"), zweiTeilchen);
    EXPECT_EQ(l.out + l.err, "");
    for (const TempOrdner* o : {&a, &b, &c})
        EXPECT_EQ(scheiben(*o), Namen{"Akk-OYCar-0"});
}

TEST(Lauf, FehlendeDateien) {
    TempOrdner ohneParameter, ohneScheibe;
    auto l = lauf(ohneParameter, "", zweiTeilchen);
    EXPECT_EQ(l.err, "error: unable to open parameterfile in InitPhysSystem!\n"
                     "error: unable to open parameter file in InitOdeint!\n"
                     "error: unable to open parameter file in InitRechteSeiteDG!\n");
    EXPECT_EQ(l.out, "Kein Kernel initialisiert !\n\nKein Odeint initialisiert !\n\n");
    EXPECT_EQ(l.status, 0);

    // Without a disc file the run integrates an empty disc and writes it out.
    l = lauf(ohneScheibe, hilfen::parameter("Externforce\n"), "");
    EXPECT_EQ(l.err, "error: unable to open teilchenfile in InitPhysSystem!\n"
                     "error: unable to open init file in AkkScheibe!\n");
    EXPECT_EQ(l.status, 0);
    EXPECT_EQ(scheiben(ohneScheibe), (Namen{"Akk-OYCar-20", "Akk-OYCar-40"}));
    EXPECT_EQ(hilfen::lies(ohneScheibe.datei("data/Akk-OYCar-40")),
              "Teilchenanzahl 0\nTeilchenmasse 1.72815e-16\nZeit 40\n\n\nTeilchendaten:\n\n");
}

} // namespace
