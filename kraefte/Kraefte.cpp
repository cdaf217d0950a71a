#include "kraefte/Kraefte.h"

#include "kraefte/Scheibenfabrik.h"

#include <algorithm>

Kraefte::~Kraefte() {
    // The same force may have been added twice; release each object once.
    std::vector<RechteSeiteDG*> einmal(kraefte);
    std::sort(einmal.begin(), einmal.end());
    einmal.erase(std::unique(einmal.begin(), einmal.end()), einmal.end());
    for (RechteSeiteDG* f : einmal)
        delete f;
}

void Kraefte::deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) {
    for (std::size_t i = 0; i < kraefte.size(); ++i)
        kraefte[i]->deriv_ohne_init(scheibe, phys);
}

void Kraefte::add(RechteSeiteDG* f) { kraefte.push_back(f); }

AkkScheibe* Kraefte::createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) {
    return erzeugeScheibe(scheibe(), init, phys);
}

int Kraefte::scheibe() {
    int k = 0;
    for (RechteSeiteDG* f : kraefte) {
        int s = f->scheibe();
        if (s > k)
            k = s;
    }
    return k;
}
