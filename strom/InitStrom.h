#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The keys of the gas stream from the secondary through L1, read from the
// parameter file word by word like the other readers (a key counts wherever
// it stands; the last good occurrence wins). Unlike them it stores nothing
// silently: every key must be present with a usable value, and each missing
// or bad one leaves a message in `fehler`, in the order of the keys.
class InitStrom {
public:
    // Units: solar masses, solar radii, seconds.
    double Stromrate = 0;            // mass transfer rate through L1
    double Stromgeschwindigkeit = 0; // mean speed of the gas from L1 toward the primary
    double Stromstreuung = 0;        // standard deviation of each velocity component
    double Stromabstand = 0;         // distance of the injection from L1 toward the primary
    double Strombreite = 0;          // standard deviation of y and z about the x axis
    std::uint64_t Stromsaat = 0;     // seed of the random numbers

    std::vector<std::string> fehler; // messages (without line end); empty when all is usable

    explicit InitStrom(const char* parameterDatei);
    void init(const char* parameterDatei);
};
