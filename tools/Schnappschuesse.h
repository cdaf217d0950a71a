#pragma once
// What the picture and diagnostics programs share: the binary from the
// parameter file and the snapshots of a run, both read with the simulator's
// own readers, and the list of a run's snapshot files.

#include "physik/PhysSystem.h"
#include "scheibe/AkkScheibe.h"

#include <functional>
#include <ostream>
#include <memory>
#include <string>
#include <vector>

class InitAkkScheibe;

namespace schnappschuss {

// Reads the binary as the simulator does (InitPhysSystem, PhysSystem without
// a kernel). Returns an empty string on success, else a message.
std::string leseBinaer(const std::string& parameter, std::unique_ptr<PhysSystem>& phys);

// Expands the command-line arguments into snapshot files. An argument is a
// file; or a folder, of which every file named like a snapshot ("...-<digits>")
// is taken; or a prefix such as data/Akk-OYCar-, of which every file named
// prefix<digits> is taken. Returns an empty string on success, else a message.
std::string sammle(const std::vector<std::string>& angaben, std::vector<std::string>& dateien);

// Reads one snapshot into `scheibe` with the simulator's reader. The reader
// prints its complaints (too few particle lines) on standard output; they are
// caught and passed on to `meldungen`, prefixed with the file name, so that
// standard output stays free for tables. False when the file cannot be read
// or has no "Teilchendaten:" line, so is no snapshot.
bool lies(const std::string& datei, PhysSystem& phys, AkkScheibe& scheibe, std::ostream& meldungen);
// The same for any disc class: `leser` builds the disc from the InitAkkScheibe
// it is given (for instance an SphAkkScheibe), its console output caught alike.
bool lies(const std::string& datei, std::ostream& meldungen,
          const std::function<void(InitAkkScheibe&)>& leser);

// Redirects a console stream for the object's life, also when the reader
// throws: the simulator's classes talk on standard output.
class Umleitung {
public:
    Umleitung(std::ostream& s, std::ostream& ziel) : strom(s), alt(s.rdbuf(ziel.rdbuf())) {}
    ~Umleitung() { strom.rdbuf(alt); }
    Umleitung(const Umleitung&) = delete;
    Umleitung& operator=(const Umleitung&) = delete;

private:
    std::ostream& strom;
    std::streambuf* alt;
};

// Sorts the indices 0..n-1 by the times given, equal times in the given order.
std::vector<std::size_t> zeitfolge(const std::vector<double>& zeiten);

// Whether all six coordinates of a particle are finite numbers.
bool endlich(const Teilchen& t);

// Shared option handling: "--name=value" or "--name value".
struct Argument {
    std::string name, wert;
    bool hatWert = false;
};
// Splits the arguments: options in `mitWert` take a value, those in
// `schalter` none; everything not beginning with "-" (and "-" itself) is a
// file argument. Returns a message naming the offending argument, or "".
std::string zerlege(const std::vector<std::string>& argumente,
                    const std::vector<std::string>& mitWert,
                    const std::vector<std::string>& schalter, std::vector<Argument>& optionen,
                    std::vector<std::string>& dateien);

// The common start of the tools once their options are read: a usage fault
// `fehler` (exit status 2, with a hint to --help), else the binary from the
// parameter file, a check of it by `pruefe` (a message or ""), and the
// snapshot files (exit status 1 when any of them fails). Messages go to
// `err`, prefixed with the program's name. 0 when all is ready.
int beginne(const std::string& programm, std::string fehler, const std::string& parameter,
            const std::vector<std::string>& angaben, std::unique_ptr<PhysSystem>& phys,
            std::vector<std::string>& dateien, std::ostream& err,
            const std::function<std::string(const PhysSystem&)>& pruefe = {});

// A finite number, or false.
bool alsReal(const std::string& text, double& wert);

} // namespace schnappschuss
