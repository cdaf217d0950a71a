#pragma once
// Value extraction shared by the readers of the parameter and disc files.
//
// The files are scanned word by word with plain stream extraction. A value
// that does not parse puts the stream into the failed state, which ends the
// scan of that reader. Since C++11 a failed extraction also writes 0 (or the
// type's limit on overflow) into its target, so the value is extracted into a
// local first and stored only when the extraction succeeded.

#include <istream>

template <class T> bool lies(std::istream& in, T& ziel) {
    T wert{};
    if (!(in >> wert))
        return false;
    ziel = wert;
    return true;
}
