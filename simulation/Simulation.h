#pragma once

class AkkScheibe;
class PhysSystem;
class RechteSeiteDG;
class Odeint;
class Kernel;
class InitAkkScheibe;
class InitPhysSystem;
class InitOdeint;
class InitRechteSeiteDG;

// Owner of every top-level object of a run.
class Simulation {
public:
    AkkScheibe* scheibe = nullptr;
    PhysSystem* physSystem = nullptr;
    RechteSeiteDG* kraefte = nullptr;
    Odeint* odeint = nullptr;  // null when no integrator was chosen
    Kernel* kernel = nullptr;  // null when no kernel was chosen
    InitAkkScheibe* initAkkScheibe = nullptr;
    InitPhysSystem* initPhysSystem = nullptr;
    InitOdeint* initOdeint = nullptr;
    InitRechteSeiteDG* initRechteSeiteDG = nullptr;

    Simulation() = default;
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;
    // Releases the objects: disc, physical system, forces, integrator,
    // kernel, then the readers.
    ~Simulation();
};
