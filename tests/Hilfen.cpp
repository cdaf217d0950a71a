#include "tests/Hilfen.h"

#include <cstdlib>
#include <fstream>
#include <random>
#include <sys/wait.h>

namespace fs = std::filesystem;

namespace hilfen {

TempOrdner::TempOrdner() {
    std::random_device zufall;
    do
        p = fs::temp_directory_path() / ("akk-test-" + std::to_string(zufall()));
    while (!fs::create_directory(p));
}

TempOrdner::~TempOrdner() {
    std::error_code fehler;
    fs::remove_all(p, fehler);
}

void schreibe(const std::string& datei, const std::string& inhalt) {
    std::ofstream aus(datei, std::ios::binary);
    aus << inhalt;
}

std::string lies(const std::string& datei) {
    std::ifstream ein(datei, std::ios::binary);
    std::ostringstream s;
    s << ein.rdbuf();
    return s.str();
}

bool existiert(const std::string& datei) { return fs::exists(datei); }

long anzahl(const fs::path& ordner) {
    return std::distance(fs::directory_iterator(ordner), fs::directory_iterator());
}

void eingaben(const TempOrdner& ordner, const std::optional<std::string>& param,
              const std::optional<std::string>& scheibe) {
    fs::create_directories(ordner.pfad() / "data");
    if (param)
        schreibe(ordner.datei("data/OYCar.parameter"), *param);
    if (scheibe)
        schreibe(ordner.datei("data/Akk-OYCar-0"), *scheibe);
}

Lauf starte(const fs::path& ordner, const std::string& vor, const std::string& programm,
            const std::string& argumente) {
    std::string befehl = "cd '" + ordner.string() + "' && " + vor + "'" + programm + "' " +
                         argumente + " >stdout.txt 2>stderr.txt </dev/null";
    int roh = std::system(befehl.c_str());
    Lauf l;
    l.status = WIFEXITED(roh) ? WEXITSTATUS(roh) : -1;
    l.out = lies((ordner / "stdout.txt").string());
    l.err = lies((ordner / "stderr.txt").string());
    return l;
}

std::string parameter(const std::string& zusatz) {
    return "Outputfiles 2\nOutputtime 40\nAnfangsschrittweite 5\nMinSchrittweite 1e-12\n"
           "MaxSchritte 200\nGenauigkeit 1e-9\nRungeKutta\n"
           "Primaersternmasse 0.685\nSekundaersternmasse 0.07\nBahnperiode 5453.6\n"
           "Viskositaet 1e-6\nArtVisk_alpha 1\nArtVisk_beta 2\nSmoothinglength 0.02\nKern1\n" +
           zusatz;
}

} // namespace hilfen
