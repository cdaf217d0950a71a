#pragma once
// Discs for the benchmarks: the shipped binary with a disc from the disc
// generator, scaled so that a particle has about 31 partners at every size.

#include "init/InitAkkScheibe.h"
#include "init/InitOdeint.h"
#include "init/InitPhysSystem.h"
#include "physik/Kernel1.h"
#include "physik/PhysSystem.h"

#include <memory>
#include <string>

class Szenario {
public:
    // n particles between 0.08 and 0.3 solar radii from the primary; the
    // smoothing length scales as n^-1/2 from 0.03 at 3000 particles, so the
    // partner count of the thin disc stays the same (about 34, or the
    // environment's AKK_BENCH_PARTNER).
    explicit Szenario(long n);
    ~Szenario();
    Szenario(const Szenario&) = delete;
    Szenario& operator=(const Szenario&) = delete;

    std::string ordner, parameter, scheibe;
    std::unique_ptr<InitPhysSystem> initPhys;
    std::unique_ptr<Kernel1> kernel;
    std::unique_ptr<PhysSystem> phys;
    std::unique_ptr<InitAkkScheibe> initScheibe;
    std::unique_ptr<InitOdeint> initOdeint;
};
