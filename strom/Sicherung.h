#pragma once

#include "odeint/Odeint.h"

#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

class AkkScheibe;
class Stromquelle;

// A further part of a run's state that its checkpoint carries under a name
// of its own (an integrator's accelerations, a table's length): what the run
// holds beyond the disc, the driver and the stream when an option asks for it.
class Sicherungsteil {
public:
    virtual ~Sicherungsteil() = default;
    virtual const char* name() const = 0;
    // The part's state, as bytes.
    virtual std::string zustand() = 0;
    // Checks the bytes of a checkpoint whose disc has n particles and, with
    // setzen, takes them over; an empty string when they are sound, else the
    // message. Without setzen nothing is changed.
    virtual std::string lies(const std::string& bytes, std::size_t n, bool setzen) = 0;

    // The parts' bytes: numbers in the machine's own form, as the rest.
    template <class T> static void anhaengen(std::string& b, const T& x) {
        b.append(reinterpret_cast<const char*>(&x), sizeof x);
    }
    template <class T> static bool nimm(const std::string& b, std::size_t& pos, T& x) {
        if (pos > b.size() || b.size() - pos < sizeof x)
            return false;
        std::memcpy(&x, b.data() + pos, sizeof x);
        pos += sizeof x;
        return true;
    }
};

// Checkpoints of a fed disc, for a run that continues byte for byte.
//
// A checkpoint holds, in the machine's own binary form and so at full
// precision, everything the run carries from one step to the next: the
// driver's loop state and step size, the disc's time and every particle's
// position and velocity in order (all else of a particle is rebuilt by the
// next evaluation of the forces), and the stream's state (start, particles
// brought so far, random generator). It names its run by fingerprints of the
// parameter file and of the initial disc file, and ends with a checksum of
// all before it. It is written to a temporary file beside its place and
// renamed into place, so that a crash or a second signal leaves either the
// old checkpoint or the new one, never a part.
//
// As the driver's stop between steps it writes a checkpoint every so many
// steps or wall-clock seconds, and on SIGINT or SIGTERM writes one and ends
// the run; after a chosen number of steps it also writes one and ends the run.
class Sicherung : public Zwischenhalt {
public:
    std::string datei;              // checkpoint file
    long long alleSchritte = 0;     // write after every that many steps (0: never)
    double alleSekunden = 0;        // write when that much wall time has passed since the last (0: never)
    long long haltNach = 0;         // stop with a checkpoint after this many steps of this process (0: never)
    std::uint64_t parameterPruefsumme = 0; // fingerprint of the parameter file
    std::uint64_t scheibenPruefsumme = 0;  // fingerprint of the initial disc file
    Stromquelle* quelle = nullptr;  // the stream whose state goes with the disc; not owned
    std::string weiterBefehl = "akkstrom --weiter"; // named in the message when the run stops
    // Further parts, in this order, after the stream's state (none: the
    // file is that of a run without them, byte for byte); not owned.
    std::vector<Sicherungsteil*> teile;

    int signal = 0;        // the signal that ended the run, 0 if none did
    bool angehalten = false; // the run was ended here, with or without a checkpoint written
    bool geschrieben = false; // the last attempt to write succeeded

    // Installs the handlers of SIGINT and SIGTERM. The first of them only
    // notes the signal (and says so on standard error); the run stops after
    // the step in progress. A second one ends the program at once.
    static void fangeSignale();
    // The signal noted since the start, 0 if none; for tests also settable.
    static volatile std::sig_atomic_t empfangen;

    bool anhalten(Odeint& odeint, AkkScheibe& scheibe) override;

    // Writes the checkpoint of the run in its present state to `datei`; an
    // empty string when it worked, else the message (without line end).
    std::string schreibe(const Odeint& odeint, AkkScheibe& scheibe) const;

    // Reads the checkpoint `datei` and sets the run to its state. Nothing is
    // changed unless the whole file is sound and belongs to this run (same
    // fingerprints, same disc); else the message (without line end). In a
    // distributed run process 0 reads it and hands the others their part.
    std::string lies(Odeint& odeint, AkkScheibe& scheibe) const;

    // FNV-1a fingerprint of a file's bytes; false if it cannot be read.
    static bool pruefsumme(const std::string& datei, std::uint64_t& summe);

private:
    // The file read and checked and the run set to it, here; with rest, the
    // run's state but the particles goes there too (for the other processes).
    std::string liesDatei(Odeint& odeint, AkkScheibe& scheibe, std::string* rest) const;
    // The run set to such a state, with no particles of its own.
    void setzeKopf(Odeint& odeint, AkkScheibe& scheibe, const std::string& kopf) const;
    double letzteZeit = -1;     // wall clock of the last checkpoint (or of the first step), s
    long long schritteHier = 0; // steps done by this process
};
