#pragma once

#include "scheibe/Teilchen.h"
#include "scheibe/Update.h"

#include <string>
#include <vector>

class InitAkkScheibe;
class PhysSystem;
class Verteilung;

// A disc of particles; the integrator's state vector. Derived discs keep
// their own particle vector of their own particle type and leave `teilchen`
// of this class empty; every virtual operation forwards to the template
// family in scheibe/ScheibenTemplates.h for the disc's particle type.
class AkkScheibe {
public:
    std::vector<Teilchen> teilchen; // particles of a plain disc, in file order
    Update* updater = nullptr;      // hook, not owned; null by default
    // The other processes of a run spread over several; not owned. Null:
    // this disc holds every particle.
    Verteilung* verteilung = nullptr;
    double zeit = 0;                // simulated time, s
    std::string name;               // snapshot file the disc was read from

    AkkScheibe();
    // Reads the initial disc file named by `init`.
    AkkScheibe(InitAkkScheibe& init, PhysSystem& phys);
    AkkScheibe(const AkkScheibe&) = default;
    AkkScheibe& operator=(const AkkScheibe&) = default;
    virtual ~AkkScheibe();

    virtual AkkScheibe* clone();
    virtual Teilchen& operator[](int i);
    virtual int tanz();
    virtual void entferne_teilchen(int i);
    virtual void output(PhysSystem& phys);
    virtual void force_init(PhysSystem& phys);
    virtual void odeint_init(AkkScheibe& other);
    virtual void odeint_assign(AkkScheibe& other);
    // Appends a particle at r moving with v, for sources that feed the disc
    // between steps; the rest of its state is filled in by the next force_init.
    virtual void fuege_teilchen_hinzu(const Vektor3& r, const Vektor3& v);
    // Rearranges the particles: the k-th becomes old particle folge[k] when
    // folge[k] >= 0, else a new one at r[-folge[k] - 1] moving with
    // v[-folge[k] - 1] (rest of its state as when appended). For the
    // processes of a distributed run, which hand particles to each other.
    virtual void ordne_teilchen(const std::vector<long long>& folge, const std::vector<Vektor3>& r,
                                const std::vector<Vektor3>& v);

    double t() const { return zeit; }
    void t(double z) { zeit = z; }
    void set_update(Update* u) { updater = u; }
    void update();
    void processEvents();
};
