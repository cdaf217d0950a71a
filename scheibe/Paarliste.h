#pragma once

#include "physik/Kernel1.h"
#include "physik/Vektor.h"
#include "scheibe/Verteilung.h"
#include "scheibe/Vorrat.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

// The pairs of an SPH disc, kept per particle: every particle lists its
// partners in pair-list order (the order of the half-shell search over the
// cells), with what its own passes need of each pair seen from its side:
// the kernel gradient g (with respect to its own position, without dfak) and
// the artificial-viscosity factor mu of approaching partners. Nothing is
// stored once per pair: every pair term is formed where it is used, by the
// particle that sums it, with the operations of the pair's definition. Seen
// from the second partner the separation, the velocity difference and the
// gradient change sign, which IEEE arithmetic reproduces exactly (a - b is
// -(b - a), x(-y) is -(xy)), so both partners form the same terms, with the
// signs the pair's definition gives them.
//
// Particles are handled by slot (the grid's cell order) in blocks of
// `blockgroesse` slots; each block writes its partner lists into storage of
// its own, which only grows, so an evaluation in the steady state allocates
// nothing.
class Partnerliste {
public:
    static constexpr std::size_t blockgroesse = 256;
    static constexpr std::uint32_t naehert = 1u << 31; // flag of approaching partners

    struct Block {
        std::vector<std::uint32_t> partner; // partner's slot, | naehert when approaching
        std::vector<double> gx, gy, gz;     // kernel gradient seen from this side, without dfak
        std::vector<double> mu;             // h v.r / (d^2 + 0.01 h^2) when approaching
        std::vector<std::uint32_t> anfang;  // slot s of the block: entries anfang[s] .. anfang[s+1]-1

        std::size_t belegt = 0;             // entries in use (the vectors may be longer)

        void leeren() { belegt = 0; }
        // Room for n entries in all. The vectors only grow (by an eighth
        // more than asked), so an evaluation in the steady state neither
        // allocates nor fills memory it is about to overwrite.
        void erweitern(std::size_t n) {
            if (partner.size() < n) {
                const std::size_t m = n + n / 8;
                for (auto* v : {&gx, &gy, &gz, &mu})
                    v->resize(m);
                partner.resize(m);
            }
            belegt = n;
        }
    };
    // What a particle's partners read of it, by slot.
    struct Gas {
        double rho = 0, p = 0, cs = 0, temperatur = 0;
    };

    std::vector<Block> bloecke;
    // The grid's positions and velocities, by slot.
    const double *x = nullptr, *y = nullptr, *z = nullptr;
    const double *vx = nullptr, *vy = nullptr, *vz = nullptr;
    std::vector<Gas> gas;       // by slot: density, pressure, sound speed, temperature
    std::vector<Tensor6> sigma; // by slot: shear tensor (viscous discs)
    // By slot, the particles' accelerations of the last evaluation: the
    // passes write them in cell order, and the particle records (in the
    // order of the particle vector) take them over in their own order.
    std::vector<Vektor3> aPress, aArtvisc, aPhysvisc;
    std::size_t eintraege = 0;  // entries of all lists: twice the pairs
    // Passes of the gas discs already done since the search, and the terms
    // asked for so far (the first pass of an evaluation forms them all).
    unsigned erledigt = 0, gefragt = 0;
    // A run spread over processes (null: the whole disc is here): own
    // particles 0 .. eigene-1, then the ghosts; scratch of the binning.
    Verteilung* verteilung = nullptr;
    std::size_t eigene = 0;
    std::vector<std::size_t> zellen;          // cell of each own particle, (i, j, k) order
    std::vector<std::uint32_t> geisterFolge;  // ghosts by global index
    std::vector<std::uint32_t> folge;         // own particles and ghosts merged by global index

    // S = 1 + the sum of the kernel values (without fak) of slot s's pairs
    // in list order, each formed anew from the two positions.
    double summeW(std::uint32_t s, const Kernel1& kern) const {
        const Block& b = block(s);
        double S = 1.0;
        for (std::uint32_t k = erster(s), e = k + anzahl(s); k < e; ++k) {
            // self - partner: the negated separation, with the same square.
            const std::uint32_t q = b.partner[k] & ~naehert;
            double v[3] = {x[s] - x[q], y[s] - y[q], z[s] - z[q]};
            S += kern.wert(std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]), v);
        }
        return S;
    }

    std::size_t paare() const { return eintraege / 2; }
    std::size_t anzahlBloecke(std::size_t n) const {
        return (n + blockgroesse - 1) / blockgroesse;
    }
    // Storage for n particles in slot order.
    void beginne(std::size_t n) {
        const std::size_t b = anzahlBloecke(n);
        if (bloecke.size() < b)
            bloecke.resize(b);
        mitVorrat(gas, n);
        gas.resize(n);
        erledigt = 0;
    }
    const Block& block(std::uint32_t slot) const { return bloecke[slot / blockgroesse]; }
    std::uint32_t erster(std::uint32_t slot) const { return block(slot).anfang[slot % blockgroesse]; }
    std::uint32_t anzahl(std::uint32_t slot) const {
        const auto& a = block(slot).anfang;
        return a[slot % blockgroesse + 1] - a[slot % blockgroesse];
    }
};

// Scratch of one thread's pass over a particle's pairs: columns of one
// value per pair, kept between particles and evaluations.
class Paarpuffer {
public:
    // `spalten` columns of at least n values each.
    double* const* spalten(std::size_t n, std::size_t anzahl) {
        if (laenge < n || zeiger.size() < anzahl) {
            laenge = std::max(laenge, n + n / 2 + 16);
            speicher.resize(laenge * std::max(anzahl, zeiger.size()));
            zeiger.resize(std::max(anzahl, zeiger.size()));
            for (std::size_t c = 0; c < zeiger.size(); ++c)
                zeiger[c] = speicher.data() + c * laenge;
        }
        return zeiger.data();
    }

private:
    std::vector<double> speicher;
    std::vector<double*> zeiger;
    std::size_t laenge = 0;
};

// The pair list of a disc class whose pairs are of type W (the records are
// formed on request only, see _paare).
template <class W> class Paarliste : public Partnerliste {};
