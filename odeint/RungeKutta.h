#pragma once

#include "odeint/Odeint.h"
#include "physik/Vektor.h"
#include "scheibe/Teilchen.h"

#include <vector>

class InitOdeint;

// Embedded Runge-Kutta method of orders 5 and 4 with the Cash-Karp
// coefficients (Cash & Karp 1990) and the quality-controlled step of
// Numerical Recipes (rkqs): safety factor, error exponents -1/4 and -1/5,
// growth capped at 5. The error measure is the largest velocity-error
// component of all particles, as an absolute tolerance. Stages are held in
// seven clones of the disc.
class RungeKutta : public Odeint {
public:
    double SAFETY = 0.9;
    double PGROW = -0.2;
    double PSHRNK = -0.25;
    double ERRCON = 0.000189; // (5 / SAFETY)^(1 / PGROW): both growth rules meet at 5

    double b21 = 0.2;
    double b31 = 0.075, b32 = 0.225;
    double b41 = 0.3, b42 = -0.9, b43 = 1.2;
    double b51 = -0.2037037037037037, b52 = 2.5, b53 = -2.5925925925925926,
           b54 = 1.2962962962962963;
    double b61 = 0.029495804398148147, b62 = 0.341796875, b63 = 0.041594328703703706,
           b64 = 0.40034541377314814, b65 = 0.061767578125;
    double c1 = 0.09788359788359788, c3 = 0.4025764895330113, c4 = 0.21043771043771045,
           c6 = 0.2891022021456804;
    // Fifth minus fourth order weights.
    double dc5 = -0.019321986607142856;
    double dc1 = c1 - 2825.0 / 27648.0;
    double dc3 = c3 - 18575.0 / 48384.0;
    double dc4 = c4 - 13525.0 / 55296.0;
    double dc6 = c6 - 0.25;

    // A stage's derivative per particle: dr/dt = v and dv/dt = a of the
    // stage state, taken after the forces were evaluated on it.
    struct Ableitung {
        Vektor3 v; // solar radii / s
        Vektor3 a; // solar radii / s^2
    };

    AkkScheibe* ytemp = nullptr;      // stage states 2 to 6 in turn, then the fifth-order result
    std::vector<Teilchen> yerr;       // fifth minus fourth order, in r and v
    std::vector<Ableitung> ak2, ak3, ak4, ak5, ak6; // k2 ... k6

    RungeKutta(AkkScheibe& scheibe, InitOdeint& init);
    RungeKutta(const RungeKutta&) = delete;
    RungeKutta& operator=(const RungeKutta&) = delete;
    ~RungeKutta() override;

    void stepper(AkkScheibe& scheibe, PhysSystem& phys, RechteSeiteDG& kraefte, double* hdid,
                 double* hnext) override;
    // One Cash-Karp step of size h from the state in `scheibe` (which the
    // driver has evaluated), filling ak2 ... ak6, ytemp and yerr (sized to
    // the disc by stepper).
    void rkck(AkkScheibe& scheibe, double h, PhysSystem& phys, RechteSeiteDG& kraefte);
};
