#pragma once
// Counts heap allocations of the whole benchmark program (operator new is
// replaced in Zuweisungen.cpp).

#include <cstddef>

std::size_t anzahlZuweisungen();
