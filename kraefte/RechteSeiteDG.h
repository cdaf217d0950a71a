#pragma once

class AkkScheibe;
class InitAkkScheibe;
class PhysSystem;

// Right-hand side of the equations of motion: dr/dt = v, dv/dt = a, where the
// forces accumulate a in the particles. A composite (Kraefte) of leaf forces.
class RechteSeiteDG {
public:
    virtual ~RechteSeiteDG() = default;

    // Adds this force's acceleration to the particles, without preparing the disc.
    virtual void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) = 0;
    // Leaves cannot hold other forces: prints a message and ignores f.
    virtual void add(RechteSeiteDG* f);
    // Builds the disc class that this force needs and reads the initial disc.
    virtual AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) = 0;
    // Disc-kind code: 0 AkkScheibe, 1 SphAkkScheibe, 2 PressArtviscAkkScheibe,
    // 3 PhysviscAkkScheibe; a larger code is a derived class of a smaller one.
    virtual int scheibe() = 0;

    // One evaluation: the disc's preparation, its event hook, then the force.
    void derivatives(AkkScheibe& scheibe, PhysSystem& phys);
};
