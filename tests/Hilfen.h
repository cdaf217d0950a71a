#pragma once
// Test helpers: scratch folders, files, captured streams, runs, the default binary from files.

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"

#include <filesystem>
#include <iostream>
#include <optional>
#include <sstream>
#include <string>

namespace hilfen {

// A fresh empty folder under the system's temporary folder, removed with the object.
class TempOrdner {
public:
    TempOrdner();
    ~TempOrdner();
    TempOrdner(const TempOrdner&) = delete;
    TempOrdner& operator=(const TempOrdner&) = delete;
    const std::filesystem::path& pfad() const { return p; }
    std::string datei(const std::string& name) const { return (p / name).string(); }

private:
    std::filesystem::path p;
};

void schreibe(const std::string& datei, const std::string& inhalt);
std::string lies(const std::string& datei);
bool existiert(const std::string& datei);
// Number of entries in a folder.
long anzahl(const std::filesystem::path& ordner);

// Redirects a stream into a string for the object's life.
class Mitschnitt {
public:
    explicit Mitschnitt(std::ostream& s) : strom(s), alt(s.rdbuf(puffer.rdbuf())) {}
    ~Mitschnitt() { strom.rdbuf(alt); }
    Mitschnitt(const Mitschnitt&) = delete;
    Mitschnitt& operator=(const Mitschnitt&) = delete;
    std::string text() const { return puffer.str(); }

private:
    std::ostream& strom;
    std::ostringstream puffer;
    std::streambuf* alt;
};

// What one run of the executable printed and returned.
struct Lauf {
    std::string out, err;
    int status;
};

// Runs an executable (the simulator, which reads ordner/data/OYCar.parameter and
// ordner/data/Akk-OYCar-0) in `ordner`; `vor` and `argumente` are shell text put before and
// after the program, e.g. "ulimit -v 1000000 && timeout 60 ".
Lauf starte(const std::filesystem::path& ordner, const std::string& vor = "",
            const std::string& programm = AKK_PROGRAMM, const std::string& argumente = "");

// A parameter file with every key of a test-particle run around the default binary; `zusatz`
// is appended (forces, switches, overrides: the last occurrence of a key wins).
std::string parameter(const std::string& zusatz);

// The input files of a run in ordner/data (created), each left out when nullopt.
void eingaben(const TempOrdner& ordner, const std::optional<std::string>& param,
              const std::optional<std::string>& scheibe);

// A parameter file parameter(zusatz) and a disc file in a scratch folder.
struct Dateien : TempOrdner {
    std::string param = datei("p"), disc = datei("Akk-0");
    explicit Dateien(const std::string& zusatz = "",
                     const std::string& scheibe = "Teilchenanzahl 0 Teilchendaten:\n") {
        schreibe(param, parameter(zusatz));
        schreibe(disc, scheibe);
    }
};

// The binary with its kernel, and the disc reader, on those files.
struct Aufbau : Dateien {
    InitPhysSystem ip{param.c_str(), disc.c_str()};
    Kernel1 kernel{ip};
    PhysSystem phys{ip, &kernel};
    InitAkkScheibe ia{param.c_str(), disc.c_str()};
    using Dateien::Dateien;
};

// The binary and the integrator's settings without files: the readers only complain.
struct OhneDateien {
    Mitschnitt still{std::cerr};
    InitOdeint io{""};
    InitPhysSystem ip{"", ""};
    PhysSystem phys{ip, nullptr};
};

} // namespace hilfen
