#pragma once

#include <valarray>

class InitPhysSystem;
class Kernel;

// Constants and derived quantities of the binary, in the frame that co-rotates
// with it: origin at the centre of mass, primary on +x, secondary on -x, orbit
// in z = 0. Masses in solar masses, lengths in solar radii, times in seconds.
class PhysSystem {
public:
    double m1;          // primary mass
    double m2;          // secondary mass
    double mTeilchen;   // mass of one SPH particle (fixed)
    double xL1;         // x of the inner Lagrange point L1
    double a;           // separation of the stars
    double periode;     // orbital period, s
    double omega;       // angular velocity of binary and frame, rad/s
    double viskositaet; // kinematic shear viscosity
    double alpha;       // artificial viscosity alpha
    double beta;        // artificial viscosity beta
    double h;           // smoothing length
    double eta;         // inner removal radius around the primary
    double rMax;        // outer removal radius around the primary
    std::valarray<double> x1; // position of the primary
    std::valarray<double> x2; // position of the secondary
    Kernel* kernel;           // smoothing kernel, not owned; may be null

    PhysSystem(InitPhysSystem& init, Kernel* kernel);
};
