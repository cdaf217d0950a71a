#pragma once
// Words of options and messages of the companion programs.

#include <string>

// Decimal digits only: no sign, so that "-1" is not wrapped to a huge value.
bool alsGanz(const std::string& text, unsigned long long& wert);

// x in the default stream format (6 significant digits), classic locale.
std::string zahl(double x);
