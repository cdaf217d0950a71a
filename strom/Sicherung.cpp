#include "strom/Sicherung.h"

#include "scheibe/Verteilung.h"

#include "scheibe/AkkScheibe.h"
#include "strom/Stromquelle.h"

#include <cerrno>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

namespace {

// The file begins with this line, then the format's version and the
// machine's byte order and sizes: a checkpoint is read back only by a build
// that lays out numbers as the writer did.
const char kennung[] = "akkstrom Sicherung\n";
const std::uint32_t version = 1;
const std::uint32_t reihenfolge = 0x01020304;

// FNV-1a, 64 bits: a fingerprint against slips, not against intent.
struct Fnv {
    std::uint64_t h = 14695981039346656037ull;
    void add(const char* p, std::size_t n) {
        for (std::size_t i = 0; i < n; ++i) {
            h ^= static_cast<unsigned char>(p[i]);
            h *= 1099511628211ull;
        }
    }
};

std::string fehlertext() {
    return std::strerror(errno);
}

// Buffered writing to a file descriptor, fingerprinting every byte.
class Schreiber {
public:
    explicit Schreiber(int fd) : fd(fd) { puffer.reserve(1 << 20); }
    template <class T> void zahl(const T& x) { bytes(reinterpret_cast<const char*>(&x), sizeof x); }
    void bytes(const char* p, std::size_t n) {
        summe.add(p, n);
        puffer.insert(puffer.end(), p, p + n);
        if (puffer.size() >= (1u << 20))
            leeren();
    }
    // Appends the fingerprint of everything before and writes the rest.
    bool ende() {
        const std::uint64_t s = summe.h;
        puffer.insert(puffer.end(), reinterpret_cast<const char*>(&s),
                      reinterpret_cast<const char*>(&s) + sizeof s);
        leeren();
        return ok;
    }

private:
    void leeren() {
        const char* p = puffer.data();
        std::size_t rest = puffer.size();
        while (ok && rest > 0) {
            const ssize_t n = ::write(fd, p, rest);
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0) {
                ok = false;
                fehler = n < 0 ? errno : EIO;
                break;
            }
            p += n;
            rest -= static_cast<std::size_t>(n);
        }
        puffer.clear();
    }

    int fd;
    std::vector<char> puffer;
    Fnv summe;

public:
    bool ok = true;
    int fehler = 0;
};

// Reading from the checkpoint's bytes, with every read bounded.
class Leser {
public:
    Leser(const std::string& b, std::size_t ende) : b(b), ende(ende) {}
    template <class T> bool zahl(T& x) {
        if (ende - pos < sizeof x)
            return false;
        std::memcpy(&x, b.data() + pos, sizeof x);
        pos += sizeof x;
        return true;
    }
    bool bytes(std::string& s, std::uint64_t n) {
        if (ende - pos < n)
            return false;
        s.assign(b, pos, static_cast<std::size_t>(n));
        pos += static_cast<std::size_t>(n);
        return true;
    }
    std::size_t rest() const { return ende - pos; }

private:
    const std::string& b;
    std::size_t ende;
    std::size_t pos = 0;
};

extern "C" void aufSignal(int s) {
    Sicherung::empfangen = s;
    static const char text[] = "\nakkstrom: Signal empfangen: halte nach diesem Schritt an und "
                               "schreibe die Sicherung (ein zweites beendet sofort)\n";
    const ssize_t n = ::write(2, text, sizeof text - 1);
    (void)n;
}

double uhr() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace

volatile std::sig_atomic_t Sicherung::empfangen = 0;

void Sicherung::fangeSignale() {
    struct sigaction a {};
    a.sa_handler = aufSignal;
    sigemptyset(&a.sa_mask);
    // Interrupted writes of snapshots go on; the handler is then reset, so a
    // second signal ends the program the default way.
    a.sa_flags = SA_RESTART | SA_RESETHAND;
    sigaction(SIGINT, &a, nullptr);
    sigaction(SIGTERM, &a, nullptr);
}

