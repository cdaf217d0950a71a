#pragma once

// Physical parameters of the binary and of the SPH method, from the parameter
// file, plus the particle mass entry of the initial disc file.
class InitPhysSystem {
public:
    double Primaersternmasse = 0;   // primary (accreting) star, solar masses
    double Sekundaersternmasse = 0; // secondary star, solar masses
    double Teilchenmasse = 0;       // from the disc file; stored, not used
    double Bahnperiode = 0;         // orbital period, s
    double Viskositaet = 0;         // kinematic shear viscosity
    double ArtVisk_alpha = 0;       // artificial viscosity alpha
    double ArtVisk_beta = 0;        // artificial viscosity beta
    double Smoothinglength = 0;     // SPH smoothing length h, solar radii
    int Rate = 0;                   // kept only
    double MinAbstand = 0;          // kept only
    double MaxAbstand = 0;          // kept only
    int kernelArt = -1;             // 0: Kernel1 ("Kern1"); else no kernel

    InitPhysSystem(const char* parameterDatei, const char* teilchenDatei);
    void init(const char* parameterDatei, const char* teilchenDatei);
};
