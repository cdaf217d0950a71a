#include "tools/Scheibengenerator.h"

#include "init/InitPhysSystem.h"
#include "init/Text.h"
#include "physik/PhysSystem.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <locale>
#include <ostream>
#include <sstream>

namespace generator {

namespace {

const double G = 3.9371199385708905e-7; // gravitational constant, R_sun^3 / (M_sun s^2)
const double pi = 3.141592653589793;
const long maxAnzahl = 10000000; // beyond this the file alone would exceed 700 MB

bool alsReal(const std::string& text, double& wert) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0])))
        return false;
    char* ende = nullptr;
    errno = 0;
    double w = std::strtod(text.c_str(), &ende);
    if (ende != text.c_str() + text.size() || errno == ERANGE || !std::isfinite(w))
        return false;
    wert = w;
    return true;
}

} // namespace

std::string leseOptionen(const std::vector<std::string>& argumente, Optionen& o) {
    for (std::size_t i = 0; i < argumente.size(); ++i) {
        std::string name = argumente[i];
        std::string wert;
        bool wertDabei = false;
        if (name.rfind("--", 0) == 0) {
            std::size_t gleich = name.find('=');
            if (gleich != std::string::npos) {
                wert = name.substr(gleich + 1);
                name = name.substr(0, gleich);
                wertDabei = true;
            }
        }
        if (name == "-h" || name == "--help") {
            o.hilfe = true;
            return "";
        }
        static const char* const bekannt[] = {"-n", "--anzahl", "--innen", "--aussen",
                                              "--hoehe", "--steigung", "--seed", "-o",
                                              "--ausgabe", "-p", "--parameter"};
        if (std::find(std::begin(bekannt), std::end(bekannt), name) == std::end(bekannt)) {
            if (name.empty() || name[0] != '-')
                return "unexpected argument '" + argumente[i] + "'";
            return "unknown option '" + name + "'";
        }
        if (!wertDabei) {
            if (i + 1 >= argumente.size())
                return "option " + name + " needs a value";
            wert = argumente[++i];
        }

        if (name == "-n" || name == "--anzahl") {
            unsigned long long n = 0;
            if (!alsGanz(wert, n) || n < 1 || n > static_cast<unsigned long long>(maxAnzahl))
                return name + " wants a whole number from 1 to " + std::to_string(maxAnzahl) +
                       ", not '" + wert + "'";
            o.anzahl = static_cast<long>(n);
        } else if (name == "--seed") {
            unsigned long long s = 0;
            if (!alsGanz(wert, s))
                return "--seed wants a non-negative whole number below 2^64, not '" + wert + "'";
            o.seed = s;
        } else if (name == "-o" || name == "--ausgabe") {
            if (wert.empty())
                return name + " wants a file name";
            o.ausgabe = wert;
        } else if (name == "-p" || name == "--parameter") {
            if (wert.empty())
                return name + " wants a file name";
            o.parameter = wert;
        } else {
            double x = 0;
            if (!alsReal(wert, x))
                return name + " wants a finite number, not '" + wert + "'";
            if (name == "--innen")
                o.innen = x;
            else if (name == "--aussen")
                o.aussen = x;
            else if (name == "--hoehe")
                o.hoehe = x;
            else
                o.steigung = x;
        }
    }
    if (!(o.innen > 0))
        return "the inner radius (--innen) must be positive";
    if (!(o.aussen > o.innen))
        return "the outer radius (--aussen) must be larger than the inner radius (--innen)";
    if (!(o.hoehe >= 0 && o.hoehe < o.aussen))
        return "the scale height (--hoehe) must be at least 0 and below the outer radius";
    return "";
}

std::string pruefeBinaer(const InitPhysSystem& init) {
    if (!(init.Primaersternmasse > 0) || !std::isfinite(init.Primaersternmasse))
        return "no positive Primaersternmasse";
    if (!(init.Sekundaersternmasse >= 0) || !std::isfinite(init.Sekundaersternmasse))
        return "no non-negative Sekundaersternmasse";
    if (!(init.Bahnperiode > 0) || !std::isfinite(init.Bahnperiode))
        return "no positive Bahnperiode";
    return "";
}