bool Sicherung::pruefsumme(const std::string& name, std::uint64_t& summe) {
    std::ifstream ein(name, std::ios::binary);
    if (!ein)
        return false;
    Fnv f;
    std::vector<char> puffer(1 << 16);
    while (ein) {
        ein.read(puffer.data(), static_cast<std::streamsize>(puffer.size()));
        f.add(puffer.data(), static_cast<std::size_t>(ein.gcount()));
    }
    if (ein.bad())
        return false;
    summe = f.h;
    return true;
}

std::string Sicherung::schreibe(const Odeint& odeint, AkkScheibe& scheibe) const {
    // The whole disc in its order: in a run spread over processes, process
    // 0 gathers it and writes the file alone.
    std::vector<std::string> teilZustand; // formed by every process (they gather)
    for (Sicherungsteil* t : teile)
        teilZustand.push_back(t->zustand());
    std::vector<Teilchen> ganz;
    if (scheibe.verteilung) {
        ganz = scheibe.verteilung->sammeln(scheibe);
        if (scheibe.verteilung->rang() != 0)
            return "";
    }
    const std::size_t anzahl =
        scheibe.verteilung ? ganz.size() : static_cast<std::size_t>(scheibe.tanz());
    auto teilchen = [&](std::size_t i) -> const Teilchen& {
        return scheibe.verteilung ? ganz[i] : scheibe[int(i)];
    };
    const std::string neu = datei + ".neu";
    const int fd = ::open(neu.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (fd < 0)
        return "'" + neu + "' l\xe4sst sich nicht anlegen: " + fehlertext();
    Schreiber w(fd);
    w.bytes(kennung, sizeof kennung - 1);
    w.zahl(version);
    w.zahl(reihenfolge);
    w.zahl(static_cast<std::uint32_t>(sizeof(double)));
    w.zahl(parameterPruefsumme);
    w.zahl(scheibenPruefsumme);
    const Laufstand& st = odeint.stand;
    w.zahl(odeint.h);
    w.zahl(st.t0);
    for (int x : {st.kout, st.nstp, st.remove_count, st.nok, st.nbad})
        w.zahl(static_cast<std::int32_t>(x));
    w.zahl(scheibe.t());
    w.zahl(static_cast<std::uint64_t>(anzahl));
    for (std::size_t i = 0; i < anzahl; ++i) {
        const Teilchen& t = teilchen(i);
        for (int k = 0; k < 3; ++k)
            w.zahl(t.r[k]);
        for (int k = 0; k < 3; ++k)
            w.zahl(t.v[k]);
    }
    std::ostringstream zufall;
    zufall.imbue(std::locale::classic());
    zufall << quelle->zufall;
    const std::string z = zufall.str();
    w.zahl(quelle->t0);
    w.zahl(static_cast<std::int64_t>(quelle->eingespeist));
    w.zahl(static_cast<std::uint64_t>(z.size()));
    w.bytes(z.data(), z.size());
    if (!teile.empty()) {
        w.zahl(static_cast<std::uint32_t>(teile.size()));
        for (std::size_t i = 0; i < teile.size(); ++i) {
            const std::string name = teile[i]->name();
            const std::string& b = teilZustand[i];
            w.zahl(static_cast<std::uint32_t>(name.size()));
            w.bytes(name.data(), name.size());
            w.zahl(static_cast<std::uint64_t>(b.size()));
            w.bytes(b.data(), b.size());
        }
    }
    bool ok = w.ende();
    std::string fehler = ok ? "" : "'" + neu + "': " + std::strerror(w.fehler);
    // On the disc before the rename, so that the name never points at
    // bytes still in flight.
    if (ok && ::fsync(fd) != 0) {
        ok = false;
        fehler = "'" + neu + "': " + fehlertext();
    }
    if (::close(fd) != 0 && ok) {
        ok = false;
        fehler = "'" + neu + "': " + fehlertext();
    }
    if (ok && std::rename(neu.c_str(), datei.c_str()) != 0) {
        ok = false;
        fehler = "'" + neu + "' l\xe4sst sich nicht in '" + datei + "' umbenennen: " + fehlertext();
    }
    if (!ok) {
        ::unlink(neu.c_str()); // the old checkpoint, if any, stays as it was
        return fehler;
    }
    return "";
}

std::string Sicherung::lies(Odeint& odeint, AkkScheibe& scheibe) const {
    Verteilung* vt = scheibe.verteilung;
    if (!vt)
        return liesDatei(odeint, scheibe, nullptr);
    std::string fehler, kopf;
    if (vt->rang() == 0)
        fehler = liesDatei(odeint, scheibe, &kopf);
    vt->teile(fehler);
    if (!fehler.empty())
        return fehler;
    vt->teile(kopf);
    if (vt->rang() != 0)
        setzeKopf(odeint, scheibe, kopf);
    // The particles, and the parts' values that go with them, from process 0.
    vt->verteilen(scheibe);
    return "";
}

void Sicherung::setzeKopf(Odeint& odeint, AkkScheibe& scheibe, const std::string& kopf) const {
    std::size_t pos = 0;
    Laufstand& st = odeint.stand;
    double zeit = 0;
    std::int64_t eingespeist = 0;
    std::uint64_t n = 0, laenge = 0;
    Sicherungsteil::nimm(kopf, pos, odeint.h);
    Sicherungsteil::nimm(kopf, pos, st.t0);
    for (int* x : {&st.kout, &st.nstp, &st.remove_count, &st.nok, &st.nbad})
        Sicherungsteil::nimm(kopf, pos, *x);
    Sicherungsteil::nimm(kopf, pos, zeit);
    Sicherungsteil::nimm(kopf, pos, quelle->t0);
    Sicherungsteil::nimm(kopf, pos, eingespeist);
    Sicherungsteil::nimm(kopf, pos, laenge);
    std::istringstream zein(kopf.substr(pos, static_cast<std::size_t>(laenge)));
    pos += static_cast<std::size_t>(laenge);
    zein.imbue(std::locale::classic());
    zein >> quelle->zufall;
    quelle->eingespeist = eingespeist;
    scheibe.ordne_teilchen({}, {}, {});
    scheibe.t(zeit);
    Sicherungsteil::nimm(kopf, pos, n);
    for (Sicherungsteil* t : teile) {
        Sicherungsteil::nimm(kopf, pos, laenge);
        t->lies(kopf.substr(pos, static_cast<std::size_t>(laenge)), static_cast<std::size_t>(n), true);
        pos += static_cast<std::size_t>(laenge);
    }
}

std::string Sicherung::liesDatei(Odeint& odeint, AkkScheibe& scheibe, std::string* rest) const {
    const std::string vorsatz = "Sicherung '" + datei + "' ";
    std::string b;
    {
        std::ifstream ein(datei, std::ios::binary);
        if (!ein)
            return vorsatz + "l\xe4sst sich nicht lesen: " + fehlertext();
        std::ostringstream alles;
        alles << ein.rdbuf();
        if (ein.bad())
            return vorsatz + "l\xe4sst sich nicht lesen: " + fehlertext();
        b = alles.str();
    }
    const std::size_t k = sizeof kennung - 1;
    if (b.size() < k || b.compare(0, k, kennung) != 0)
        return vorsatz + "ist keine Sicherung von akkstrom";
    std::uint64_t summe = 0;
    if (b.size() < k + sizeof summe)
        return vorsatz + "ist unvollst\xe4ndig";
    const std::size_t ende = b.size() - sizeof summe;
    std::memcpy(&summe, b.data() + ende, sizeof summe);
    Fnv f;
    f.add(b.data(), ende);
    if (f.h != summe)
        return vorsatz + "ist besch\xe4" "digt oder unvollst\xe4ndig (Pr\xfc" "fsumme stimmt nicht)";

    Leser l(b, ende);
    std::string kopf;
    std::uint32_t ver = 0, folge = 0, groesse = 0;
    l.bytes(kopf, k);
    if (!l.zahl(ver) || ver != version)
        return vorsatz + "hat ein anderes Format (Version " + std::to_string(ver) + ", lesbar ist " +
               std::to_string(version) + ")";
    if (!l.zahl(folge) || !l.zahl(groesse) || folge != reihenfolge || groesse != sizeof(double))
        return vorsatz + "stammt von einem Rechner, der Zahlen anders ablegt";
    std::uint64_t pp = 0, sp = 0;
    if (!l.zahl(pp) || !l.zahl(sp))
        return vorsatz + "ist unvollst\xe4ndig";
    if (pp != parameterPruefsumme)
        return vorsatz + "geh\xf6rt zu einem anderen Lauf: die Parameterdatei ist nicht die, mit "
                         "der sie geschrieben wurde";
    if (sp != scheibenPruefsumme)
        return vorsatz + "geh\xf6rt zu einem anderen Lauf: die Anfangsscheibe ist nicht die, mit "
                         "der sie geschrieben wurde";

    double h = 0, zeit = 0, stromT0 = 0;
    Laufstand st;
    std::int32_t z[5] = {};
    std::uint64_t n = 0, zlaenge = 0;
    std::int64_t eingespeist = 0;
    bool ok = l.zahl(h) && l.zahl(st.t0);
    for (std::int32_t& x : z)
        ok = ok && l.zahl(x);
    ok = ok && l.zahl(zeit) && l.zahl(n);
    // Six numbers a particle must follow; checked before anything is built.
    if (!ok || n > l.rest() / (6 * sizeof(double)) || n > 2147483647u)
        return vorsatz + "ist unvollst\xe4ndig";
    std::vector<double> werte(static_cast<std::size_t>(n) * 6);
    for (double& x : werte)
        l.zahl(x);
    ok = l.zahl(stromT0) && l.zahl(eingespeist) && l.zahl(zlaenge);
    std::string zt;
    ok = ok && l.bytes(zt, zlaenge);
    if (!ok)
        return vorsatz + "ist unvollst\xe4ndig";
    // The further parts: the same ones, in the same order, as this run has.
    std::uint32_t anzahlTeile = 0;
    if (l.rest() > 0 && !l.zahl(anzahlTeile))
        return vorsatz + "ist unvollst\xe4ndig";
    std::string namen;
    std::vector<std::string> teilBytes(anzahlTeile < 64 ? anzahlTeile : 0);
    for (std::uint32_t i = 0; i < anzahlTeile && i < 64; ++i) {
        std::uint32_t nl = 0;
        std::uint64_t bl = 0;
        std::string name;
        if (!l.zahl(nl) || !l.bytes(name, nl) || !l.zahl(bl) || !l.bytes(teilBytes[i], bl))
            return vorsatz + "ist unvollst\xe4ndig";
        namen += (i ? ", " : "") + name;
    }
    std::string erwartet;
    for (std::size_t i = 0; i < teile.size(); ++i)
        erwartet += (i ? ", " : "") + std::string(teile[i]->name());
    if (anzahlTeile >= 64 || l.rest() != 0)
        return vorsatz + "enth\xe4lt ung\xfcltige Werte";
    if (namen != erwartet)
        return vorsatz + "geh\xf6rt zu einem Lauf mit anderen Optionen (sie f\xfchrt: " +
               (namen.empty() ? "nichts" : namen) + "; dieser Lauf: " +
               (erwartet.empty() ? "nichts" : erwartet) + ")";
    for (std::size_t i = 0; i < teile.size(); ++i) {
        const std::string f = teile[i]->lies(teilBytes[i], static_cast<std::size_t>(n), false);
        if (!f.empty())
            return vorsatz + "enth\xe4lt ung\xfcltige Werte (" + teile[i]->name() + ": " + f + ")";
    }
    st.kout = z[0];
    st.nstp = z[1];
    st.remove_count = z[2];
    st.nok = z[3];
    st.nbad = z[4];
    std::mt19937_64 zufall;
    std::istringstream zein(zt);
    zein.imbue(std::locale::classic());
    zein >> zufall;
    // A sound checksum over unsound values is a file written by someone else.
    if (!zein || !std::isfinite(h) || !std::isfinite(st.t0) || !std::isfinite(zeit) ||
        !std::isfinite(stromT0) || st.kout < 0 || st.kout >= odeint.outputfiles || st.nstp < 1 ||
        st.remove_count < 0 || eingespeist < 0 || eingespeist > strom::hoechstens)
        return vorsatz + "enth\xe4lt ung\xfcltige Werte";

    odeint.h = h;
    odeint.stand = st;
    // The disc of the checkpoint, whole; spread anew over the processes of
    // a distributed run, however many wrote it.
    std::vector<long long> neu(static_cast<std::size_t>(n));
    std::vector<Vektor3> r(neu.size()), v(neu.size());
    for (std::size_t i = 0; i < neu.size(); ++i) {
        const double* p = &werte[6 * i];
        neu[i] = -static_cast<long long>(i) - 1;
        r[i] = {p[0], p[1], p[2]};
        v[i] = {p[3], p[4], p[5]};
    }
    scheibe.ordne_teilchen(neu, r, v);
    scheibe.t(zeit);
    quelle->t0 = stromT0;
    quelle->eingespeist = eingespeist;
    quelle->zufall = zufall;
    for (std::size_t i = 0; i < teile.size(); ++i)
        teile[i]->lies(teilBytes[i], static_cast<std::size_t>(n), true);
    if (rest) {
        using T = Sicherungsteil;
        T::anhaengen(*rest, h);
        T::anhaengen(*rest, st.t0);
        for (int x : {st.kout, st.nstp, st.remove_count, st.nok, st.nbad})
            T::anhaengen(*rest, x);
        T::anhaengen(*rest, zeit);
        T::anhaengen(*rest, stromT0);
        T::anhaengen(*rest, eingespeist);
        T::anhaengen(*rest, static_cast<std::uint64_t>(zt.size()));
        rest->append(zt);
        T::anhaengen(*rest, n);
        for (const std::string& b : teilBytes) {
            T::anhaengen(*rest, static_cast<std::uint64_t>(b.size()));
            rest->append(b);
        }
    }
    return "";
}

bool Sicherung::anhalten(Odeint& odeint, AkkScheibe& scheibe) {
    const long long schritt = odeint.stand.nstp - 1; // the step just done
    const double jetzt = uhr();
    if (letzteZeit < 0)
        letzteZeit = jetzt;
    signal = empfangen;
    ++schritteHier;
    bool zeitUm = alleSekunden > 0 && jetzt - letzteZeit >= alleSekunden;
    // The processes of a distributed run stop and write together: at a
    // signal that any of them received, when process 0's clock says so.
    if (Verteilung* vt = scheibe.verteilung) {
        signal = static_cast<int>(vt->maximum(signal));
        zeitUm = vt->maximum(vt->rang() == 0 && zeitUm ? 1.0 : 0.0) > 0;
    }
    const bool halt = signal != 0 || (haltNach > 0 && schritteHier >= haltNach);
    const bool faellig = halt || (alleSchritte > 0 && schritt % alleSchritte == 0) || zeitUm;
    if (faellig) {
        const std::string fehler = schreibe(odeint, scheibe);
        geschrieben = fehler.empty();
        letzteZeit = jetzt;
        if (!geschrieben)
            std::cerr << "akkstrom: Sicherung nach Schritt " << schritt
                      << " nicht geschrieben: " << fehler << '\n';
    }
    if (!halt)
        return false;
    angehalten = true;
    std::cerr << "akkstrom: angehalten nach Schritt " << schritt << " bei t = " << scheibe.t()
              << " s";
    if (geschrieben)
        std::cerr << "; Sicherung in '" << datei << "', weiter mit: " << weiterBefehl << '\n';
    else
        std::cerr << "; keine Sicherung geschrieben\n";
    return true;
}
