#include "tools/Scheibendiagnose.h"

#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "tools/Schnappschuesse.h"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <locale>
#include <memory>
#include <ostream>

namespace diagnose {

namespace {

const double G = 3.9371199385708905e-7; // gravitational constant, R_sun^3 / (M_sun s^2)
const double pi = 3.141592653589793;
const double nan = std::numeric_limits<double>::quiet_NaN();

struct Zeile {
    std::string datei;
    Werte w;
    std::vector<long> ringe;
};

} // namespace

Werte werte(const AkkScheibe& scheibe, const PhysSystem& phys) {
    Werte w;
    w.zeit = scheibe.zeit;
    w.anzahl = static_cast<long>(scheibe.teilchen.size());
    const double om = phys.omega, om2 = om * om;
    std::vector<double> R;
    double sx = 0, sy = 0;
    // The secondary's pull on the primary, which the frame moving with the
    // primary feels as a uniform force on every particle.
    double a1[3], abstand2 = 0;
    for (int k = 0; k < 3; ++k)
        abstand2 += (phys.x2[k] - phys.x1[k]) * (phys.x2[k] - phys.x1[k]);
    for (int k = 0; k < 3; ++k)
        a1[k] = G * phys.m2 * (phys.x2[k] - phys.x1[k]) / (abstand2 * std::sqrt(abstand2));
    for (const Teilchen& t : scheibe.teilchen) {
        if (!schnappschuss::endlich(t)) {
            ++w.nichtEndlich;
            continue;
        }
        const double dx = t.r[0] - phys.x1[0], dy = t.r[1] - phys.x1[1];
        // Velocity relative to the primary in a non-rotating frame:
        // v + omega z x (r - x1), since the primary itself moves with omega z x x1.
        const double ux = t.v[0] - om * dy, uy = t.v[1] + om * dx;
        w.Lz += dx * uy - dy * ux;

        double d1 = 0, d2 = 0, r2 = 0, v2 = 0;
        for (int k = 0; k < 3; ++k) {
            d1 += (t.r[k] - phys.x1[k]) * (t.r[k] - phys.x1[k]);
            d2 += (t.r[k] - phys.x2[k]) * (t.r[k] - phys.x2[k]);
            r2 += t.r[k] * t.r[k];
            v2 += t.v[k] * t.v[k];
        }
        // Conserved for a lone particle in the rotating frame; the simulator's
        // centrifugal term acts on z as well, hence |r|^2 with z.
        w.EJ +=
            0.5 * v2 - G * phys.m1 / std::sqrt(d1) - G * phys.m2 / std::sqrt(d2) - 0.5 * om2 * r2;
        // Tidal torque: the primary's own pull is central; the gas forces
        // cancel in pairs and only move angular momentum within the disc.
        const double d2hoch3 = d2 * std::sqrt(d2);
        const double gx = -G * phys.m2 * (t.r[0] - phys.x2[0]) / d2hoch3 - a1[0];
        const double gy = -G * phys.m2 * (t.r[1] - phys.x2[1]) / d2hoch3 - a1[1];
        w.T2 += dx * gy - dy * gx;

        const double rz = std::hypot(dx, dy);
        R.push_back(rz);
        if (rz > 0) {
            sx += dx / rz;
            sy += dy / rz;
        }
    }
    if (R.empty()) {
        w.Rmittel = w.R90 = w.A1 = w.phase = nan;
        return w;
    }
    const double n = static_cast<double>(R.size());
    double summe = 0;
    for (double r : R)
        summe += r;
    w.Rmittel = summe / n;
    // The smallest radius with at least 90 % of the particles at or inside it.
    const std::size_t k = (9 * R.size() + 9) / 10 - 1;
    std::nth_element(R.begin(), R.begin() + static_cast<long>(k), R.end());
    w.R90 = R[k];
    w.A1 = std::hypot(sx, sy) / n;
    w.phase = std::atan2(sy, sx) * 180 / pi;
    return w;
}

std::vector<long> ringe(const AkkScheibe& scheibe, const PhysSystem& phys, double breite,
                        int anzahl) {
    std::vector<long> n(static_cast<std::size_t>(std::max(anzahl, 0)), 0);
    for (const Teilchen& t : scheibe.teilchen) {
        if (!schnappschuss::endlich(t))
            continue;
        const double i = std::floor(std::hypot(t.r[0] - phys.x1[0], t.r[1] - phys.x1[1]) / breite);
        if (i >= 0 && i < anzahl)
            ++n[static_cast<std::size_t>(i)];
    }
    return n;
}

const char* hilfetext() {
    return "Usage: scheibendiagnose [options] SNAPSHOT...\n"
           "\n"
           "Reads the snapshots of an akkscheibe run and writes one tab-separated table to\n"
           "standard output: a header line, then one row per snapshot in order of time.\n"
           "A SNAPSHOT is a file, a folder (every file in it named ...-<digits>) or a\n"
           "prefix such as data/Akk-OYCar- (every file named prefix<digits>).\n"
           "Units: solar masses, solar radii (Rsun), seconds.\n"
           "\n"
           "Options:\n"
           "  -p, --parameter FILE parameter file of the binary (default ./data/OYCar.parameter)\n"
           "      --profil FILE    also write the radial surface-density profile of every\n"
           "                       snapshot to FILE: one block per snapshot, blocks apart by\n"
           "                       two empty lines; columns time_s, R_in, R_out, N and\n"
           "                       Sigma = N mTeilchen / ring area [Msun/Rsun^2]\n"
           "      --ringe N        number of rings, from 0 to rMax (default 48)\n"
           "  -h, --help           this text\n"
           "\n"
           "Columns. The frame co-rotates with the binary at omega = 2 pi / period about z;\n"
           "the primary sits at x1 on +x, the secondary at x2 on -x; d = r - x1.\n"
           "  time_s          time of the snapshot\n"
           "  orbits          time / orbital period\n"
           "  N               particles in the snapshot\n"
           "  lost            N of the earliest snapshot minus N\n"
           "  Lz_total/mT     sum over the particles of the specific angular momentum about\n"
           "                  the axis through the primary parallel to z, in a non-rotating\n"
           "                  frame moving with the primary: with u = v + omega z x d (the\n"
           "                  inertial velocity v + omega z x r minus the primary's\n"
           "                  omega z x x1), Lz = d_x u_y - d_y u_x [Rsun^2/s]; times the\n"
           "                  particle mass 1.7281541e-16 Msun it is the disc's total\n"
           "  Lz_mean         Lz_total/mT / N, the mean specific angular momentum\n"
           "  R_mean          mean of R = sqrt(d_x^2 + d_y^2), the distance from that axis\n"
           "  R_90            the smallest R with 90 % of the particles at or inside it\n"
           "  EJ_total/mT     sum of the specific Jacobi energies [Rsun^2/s^2],\n"
           "                  |v|^2/2 - G m1/|r-x1| - G m2/|r-x2| - omega^2 |r|^2/2,\n"
           "                  with z in |r|^2 as in the simulator's centrifugal force\n"
           "  A1, phase1_deg  amplitude |S| / N and phase arg S in degrees of the\n"
           "                  eccentric (m = 1) mode, S = sum exp(i phi), phi = atan2(d_y, d_x);\n"
           "                  phase 0 points away from the secondary, 90 along +y\n"
           "  T2_total/mT     sum of the z torques d_x g_y - d_y g_x of the secondary about\n"
           "                  the primary's axis [Rsun^2/s^2], g = -G m2 (r-x2)/|r-x2|^3\n"
           "                  - G m2 (x2-x1)/|x2-x1|^3 (its pull on the particle minus its\n"
           "                  pull on the primary): the rate at which it changes Lz_total/mT\n"
           "                  apart from particles lost\n"
           "Particles with a coordinate that is not a finite number count in N but are\n"
           "left out of the other columns (a warning on standard error). An empty disc\n"
           "gives nan for the radii and the mode.\n"
           "\n"
           "Exit status: 0 on success, 1 for an unreadable file, 2 for bad options.\n";
}

int programm(const std::vector<std::string>& argumente, std::ostream& out, std::ostream& err) {
    std::vector<schnappschuss::Argument> optionen;
    std::vector<std::string> angaben;
    std::string fehler =
        schnappschuss::zerlege(argumente, {"-p", "--parameter", "--profil", "--ringe"},
                               {"-h", "--help"}, optionen, angaben);
    std::string parameter = "./data/OYCar.parameter", profil;
    int anzahlRinge = 48;
    for (const auto& o : optionen) {
        if (!fehler.empty())
            break;
        if (o.name == "-h" || o.name == "--help") {
            out << hilfetext();
            return 0;
        }
        if (o.name == "--ringe") {
            double n = 0;
            if (!schnappschuss::alsReal(o.wert, n) || n != std::floor(n) || n < 1 || n > 100000)
                fehler = "--ringe wants a whole number from 1 to 100000, not '" + o.wert + "'";
            else
                anzahlRinge = static_cast<int>(n);
        } else if (o.wert.empty()) {
            fehler = o.name + " wants a file name";
        } else if (o.name == "--profil") {
            profil = o.wert;
        } else {
            parameter = o.wert;
        }
    }
    std::unique_ptr<PhysSystem> phys;
    std::vector<std::string> dateien;
    if (const int status = schnappschuss::beginne("scheibendiagnose", fehler, parameter, angaben,
                                                  phys, dateien, err))
        return status;

    const double breite = phys->rMax / anzahlRinge;
    std::vector<Zeile> zeilen;
    std::vector<double> zeiten;
    for (const std::string& datei : dateien) {
        AkkScheibe scheibe;
        if (!schnappschuss::lies(datei, *phys, scheibe, err)) {
            err << "scheibendiagnose: cannot read the snapshot file " << datei
                << " (missing, unreadable or without a \"Teilchendaten:\" line)\n";
            return 1;
        }
        Zeile z{datei, werte(scheibe, *phys), {}};
        if (!profil.empty())
            z.ringe = ringe(scheibe, *phys, breite, anzahlRinge);
        if (z.w.nichtEndlich > 0)
            err << "scheibendiagnose: " << datei << ": left out " << z.w.nichtEndlich
                << " particles with coordinates that are not finite numbers\n";
        zeiten.push_back(z.w.zeit);
        zeilen.push_back(std::move(z));
    }
    const std::vector<std::size_t> folge = schnappschuss::zeitfolge(zeiten);

    const std::locale alt = out.imbue(std::locale::classic());
    const std::streamsize genauigkeit = out.precision(10);
    out << "time_s\torbits\tN\tlost\tLz_total/mT[Rsun^2/s]\tLz_mean[Rsun^2/s]\tR_mean[Rsun]\t"
           "R_90[Rsun]\tEJ_total/mT[Rsun^2/s^2]\tA1\tphase1_deg\tT2_total/mT[Rsun^2/s^2]\n";
    const long erste = zeilen[folge.front()].w.anzahl;
    for (std::size_t i : folge) {
        const Werte& w = zeilen[i].w;
        const long n = w.anzahl - w.nichtEndlich;
        out << w.zeit << '\t' << w.zeit / phys->periode << '\t' << w.anzahl << '\t'
            << erste - w.anzahl << '\t' << w.Lz << '\t'
            << (n > 0 ? w.Lz / static_cast<double>(n) : nan) << '\t' << w.Rmittel << '\t' << w.R90
            << '\t' << w.EJ << '\t' << w.A1 << '\t' << w.phase << '\t' << w.T2 << '\n';
    }
    out.precision(genauigkeit);
    out.imbue(alt);
    out.flush();

    if (!profil.empty()) {
        std::ofstream datei(profil);
        datei.imbue(std::locale::classic());
        datei.precision(10);
        datei << "time_s\tR_in[Rsun]\tR_out[Rsun]\tN\tSigma[Msun/Rsun^2]\n";
        for (std::size_t j = 0; j < folge.size(); ++j) {
            const Zeile& z = zeilen[folge[j]];
            if (j > 0)
                datei << "\n\n";
            for (std::size_t i = 0; i < z.ringe.size(); ++i) {
                const double innen = breite * static_cast<double>(i), aussen = innen + breite;
                datei << z.w.zeit << '\t' << innen << '\t' << aussen << '\t' << z.ringe[i] << '\t'
                      << static_cast<double>(z.ringe[i]) * phys->mTeilchen /
                             (pi * (aussen * aussen - innen * innen))
                      << '\n';
            }
        }
        datei.close();
        if (!datei) {
            err << "scheibendiagnose: cannot write the profile file " << profil << '\n';
            return 1;
        }
    }
    return out ? 0 : 1;
}

} // namespace diagnose