std::string pruefeScheibe(const Optionen& o, const PhysSystem& phys) {
    // Particles inside eta or beyond rMax would be taken out at the first step.
    if (o.innen < phys.eta)
        return "inner radius " + zahl(o.innen) + " lies inside the removal radius " +
               zahl(phys.eta) + " around the primary";
    if (o.aussen >= phys.rMax)
        return "outer radius " + zahl(o.aussen) + " reaches the removal radius " +
               zahl(phys.rMax) + " (1.1 times the distance from the primary to L1)";
    return "";
}

double gleichverteilt(std::mt19937_64& zufall) {
    return static_cast<double>(zufall() >> 11) * (1.0 / 9007199254740992.0); // 2^-53
}

double normalverteilt(std::mt19937_64& zufall) {
    double u1 = 1.0 - gleichverteilt(zufall); // in (0, 1], so the logarithm is finite
    double u2 = gleichverteilt(zufall);
    return std::sqrt(-2.0 * std::log(u1)) * std::cos(2.0 * pi * u2);
}

std::vector<Punkt> erzeuge(const Optionen& o, const PhysSystem& phys) {
    std::mt19937_64 zufall(o.seed);
    // Sigma ~ R^-p puts dN ~ R^(1-p) dR particles in a ring; the inverse of
    // its cumulative distribution maps a uniform u to R. With k = 2 - p:
    // R^k = Rin^k + u (Rout^k - Rin^k), and for p = 2 R is uniform in ln R.
    // Divided by the larger of Rin^k and Rout^k, the bracket stays in (0, 1]
    // and cannot overflow however steep the profile.
    const double k = 2.0 - o.steigung;
    const bool logarithmisch = std::fabs(k) < 1e-6;
    const double bezug = k > 0 ? o.aussen : o.innen;
    const double q = logarithmisch ? 0.0 : std::pow((k > 0 ? o.innen : o.aussen) / bezug, k);
    const double lnVerhaeltnis = std::log(o.aussen / o.innen);
    const double Gm1 = G * phys.m1;

    std::vector<Punkt> teilchen(static_cast<std::size_t>(o.anzahl));
    for (Punkt& p : teilchen) {
        double u = gleichverteilt(zufall);
        double R;
        if (logarithmisch)
            R = o.innen * std::exp(u * lnVerhaeltnis);
        else if (k > 0) // (R / Rout)^k = q + u (1 - q), q = (Rin / Rout)^k
            R = bezug * std::pow(q + u * (1.0 - q), 1.0 / k);
        else // (R / Rin)^k = 1 - u (1 - q), q = (Rout / Rin)^k
            R = bezug * std::pow(1.0 - u * (1.0 - q), 1.0 / k);
        R = std::min(std::max(R, o.innen), o.aussen); // rounding at the ends only
        double phi = 2.0 * pi * gleichverteilt(zufall);
        double z = o.hoehe * normalverteilt(zufall);

        const double d[3] = {R * std::cos(phi), R * std::sin(phi), z}; // from the primary
        const double abstand = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
        // Circular prograde orbit about the primary: sqrt(G m1 / |d|) times
        // z x d / |d|. Off the midplane that unit is shortened to R / |d|,
        // which leaves the speed whose centripetal acceleration is the pull
        // towards the axis: v^2 / R = G m1 R / |d|^3. The frame turns with
        // omega, so the velocity seen in it lacks omega z x d.
        const double kepler = std::sqrt(Gm1 / abstand);
        const double zxd[3] = {-d[1], d[0], 0.0};
        for (int i = 0; i < 3; ++i) {
            p.r[i] = phys.x1[i] + d[i];
            p.v[i] = kepler * (zxd[i] / abstand) - phys.omega * zxd[i];
        }
    }
    return teilchen;
}

void schreibe(std::ostream& aus, const std::vector<Punkt>& teilchen, double mTeilchen) {
    // Default formatting (six significant digits) in the "C" locale, as the
    // simulator writes its snapshots; the caller's stream state is restored.
    const std::ios::fmtflags flags = aus.flags(std::ios::dec | std::ios::skipws);
    const std::streamsize genauigkeit = aus.precision(6);
    aus.width(0);
    const std::locale alt = aus.imbue(std::locale::classic());

    aus << "Teilchenanzahl " << static_cast<unsigned>(teilchen.size()) << '\n'
        << "Teilchenmasse " << mTeilchen << '\n'
        << "Zeit " << 0 << '\n'
        << "\n\nTeilchendaten:\n\n";
    for (const Punkt& p : teilchen) {
        for (double x : p.r)
            aus << x << "  ";
        for (double x : p.v)
            aus << x << "  ";
        aus << '\n';
    }

    aus.imbue(alt);
    aus.precision(genauigkeit);
    aus.flags(flags);
}

