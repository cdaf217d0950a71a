#pragma once

// Integrator settings read from the parameter file.
class InitOdeint {
public:
    int Outputfiles = 0;            // number of snapshots over the run
    double Outputtime = 0;          // end time of the run, s
    double Anfangsschrittweite = 0; // first step size, s
    double MinSchrittweite = 0;     // step size at or below which the driver warns, s
    int MaxSchritte = 0;            // step limit
    double Genauigkeit = 0;         // absolute tolerance of the velocity error per step
    int odeintArt = -1;             // 0: Cash-Karp Runge-Kutta ("RungeKutta"); else none

    explicit InitOdeint(const char* parameterDatei);
    void init(const char* parameterDatei);
};
