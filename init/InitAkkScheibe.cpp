#include "init/InitAkkScheibe.h"

InitAkkScheibe::InitAkkScheibe(const char* parameterDatei, const char* teilchenDatei) {
    init(parameterDatei, teilchenDatei);
}

void InitAkkScheibe::init(const char*, const char* teilchenDatei) { dateiname = teilchenDatei; }