const char* hilfetext() {
    return "Usage: scheibengenerator [options]\n"
           "\n"
           "Writes an initial disc for akkscheibe: particles on prograde circular Kepler\n"
           "orbits around the primary star, in the frame that co-rotates with the binary.\n"
           "The binary (Primaersternmasse, Sekundaersternmasse, Bahnperiode) comes from\n"
           "the parameter file. Units: solar masses, solar radii, seconds.\n"
           "\n"
           "Options (a value may also be attached as --option=value):\n"
           "  -n, --anzahl N       number of particles, 1 to 10000000 (default 3000)\n"
           "      --innen R        inner radius around the primary (default 0.08)\n"
           "      --aussen R       outer radius around the primary (default 0.3)\n"
           "      --hoehe H        Gaussian scale height in z, the standard deviation\n"
           "                       of the heights, below the outer radius; 0 gives\n"
           "                       a flat disc (default 0.0015)\n"
           "      --steigung P     surface density Sigma ~ R^-P between the radii\n"
           "                       (default 0.75)\n"
           "      --seed S         seed of the random numbers, 0 to 2^64-1 (default 1)\n"
           "  -o, --ausgabe FILE   output file; without it, or with -, standard output\n"
           "  -p, --parameter FILE parameter file of the binary\n"
           "                       (default ./data/OYCar.parameter)\n"
           "  -h, --help           this text\n"
           "\n"
           "Radii are distances from the primary in the orbital plane; a particle at\n"
           "offset d from the primary moves with v = sqrt(G m1/|d|) (z x d)/|d| - omega z x d.\n"
           "The inner radius must be at least the removal radius 0.05 around the primary\n"
           "and the outer radius below the outer removal radius of the binary.\n"
           "The same options and seed give the same file, byte for byte (64-bit\n"
           "Mersenne Twister with transforms of its own). The file is a snapshot at\n"
           "time 0: \"Teilchenanzahl\", \"Teilchenmasse\", \"Zeit\", then one line per\n"
           "particle with x y z vx vy vz, six significant digits.\n"
           "\n"
           "Exit status: 0 on success, 1 for an unreadable parameter file or unwritable\n"
           "output, 2 for bad options.\n";
}

int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err) {
    Optionen o;
    std::string fehler = leseOptionen(argumente, o);
    if (!fehler.empty()) {
        err << "scheibengenerator: " << fehler << " (--help lists the options)\n";
        return 2;
    }
    if (o.hilfe) {
        out << hilfetext();
        return 0;
    }
    if (!std::ifstream(o.parameter)) {
        err << "scheibengenerator: cannot read the parameter file " << o.parameter << '\n';
        return 1;
    }
    // The parameter file stands in for the disc file too: the reader only
    // looks there for a particle mass entry, which it does not need here.
    InitPhysSystem init(o.parameter.c_str(), o.parameter.c_str());
    fehler = pruefeBinaer(init);
    if (!fehler.empty()) {
        err << "scheibengenerator: the parameter file " << o.parameter << " gives " << fehler
            << '\n';
        return 1;
    }
    PhysSystem phys(init, nullptr);
    fehler = pruefeScheibe(o, phys);
    if (!fehler.empty()) {
        err << "scheibengenerator: " << fehler << '\n';
        return 2;
    }

    const std::vector<Punkt> teilchen = erzeuge(o, phys);
    if (o.ausgabe.empty() || o.ausgabe == "-") {
        schreibe(out, teilchen, phys.mTeilchen);
        out.flush();
        if (!out) {
            err << "scheibengenerator: writing to standard output failed\n";
            return 1;
        }
        return 0;
    }
    std::ofstream datei(o.ausgabe, std::ios::binary);
    if (!datei) {
        err << "scheibengenerator: cannot write the output file " << o.ausgabe << '\n';
        return 1;
    }
    schreibe(datei, teilchen, phys.mTeilchen);
    datei.close();
    if (!datei) {
        err << "scheibengenerator: writing the output file " << o.ausgabe << " failed\n";
        return 1;
    }
    return 0;
}

} // namespace generator
