#pragma once

#include "kraefte/RechteSeiteDG.h"

#include <vector>

// The composite of all forces of a run, evaluated in the order they were added.
class Kraefte : public RechteSeiteDG {
public:
    std::vector<RechteSeiteDG*> kraefte; // members, owned

    Kraefte() = default;
    Kraefte(const Kraefte&) = delete;
    Kraefte& operator=(const Kraefte&) = delete;
    ~Kraefte() override;

    void deriv_ohne_init(AkkScheibe& scheibe, PhysSystem& phys) override;
    void add(RechteSeiteDG* f) override;
    // The disc class that all members need; null (after a message) for an unknown kind.
    AkkScheibe* createAkkScheibe(InitAkkScheibe& init, PhysSystem& phys) override;
    // Largest code of the members, from 0.
    int scheibe() override;
};
