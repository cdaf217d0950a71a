#include "init/Text.h"

#include <cerrno>
#include <cstdlib>
#include <locale>
#include <sstream>

bool alsGanz(const std::string& text, unsigned long long& wert) {
    if (text.empty() || text.size() > 20)
        return false;
    for (char c : text)
        if (c < '0' || c > '9')
            return false;
    errno = 0;
    const unsigned long long w = std::strtoull(text.c_str(), nullptr, 10);
    if (errno == ERANGE)
        return false;
    wert = w;
    return true;
}

std::string zahl(double x) {
    std::ostringstream s;
    s.imbue(std::locale::classic());
    s << x;
    return s.str();
}
