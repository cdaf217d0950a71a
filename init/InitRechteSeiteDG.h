#pragma once

#include "init/Forces.h"

#include <vector>

// The force list of the parameter file: one entry per occurrence of a force
// word, in file order, repeats included.
class InitRechteSeiteDG {
public:
    explicit InitRechteSeiteDG(const char* parameterDatei);
    void init(const char* parameterDatei);

    // A copy of the list.
    std::vector<Forces> kraefte() const { return liste; }

private:
    std::vector<Forces> liste;
};
