#pragma once

#include "physik/Vektor.h"
#include "scheibe/Teilchen.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

class AkkScheibe;
class PhysSystem;

// Where the particles of a disc live when one run is spread over several
// processes (verteilt/). Each process owns the particles of a slab of cell
// planes and keeps them in their global order; what the disc and the driver
// need of the others goes through this interface. A disc without one (the
// default) holds every particle itself, and no line of its arithmetic
// depends on whether it has one: the distribution only decides which
// process forms which particle's sums, each with the same operations on
// the same terms in the same order.
class Verteilung {
public:
    // A removed particle: its index in the global order before the step's
    // removals, and its squared distance from the primary.
    struct Entfernt {
        std::uint64_t index;
        double abstand;
    };

    virtual ~Verteilung() = default;

    // Whether this process reads the initial disc (process 0 alone; the
    // others start from an empty one).
    virtual bool liest() const = 0;
    // At the start, or when a checkpoint was read: process 0's disc is the
    // whole one; each process receives the particles of its slab (the
    // others' discs are replaced), and the disc learns of its processes.
    // False (and a message on standard output) when the disc cannot be split
    // over this many processes.
    virtual bool verteilen(AkkScheibe& scheibe) = 0;

    // This process's number (0 speaks and writes) and the number of processes.
    virtual int rang() const = 0;
    virtual int prozesse() const = 0;
    // Particles of all processes.
    virtual std::uint64_t gesamt() const = 0;

    // Before an evaluation: the own particles' cells (by local index; cell
    // (i, j, k) of the grid is (i ny + j) nz + k) decide which of them the
    // other processes need; lies(i, rv) gives r and v of own particle i.
    // Afterwards geister() particles of the other processes are at hand,
    // with r and v (geistRV(j), six doubles) and their global indices
    // (geistIndex(j)).
    virtual void geisterHolen(const std::vector<std::size_t>& zellen,
                              const std::function<void(std::size_t, double*)>& lies) = 0;
    virtual std::size_t geister() const = 0;
    virtual const double* geistRV(std::size_t j) const = 0;
    virtual std::uint64_t geistIndex(std::size_t j) const = 0;
    // Global index of own particle i.
    virtual std::uint64_t index(std::size_t i) const = 0;
    // k values per particle, from the own particles that went out as ghosts
    // in the last geisterHolen (lies(i, w)) to the ghosts (schreibe(j, w)).
    virtual void werteTauschen(std::size_t k, const std::function<void(std::size_t, double*)>& lies,
                               const std::function<void(std::size_t, const double*)>& schreibe) = 0;

    // An array of k values per own particle, in the particles' local order,
    // that goes with them when they move to another process or are
    // removed (an integrator's accelerations); not owned. An array whose
    // length does not match the particles is emptied instead.
    virtual void begleite(std::vector<double>* werte, std::size_t k) = 0;
    // k values per own particle (local order) of every process, in global
    // order on process 0; empty elsewhere.
    virtual std::vector<double> sammleWerte(const std::vector<double>& werte, std::size_t k) = 0;

    // Process 0's bytes, on every process.
    virtual void teile(std::string& bytes) = 0;

    // Sum of an integer count and maximum of a value over the processes:
    // both exact in any order.
    virtual std::uint64_t summe(std::uint64_t wert) = 0;
    virtual double maximum(double wert) = 0;
    virtual double minimum(double wert) = 0;

    // Removes the own particles for which raus(t, abstand) holds and
    // returns the removals of all processes in global order.
    virtual std::vector<Entfernt>
    entferne(AkkScheibe& scheibe, const std::function<bool(const Teilchen&, double&)>& raus) = 0;
    // The whole disc's particles (r and v) in global order on process 0,
    // empty elsewhere.
    virtual std::vector<Teilchen> sammeln(AkkScheibe& scheibe) = 0;
    // Writes the snapshot of the whole disc (process 0, in global order).
    virtual void ausgeben(AkkScheibe& scheibe, PhysSystem& phys) = 0;
    // A particle appended at r: true when it is this process's.
    virtual bool aufnehmen(const Vektor3& r) = 0;
    // Between steps: particles whose cell moved to another process's slab
    // go there; with ausgleichen the slabs are first drawn anew from the
    // particle counts.
    virtual void umverteilen(AkkScheibe& scheibe, bool ausgleichen) = 0;
};
