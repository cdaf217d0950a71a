#include "tools/Schnappschuesse.h"

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "tools/Scheibengenerator.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <numeric>
#include <sstream>

namespace fs = std::filesystem;

namespace schnappschuss {

namespace {

bool nurZiffern(const std::string& s) {
    return !s.empty() &&
           std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

// Snapshot files are named after the initial file: "<name>-<whole seconds>".
bool schnappschussName(const std::string& name) {
    std::size_t strich = name.rfind('-');
    return strich != std::string::npos && nurZiffern(name.substr(strich + 1));
}

bool istDatei(const fs::path& p) {
    std::error_code f;
    return fs::is_regular_file(p, f);
}

// The regular files of a folder that pass `passt`, sorted by name.
std::vector<std::string> durchsuche(const fs::path& ordner,
                                    bool (*passt)(const std::string&, const std::string&),
                                    const std::string& praefix) {
    std::vector<std::string> gefunden;
    std::error_code f;
    for (fs::directory_iterator it(ordner, f), ende; !f && it != ende; it.increment(f))
        if (istDatei(it->path()) && passt(it->path().filename().string(), praefix))
            gefunden.push_back(it->path().string());
    std::sort(gefunden.begin(), gefunden.end());
    return gefunden;
}

} // namespace

std::string leseBinaer(const std::string& parameter, std::unique_ptr<PhysSystem>& phys) {
    if (!istDatei(parameter) || !std::ifstream(parameter))
        return "cannot read the parameter file " + parameter;
    // The parameter file stands in for the disc file: the reader only looks
    // there for the particle mass entry, which PhysSystem does not take over.
    InitPhysSystem init(parameter.c_str(), parameter.c_str());
    std::string fehler = generator::pruefeBinaer(init);
    if (!fehler.empty())
        return "the parameter file " + parameter + " gives " + fehler;
    phys = std::make_unique<PhysSystem>(init, nullptr);
    return "";
}

std::string sammle(const std::vector<std::string>& angaben, std::vector<std::string>& dateien) {
    for (const std::string& angabe : angaben) {
        std::error_code f;
        const fs::path p(angabe);
        std::vector<std::string> neu;
        if (fs::is_directory(p, f)) {
            neu = durchsuche(
                p, [](const std::string& n, const std::string&) { return schnappschussName(n); },
                "");
            if (neu.empty())
                return "the folder " + angabe +
                       " holds no snapshot files (names ending in -<digits>)";
        } else if (fs::exists(p, f)) {
            neu.push_back(angabe);
        } else {
            const fs::path ordner = p.parent_path().empty() ? fs::path(".") : p.parent_path();
            neu = durchsuche(
                ordner,
                [](const std::string& n, const std::string& praefix) {
                    return n.size() > praefix.size() &&
                           n.compare(0, praefix.size(), praefix) == 0 &&
                           nurZiffern(n.substr(praefix.size()));
                },
                p.filename().string());
            if (neu.empty())
                return "no file, folder or snapshot prefix " + angabe;
        }
        for (std::string& d : neu)
            if (std::find(dateien.begin(), dateien.end(), d) == dateien.end())
                dateien.push_back(std::move(d));
    }
    if (dateien.empty())
        return "no snapshot file given";
    return "";
}

bool lies(const std::string& datei, PhysSystem& phys, AkkScheibe& scheibe,
          std::ostream& meldungen) {
    return lies(datei, meldungen, [&](InitAkkScheibe& init) { scheibe = AkkScheibe(init, phys); });
}

bool lies(const std::string& datei, std::ostream& meldungen,
          const std::function<void(InitAkkScheibe&)>& leser) {
    // Checked here: the reader itself only complains and leaves an empty disc,
    // for a missing file as for one that is no snapshot at all.
    std::ifstream probe(datei);
    std::string wort;
    while (istDatei(datei) && probe >> wort && wort != "Teilchendaten:") {
    }
    if (wort != "Teilchendaten:")
        return false;
    InitAkkScheibe init(datei.c_str(), datei.c_str());
    std::ostringstream mitschnitt;
    {
        Umleitung aus(std::cout, mitschnitt), fehler(std::cerr, mitschnitt);
        leser(init);
    }
    std::istringstream zeilen(mitschnitt.str());
    for (std::string zeile; std::getline(zeilen, zeile);)
        if (!zeile.empty())
            meldungen << datei << ": " << zeile << '\n';
    return true;
}

std::vector<std::size_t> zeitfolge(const std::vector<double>& zeiten) {
    std::vector<std::size_t> folge(zeiten.size());
    std::iota(folge.begin(), folge.end(), std::size_t{0});
    // NaN last, so that the comparison stays a strict weak order.
    std::stable_sort(folge.begin(), folge.end(), [&](std::size_t i, std::size_t j) {
        const double a = zeiten[i], b = zeiten[j];
        if (std::isnan(a) || std::isnan(b))
            return !std::isnan(a) && std::isnan(b);
        return a < b;
    });
    return folge;
}

bool endlich(const Teilchen& t) {
    if (t.r.size() < 3 || t.v.size() < 3)
        return false;
    for (int k = 0; k < 3; ++k)
        if (!std::isfinite(t.r[k]) || !std::isfinite(t.v[k]))
            return false;
    return true;
}

std::string zerlege(const std::vector<std::string>& argumente,
                    const std::vector<std::string>& mitWert,
                    const std::vector<std::string>& schalter, std::vector<Argument>& optionen,
                    std::vector<std::string>& dateien) {
    for (std::size_t i = 0; i < argumente.size(); ++i) {
        Argument a;
        a.name = argumente[i];
        if (a.name.size() < 2 || a.name[0] != '-') {
            dateien.push_back(a.name);
            continue;
        }
        if (a.name.rfind("--", 0) == 0) {
            std::size_t gleich = a.name.find('=');
            if (gleich != std::string::npos) {
                a.wert = a.name.substr(gleich + 1);
                a.name = a.name.substr(0, gleich);
                a.hatWert = true;
            }
        }
        const bool braucht = std::find(mitWert.begin(), mitWert.end(), a.name) != mitWert.end();
        const bool ohne = std::find(schalter.begin(), schalter.end(), a.name) != schalter.end();
        if (!braucht && !ohne)
            return "unknown option '" + a.name + "'";
        if (ohne && a.hatWert)
            return "option " + a.name + " takes no value";
        if (braucht && !a.hatWert) {
            if (i + 1 >= argumente.size())
                return "option " + a.name + " needs a value";
            a.wert = argumente[++i];
            a.hatWert = true;
        }
        optionen.push_back(a);
    }
    return "";
}

bool alsReal(const std::string& text, double& wert) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])))
        return false;
    char* ende = nullptr;
    errno = 0;
    const double w = std::strtod(text.c_str(), &ende);
    if (ende != text.c_str() + text.size() || errno == ERANGE || !std::isfinite(w))
        return false;
    wert = w;
    return true;
}

int beginne(const std::string& programm, std::string fehler, const std::string& parameter,
            const std::vector<std::string>& angaben, std::unique_ptr<PhysSystem>& phys,
            std::vector<std::string>& dateien, std::ostream& err,
            const std::function<std::string(const PhysSystem&)>& pruefe) {
    if (fehler.empty() && angaben.empty())
        fehler = "no snapshot given";
    if (!fehler.empty()) {
        err << programm << ": " << fehler << " (--help lists the options)\n";
        return 2;
    }
    fehler = leseBinaer(parameter, phys);
    if (fehler.empty() && pruefe)
        fehler = pruefe(*phys);
    if (fehler.empty())
        fehler = sammle(angaben, dateien);
    if (!fehler.empty()) {
        err << programm << ": " << fehler << '\n';
        return 1;
    }
    return 0;
}

} // namespace schnappschuss
