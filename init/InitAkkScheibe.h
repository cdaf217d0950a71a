#pragma once

#include <string>

// Carries the name of the initial disc file to the disc reader.
class InitAkkScheibe {
public:
    std::string dateiname; // own copy of the initial disc file's name

    InitAkkScheibe(const char* parameterDatei, const char* teilchenDatei);
    // Stores the disc file name; the parameter file is not opened.
    void init(const char* parameterDatei, const char* teilchenDatei);
};
