#include "bench/Szenario.h"

#include "tools/Scheibengenerator.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

namespace fs = std::filesystem;

Szenario::Szenario(long n) {
    ordner = (fs::temp_directory_path() / ("akk-bench-" + std::to_string(n))).string();
    fs::create_directories(ordner);
    parameter = ordner + "/OYCar.parameter";
    scheibe = ordner + "/Akk-OYCar-0";

    // AKK_BENCH_PARTNER=P scales h for about P partners a particle instead
    // of 34 (in a thin disc the partner count grows as h^2).
    const char* partner = std::getenv("AKK_BENCH_PARTNER");
    const double p = partner ? std::atof(partner) : 34.3;
    const double h = 0.03 * std::sqrt(3000.0 / double(n)) * std::sqrt(p / 34.3);
    std::ifstream vorlage(AKK_QUELLE "/data/OYCar.parameter");
    std::stringstream text;
    text << vorlage.rdbuf() << "\nSmoothinglength " << h << "\nAnfangsschrittweite 1\n";
    std::ofstream(parameter) << text.str();

    // The binary alone first, for the generator.
    InitPhysSystem binaer(parameter.c_str(), parameter.c_str());
    PhysSystem physBinaer(binaer, nullptr);
    generator::Optionen o;
    o.anzahl = n;
    o.hoehe = 0.01 * h; // flat enough that no particle reaches the border cells in z
    std::ofstream aus(scheibe);
    generator::schreibe(aus, generator::erzeuge(o, physBinaer), physBinaer.mTeilchen);
    aus.close();

    initPhys = std::make_unique<InitPhysSystem>(parameter.c_str(), scheibe.c_str());
    kernel = std::make_unique<Kernel1>(*initPhys);
    phys = std::make_unique<PhysSystem>(*initPhys, kernel.get());
    initScheibe = std::make_unique<InitAkkScheibe>(parameter.c_str(), scheibe.c_str());
    initOdeint = std::make_unique<InitOdeint>(parameter.c_str());
}

Szenario::~Szenario() {
    std::error_code fehler;
    fs::remove_all(ordner, fehler);
}
