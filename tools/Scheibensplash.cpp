#include "tools/Scheibensplash.h"

#include "init/InitAkkScheibe.h"
#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"
#include "scheibe/SphAkkScheibe.h"
#include "tools/Schnappschuesse.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <locale>
#include <memory>
#include <ostream>
#include <sstream>

namespace splash {

namespace fs = std::filesystem;

// splash's settings for the files of this folder: the time legend ("t [s]=")
// and the tick marks inside the picture in white, as the rendered disc is
// black around them, and the legend opaque. The other groups are left empty
// for splash's own defaults.
const char* const splashEinstellungen = "&DATAOPTS\n /\n&PLOTOPTS\n /\n"
                                        "&PAGEOPTS\n"
                                        " IUSEBACKGROUNDCOLOURFORAXES=T,\n"
                                        " ALPHALEGEND=1.0,\n"
                                        " LEGENDTEXT='t [s]=',\n"
                                        " /\n"
                                        "&RENDEROPTS\n /\n&VECTOROPTS\n /\n&XSECROTOPTS\n /\n"
                                        "&POWERSPECOPTS\n /\n&EXACTOPTS\n /\n&EXACTPARAMS\n /\n"
                                        "&MULTI\n /\n&SHAPEOPTS\n /\n&CALCOPTS\n /\n&ANIMOPTS\n /\n";

const std::vector<std::string>& spalten() {
    static const std::vector<std::string> s = {"x", "y", "z", "vx", "vy", "vz", "h", "m", "density"};
    return s;
}

bool lies(const std::string& datei, PhysSystem& phys, Tabelle& tabelle, std::ostream& meldungen) {
    std::unique_ptr<SphAkkScheibe> scheibe;
    if (!schnappschuss::lies(datei, meldungen, [&](InitAkkScheibe& init) {
            scheibe = std::make_unique<SphAkkScheibe>(init, phys);
        }))
        return false;
    tabelle = Tabelle{};
    tabelle.zeit = scheibe->zeit;
    // A particle that is not a number would only be clamped into a border
    // cell by the pair search; it has no place in a picture either.
    for (int i = scheibe->tanz() - 1; i >= 0; --i)
        if (!schnappschuss::endlich((*scheibe)[i])) {
            scheibe->entferne_teilchen(i);
            ++tabelle.weggelassen;
        }
    {
        std::ostringstream paarzahl; // the pair count the disc prints
        schnappschuss::Umleitung still(std::cout, paarzahl);
        scheibe->force_init(phys);
    }
    // splash's cubic spline W(r/h) reaches to 2h, the simulator's to its
    // smoothing length: the same kernel when splash's h is half of it.
    const double hSplash = phys.h / 2;
    for (const SphTeilchen& t : scheibe->teilchen) {
        Zeile z;
        for (int k = 0; k < 3; ++k)
            z.r[k] = t.r[k], z.v[k] = t.v[k];
        z.h = hSplash;
        z.m = phys.mTeilchen;
        z.rho = t.rho;
        tabelle.zeilen.push_back(z);
    }
    return true;
}

void schreibe(std::ostream& aus, const Tabelle& tabelle, const std::string& quelle) {
    const std::locale alt = aus.imbue(std::locale::classic());
    const std::streamsize genauigkeit = aus.precision(10);
    aus << "# akkscheibe snapshot " << quelle << ": " << tabelle.zeilen.size()
        << " particles; solar masses, solar radii, seconds\n";
    // splash takes a header line "# <number with a point> time" for the time.
    aus << "#  " << std::showpoint << tabelle.zeit << std::noshowpoint << "  time [s]\n";
    aus << "#";
    for (const std::string& s : spalten())
        aus << "  " << s;
    aus << '\n';
    for (const Zeile& z : tabelle.zeilen) {
        for (double w : {z.r[0], z.r[1], z.r[2], z.v[0], z.v[1], z.v[2], z.h, z.m})
            aus << w << "  ";
        aus << z.rho << '\n';
    }
    aus.precision(genauigkeit);
    aus.imbue(alt);
}

const char* hilfetext() {
    return "Usage: scheibensplash [options] SNAPSHOT...\n"
           "\n"
           "Writes snapshots of an akkscheibe run as ASCII tables for splash, the SPH\n"
           "visualisation tool: for each SNAPSHOT the file <snapshot name>.dat, and once\n"
           "the file 'columns' with the column labels, which splash takes from the\n"
           "folder it is started in. A SNAPSHOT is a file, a folder (every file in it\n"
           "named ...-<digits>) or a prefix such as data/Akk-OYCar- (every file named\n"
           "prefix<digits>). Then, for instance:\n"
           "  cd splash && splash -r density -dev /png Akk-OYCar-1000.dat\n"
           "renders the column density face-on into splash.png (without -dev in a\n"
           "window; several tables give splash_0000.png, ...).\n"
           "Units: solar masses, solar radii (Rsun), seconds.\n"
           "\n"
           "Options (a value may also be attached as --option=value):\n"
           "  -p, --parameter FILE parameter file of the binary and the smoothing length\n"
           "                       (default ./data/OYCar.parameter)\n"
           "  -o, --ausgabe FOLDER folder for the tables and 'columns', made if missing\n"
           "                       (default ./splash)\n"
           "  -h, --help           this text\n"
           "\n"
           "Columns, one line per particle in file order:\n"
           "  x y z       position in the frame co-rotating with the binary [Rsun]\n"
           "  vx vy vz    velocity in that frame [Rsun/s]\n"
           "  h           smoothing length in splash's convention: half the\n"
           "              Smoothinglength of the parameter file, since splash's cubic\n"
           "              spline reaches to 2h and the simulator's (the same function) to\n"
           "              its smoothing length [Rsun]\n"
           "  m           particle mass, 1.7281541e-16 Msun\n"
           "  density     SPH density as the simulator computes it before each force\n"
           "              evaluation, with its own cell grid and pair search:\n"
           "              m 8/(pi H^3) (1 + sum over the partners closer than H of\n"
           "              w(r/H)), w(q) = 1 - 6q^2 + 6q^3 up to q = 1/2, 2(1-q)^3 beyond,\n"
           "              H the Smoothinglength [Msun/Rsun^3]\n"
           "The header lines begin with '#'; the second holds the time as splash reads\n"
           "it: '# T time [s]', T with a decimal point.\n"
           "The folder also gets 'splash.defaults', splash's settings, when it has none:\n"
           "the time legend and the ticks inside the picture in white. splash overwrites\n"
           "it when settings are saved from its menu.\n"
           "Particles with a coordinate that is not a finite number are left out (a\n"
           "warning on standard error).\n"
           "\n"
           "Exit status: 0 on success, 1 for an unreadable or unwritable file or a\n"
           "parameter file without a smoothing length, 2 for bad options.\n";
}

int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err) {
    std::vector<schnappschuss::Argument> optionen;
    std::vector<std::string> angaben;
    std::string fehler = schnappschuss::zerlege(
        argumente, {"-p", "--parameter", "-o", "--ausgabe"}, {"-h", "--help"}, optionen, angaben);
    std::string parameter = "./data/OYCar.parameter", ordner = "splash";
    for (const auto& o : optionen) {
        if (!fehler.empty())
            break;
        if (o.name == "-h" || o.name == "--help") {
            out << hilfetext();
            return 0;
        }
        if (o.wert.empty())
            fehler = o.name + " wants a " + (o.name == "-o" || o.name == "--ausgabe" ? "folder" : "file") +
                     " name";
        (o.name == "-p" || o.name == "--parameter" ? parameter : ordner) = o.wert;
    }
    std::unique_ptr<PhysSystem> phys;
    std::vector<std::string> dateien;
    auto mitGlaettung = [&](const PhysSystem& p) -> std::string {
        if (p.h > 0 && std::isfinite(p.h))
            return "";
        return "the parameter file " + parameter +
               " gives no Smoothinglength above 0, which the SPH density needs";
    };
    if (const int status = schnappschuss::beginne("scheibensplash", fehler, parameter, angaben,
                                                  phys, dateien, err, mitGlaettung))
        return status;
    // The density is defined with the cubic spline, the simulator's kernel.
    InitPhysSystem init(parameter.c_str(), parameter.c_str());
    Kernel1 kernel(init);
    phys->kernel = &kernel;

    std::error_code f;
    fs::create_directories(ordner, f);
    if (!fs::is_directory(ordner, f)) {
        err << "scheibensplash: cannot make the folder " << ordner << '\n';
        return 1;
    }
    auto schreibeDatei = [&](const std::string& ziel, auto inhalt) {
        std::ofstream aus(ziel);
        inhalt(aus);
        aus.close();
        if (!aus) {
            err << "scheibensplash: cannot write " << ziel << '\n';
            return false;
        }
        return true;
    };
    const std::string spaltenDatei = (fs::path(ordner) / "columns").string();
    if (!schreibeDatei(spaltenDatei, [](std::ostream& aus) {
            for (const std::string& s : spalten())
                aus << s << '\n';
        }))
        return 1;
    // Only when missing: settings saved from within splash stay.
    const std::string einstellungen = (fs::path(ordner) / "splash.defaults").string();
    if (!fs::exists(einstellungen, f) &&
        !schreibeDatei(einstellungen, [](std::ostream& aus) { aus << splashEinstellungen; }))
        return 1;
    std::vector<std::string> ziele;
    for (const std::string& datei : dateien) {
        const std::string ziel =
            (fs::path(ordner) / (fs::path(datei).filename().string() + ".dat")).string();
        if (std::find(ziele.begin(), ziele.end(), ziel) != ziele.end()) {
            err << "scheibensplash: two snapshots named " << fs::path(datei).filename().string()
                << ": the second would overwrite " << ziel << '\n';
            return 1;
        }
        ziele.push_back(ziel);
        Tabelle tabelle;
        if (!lies(datei, *phys, tabelle, err)) {
            err << "scheibensplash: cannot read the snapshot file " << datei
                << " (missing, unreadable or without a \"Teilchendaten:\" line)\n";
            return 1;
        }
        if (tabelle.weggelassen > 0)
            err << "scheibensplash: " << datei << ": left out " << tabelle.weggelassen
                << " particles with coordinates that are not finite numbers\n";
        if (!schreibeDatei(ziel, [&](std::ostream& aus) { schreibe(aus, tabelle, datei); }))
            return 1;
        out << ziel << '\n';
    }
    return 0;
}

} // namespace splash
