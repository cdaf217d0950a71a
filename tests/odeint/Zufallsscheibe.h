#pragma once
// A random gas disc as snapshot text and as a viscous disc under all four forces; thread counts.

#include "init/InitOdeint.h"
#include "kraefte/Artvisc.h"
#include "kraefte/Externforce.h"
#include "kraefte/Kraefte.h"
#include "kraefte/Physvisc.h"
#include "kraefte/Pressure.h"
#include "scheibe/Faeden.h"
#include "scheibe/PhysviscAkkScheibe.h"
#include "tests/Hilfen.h"

#include <cmath>
#include <omp.h>
#include <random>
#include <sstream>
#include <string>

namespace hilfen {

// 4000 particles on near-Kepler orbits 0.08 to 0.3 from the primary (x = 0.0649), heights +-0.01,
// a tenth beyond the grid box in z (|z| > 0.043), a few in x; at h = 0.02 some 15 partners each.
inline std::string zufallsscheibe(unsigned seed) {
    std::mt19937_64 zufall(seed);
    std::uniform_real_distribution<double> u(0, 1);
    std::ostringstream f;
    const int n = 4000;
    f << "Teilchenanzahl " << n << "\nZeit 0\n\n\nTeilchendaten:\n\n";
    f.precision(17);
    for (int i = 0; i < n; ++i) {
        const double R = 0.08 + 0.22 * u(zufall), phi = 6.283185307179586 * u(zufall);
        double z = 0.02 * (u(zufall) - 0.5);
        if (i % 10 == 0)
            z *= 6;
        const double x = 0.0649 + R * std::cos(phi) + (i % 500 == 0 ? 0.5 : 0.0);
        const double vk = std::sqrt(3.9371199385708905e-7 * 0.685 / R);
        f << x << ' ' << R * std::sin(phi) << ' ' << z << ' ' << -vk * std::sin(phi) * u(zufall)
          << ' ' << vk * std::cos(phi) << ' ' << 1e-6 * (u(zufall) - 0.5) << '\n';
    }
    return f.str();
}

// zufallsscheibe(seed) read as a viscous gas disc, with the four forces.
struct Zufallslauf : Aufbau {
    InitOdeint io{param.c_str()};
    PhysviscAkkScheibe s{ia, phys};
    Kraefte k;
    Zufallslauf(const std::string& zusatz, unsigned seed) : Aufbau(zusatz, zufallsscheibe(seed)) {
        for (RechteSeiteDG* kraft : std::initializer_list<RechteSeiteDG*>{
                 new Externforce, new Pressure, new Artvisc, new Physvisc})
            k.add(kraft);
    }
};

// OpenMP's thread count for the object's life, every loop spread however little work it has.
struct Fadenzahl {
    const int vorher = omp_get_max_threads();
    const double schwelle = scheibe::schwelleNs;
    explicit Fadenzahl(int n) { omp_set_num_threads(n), scheibe::schwelleNs = 0; }
    ~Fadenzahl() { omp_set_num_threads(vorher), scheibe::schwelleNs = schwelle; }
};

} // namespace hilfen
