#pragma once
// The operations that differ between disc classes only in the particle type,
// written once over the particle vector: snapshot reading and writing,
// ordered removal, appending, shaping as integrator scratch space, the plain
// force preparation, cloning and the checked assignment of an accepted step.

#include "init/InitAkkScheibe.h"
#include "init/Lesen.h"
#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"
#include "scheibe/Ganzzahl.h"
#include "scheibe/Verteilung.h"
#include "scheibe/Vorrat.h"

#include <cstddef>
#include <fstream>
#include <iostream>
#include <limits>
#include <string>
#include <vector>

namespace scheibe {

// Reads a snapshot file: a header of keyword/value words up to
// "Teilchendaten:", then one line per particle with r and v (six numbers;
// the rest of the line is ignored). "Teilchenanzahl" is the desired count.
template <class P>
void _init(AkkScheibe& disc, std::vector<P>& teilchen, InitAkkScheibe& init, PhysSystem&) {
    disc.name = init.dateiname;
    std::ifstream datei(disc.name);
    if (!datei)
        std::cerr << "error: unable to open init file in AkkScheibe!\n";
    int n = 0;
    std::string wort;
    while (datei >> wort) {
        if (wort == "Teilchenanzahl")
            lies(datei, n);
        if (wort == "Zeit")
            lies(datei, disc.zeit);
        if (wort == "Teilchendaten:")
            break;
    }
    // Particles beyond the vector's size are appended only as their lines are
    // read, so a count far above the lines present allocates nothing extra.
    std::size_t gewuenscht = n > 0 ? static_cast<std::size_t>(n) : 0;
    if (teilchen.size() > gewuenscht)
        teilchen.resize(gewuenscht);
    Vektor3 puffer{};
    for (int i = 0; i < n; ++i) {
        if (!lies(datei, puffer[0])) {
            std::cout << "gew\xfc"
                         "nschte Teilchenzahl "
                      << n
                      << " ist gr\xf6\xdf"
                         "er als vorhandene Teilchen !\n";
            teilchen.resize(static_cast<std::size_t>(i));
            std::cout << "Teilchenanzahl wurde auf " << static_cast<unsigned>(teilchen.size())
                      << " gesetzt !\n";
            break;
        }
        if (static_cast<std::size_t>(i) == teilchen.size())
            teilchen.emplace_back();
        P& t = teilchen[static_cast<std::size_t>(i)];
        // Only the first number of a line is checked; a later one that does
        // not parse keeps the scratch value and ends the reading at the next line.
        lies(datei, puffer[1]);
        lies(datei, puffer[2]);
        t.r = puffer;
        lies(datei, puffer[0]);
        lies(datei, puffer[1]);
        lies(datei, puffer[2]);
        t.v = puffer;
        t.a = {0.0, 0.0, 0.0};
        datei.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
    }
}

// Name of the snapshot for the disc's time: everything up to and including
// the last "-" of the initial file's name, then the whole seconds.
inline std::string ausgabeName(const std::string& name, double zeit) {
    std::string basis = name;
    while (!basis.empty() && basis.back() != '-')
        basis.pop_back();
    return basis + std::to_string(zuInt(zeit));
}

template <class P> void _output(AkkScheibe& disc, std::vector<P>& teilchen, PhysSystem& phys) {
    std::ofstream datei(ausgabeName(disc.name, disc.zeit));
    if (!datei)
        std::cerr << "error: unable to open output file!\n";
    datei << "Teilchenanzahl " << static_cast<unsigned>(teilchen.size()) << '\n'
          << "Teilchenmasse " << phys.mTeilchen << '\n'
          << "Zeit " << disc.zeit << '\n'
          << "\n\nTeilchendaten:\n\n";
    for (const P& t : teilchen) {
        for (int k = 0; k < 3; ++k)
            datei << t.r[k] << "  ";
        for (int k = 0; k < 3; ++k)
            datei << t.v[k] << "  ";
        datei << '\n';
    }
    // A snapshot that opened but could not be written whole (a full disc)
    // must not be lost without a word.
    if (datei.is_open()) {
        datei.close();
        if (!datei)
            std::cerr << "error: unable to write output file!\n";
    }
}

// Removes particle i; the order of the others is kept.
template <class P> void _erase(std::vector<P>& teilchen, int i) {
    teilchen.erase(teilchen.begin() + i);
}

// Shapes the disc like `other` for use as scratch space: same time, same
// count (values are not copied).
// Appends a particle at r with velocity v. Everything else of the particle
// type starts at its default (no acceleration, no pairs, no density): the
// driver evaluates the forces, and with them force_init, before the particle
// is stepped. Growing the vector may move the particles, which is safe
// between steps, since pairs are valid only until the next force_init.
// In a run spread over processes only the process whose slab holds r keeps it.
template <class P>
void _append(AkkScheibe& disc, std::vector<P>& teilchen, const Vektor3& r, const Vektor3& v) {
    if (disc.verteilung && !disc.verteilung->aufnehmen(r))
        return;
    P& t = teilchen.emplace_back();
    t.r = r;
    t.v = v;
}

// The particles rearranged (AkkScheibe::ordne_teilchen). When the old
// particles kept come in ascending order (a process handing a few particles
// on and taking a few), in place: those kept move forward, then from the
// back each lands at its place among the new ones; no second copy of the
// disc is made. Else through a new vector, whose unused capacity is given
// back.
template <class P>
void _ordne(std::vector<P>& teilchen, const std::vector<long long>& folge,
            const std::vector<Vektor3>& r, const std::vector<Vektor3>& v) {
    auto neu = [&](P& t, long long k) {
        t = P{};
        t.r = r[std::size_t(-k - 1)];
        t.v = v[std::size_t(-k - 1)];
    };
    std::size_t alt = 0;
    bool aufsteigend = true;
    for (long long k : folge) {
        if (k < 0)
            continue;
        aufsteigend = aufsteigend && std::size_t(k) >= alt && std::size_t(k) < teilchen.size();
        alt = std::size_t(k) + 1;
    }
    if (!aufsteigend) {
        std::vector<P> kopie(folge.size());
        for (std::size_t k = 0; k < folge.size(); ++k) {
            if (folge[k] >= 0)
                kopie[k] = teilchen[std::size_t(folge[k])];
            else
                neu(kopie[k], folge[k]);
        }
        teilchen.swap(kopie);
        return;
    }
    std::size_t behalten = 0;
    for (long long k : folge)
        if (k >= 0)
            teilchen[behalten++] = teilchen[std::size_t(k)];
    if (folge.size() > teilchen.capacity())
        teilchen.reserve(folge.size() + folge.size() / 64);
    teilchen.resize(folge.size());
    for (std::size_t k = folge.size(); k-- > 0;) {
        if (folge[k] >= 0)
            teilchen[k] = teilchen[--behalten];
        else
            neu(teilchen[k], folge[k]);
    }
    // A process that handed most of its particles away (the start of a
    // distributed run) gives their memory back.
    if (teilchen.capacity() > 2 * teilchen.size() + 1024)
        teilchen.shrink_to_fit();
}

template <class P>
void _odeint_init(AkkScheibe& disc, std::vector<P>& teilchen, AkkScheibe& other) {
    disc.zeit = other.zeit;
    // The count drifts (stream, removal, particles handed between processes):
    // an eighth of room instead of doubling the stage copy.
    frischMitVorrat(teilchen, static_cast<std::size_t>(other.tanz()));
    teilchen.resize(static_cast<std::size_t>(other.tanz()));
}

template <class P> void _force_init(std::vector<P>& teilchen) {
    for (P& t : teilchen)
        t.init();
}

template <class T> AkkScheibe* _clone(T* disc) {
    return new T(*disc);
}

// Takes over time and particles of an accepted step; `other` must be of the
// disc's own class (std::bad_cast otherwise).
template <class T> void _odeint_assign(T& disc, AkkScheibe& other) {
    T& quelle = dynamic_cast<T&>(other);
    disc.zeit = quelle.zeit;
    frischMitVorrat(disc.teilchen, quelle.teilchen.size());
    disc.teilchen = quelle.teilchen;
}

} // namespace scheibe
