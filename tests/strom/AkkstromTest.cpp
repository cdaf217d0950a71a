// Runs of akkstrom: akkscheibe byte for byte without a stream; streamed particles, progress, and
// restart with --weiter byte for byte; bad keys, options and checkpoints refused before a step.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <regex>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

const std::string ohneWW = "Stromgeschwindigkeit 7e-6 Stromstreuung 7e-7 Stromabstand 0.005 "
                           "Strombreite 0.006 Stromsaat 3\n";
const std::string leer = "Teilchenanzahl 0\nZeit 0\nTeilchendaten:\n";

// By default on one thread: a test shares the machine, where waiting threads only slow it down.
hilfen::Lauf akkstrom(const fs::path& o, const std::string& optionen = "",
                      const std::string& vor = "OMP_NUM_THREADS=1 ") {
    return hilfen::starte(o, vor, AKK_STROM, optionen);
}

// The shipped example (all four forces) to 1300 s: snapshots at 325 to 1300 s, 16 steps, 240
// particles.
void gas(const hilfen::TempOrdner& o) {
    fs::create_directories(o.pfad() / "data");
    for (const char* d : {"OYCar.parameter", "Akk-OYCar-0"})
        fs::copy(fs::path(AKK_QUELLE) / "strom/beispiel/data" / d, o.pfad() / "data" / d);
    std::ofstream(o.datei("data/OYCar.parameter"), std::ios::app)
        << "\nOutputtime 1300 Outputfiles 4\n";
}

// No forces: steps end at 5, 20, 40 s; particle 0, appended at 5 s, is removed at 20 s.
void frei(const hilfen::TempOrdner& o) {
    hilfen::eingaben(o,
                     hilfen::parameter("Stromrate 4.49320066e-17 Stromgeschwindigkeit 0.025 "
                                       "Stromstreuung 0 Stromabstand 0.01 Strombreite 0 "
                                       "Stromsaat 1\n"),
                     leer);
}

// The snapshots of a run folder, by name.
std::map<std::string, std::string> schnappschuesse(const hilfen::TempOrdner& o) {
    std::map<std::string, std::string> s;
    for (const auto& e : fs::directory_iterator(o.pfad() / "data"))
        if (e.path().filename().string().rfind("Akk-OYCar-", 0) == 0)
            s[e.path().filename().string()] = hilfen::lies(e.path().string());
    return s;
}

// The first group of `muster` in a run's output, "?" if none.
std::string suche(const std::string& aus, const std::string& muster) {
    std::smatch m;
    return std::regex_search(aus, m, std::regex(muster)) ? m[1].str() : "?";
}

TEST(Akkstrom, OhneMassenstromGleichtDenAufgezeichnetenLaeufenVonAkkscheibe) {
    // Each recorded run of akkscheibe, with a stream of rate 0 added to its parameters.
    for (const auto& e : fs::directory_iterator(fs::path(AKK_TESTDATEN) / "regression")) {
        if (!e.is_directory())
            continue;
        hilfen::TempOrdner arbeit;
        fs::copy(e.path() / "data", arbeit.pfad() / "data", fs::copy_options::recursive);
        std::ofstream(arbeit.datei("data/OYCar.parameter"), std::ios::app)
            << "\nStromrate 0 " << ohneWW;
        const hilfen::Lauf l = akkstrom(arbeit.pfad(), "", "");
        const fs::path erwartet = e.path() / "expected";
        EXPECT_EQ(std::to_string(l.status) + "\n", hilfen::lies((erwartet / "exit").string()));
        EXPECT_EQ(l.out, hilfen::lies((erwartet / "stdout").string())) << e.path();
        EXPECT_EQ(l.err, hilfen::lies((erwartet / "stderr").string()));
        for (const auto& s : fs::directory_iterator(erwartet / "data"))
            EXPECT_EQ(hilfen::lies(s.path().string()),
                      hilfen::lies(arbeit.datei("data/" + s.path().filename().string())))
                << s.path();
    }
}

TEST(Akkstrom, EingespeisteTeilchenVerlassenDieScheibeWieAndereUndDerFortschrittStoertNicht) {
    // No forces: the steps end at 5, 20 and 40 s (the error estimate is 0, so each step is five
    // times the last, clipped to the output times 20 and 40), and the particles fly straight on at
    // 0.025 along the x axis. At 0.26 particles per second particle 0 is appended at 5 s, 1 to 4 at
    // 20 s; particle k crossed x = xL1 + 0.01 = -0.368367 at (k + 1) / 0.26 s. The primary is at
    // 0.056303, eta^2 = 0.0025, rMax^2 = 0.228615: particle 0 is at 0.035479 at 20 s, inside eta,
    // and is removed; at 40 s particles 1 to 4 are at 0.439325, 0.343171, 0.247018 and 0.150864
    // (to the six digits of xL1 and x1: the snapshot has 0.247017 and 0.150863).
    std::string bei40 =
        "Teilchenanzahl 4\nTeilchenmasse 1.72815e-16\nZeit 40\n\n\nTeilchendaten:\n\n";
    for (const char* x : {"0.439325", "0.343171", "0.247017", "0.150863"})
        bei40 += x + std::string("  0  0  0.025  0  0  \n");
    // The progress: the first step at once, the end always, on a slow machine also the step at
    // 20 s; quiet when stderr is not a terminal and it is not asked for.
    const std::string zahl = "[0-9.e+-]+";
    const std::string zeilen = "t 5 s \\(" + zahl + " Bahnen\\), 1 Teilchen, " + zahl +
                               " Schritte/s, Rest [0-9]+:[0-9]{2}:[0-9]{2}\n(t 20 s .*\n)?"
                               "t 40 s \\(0.00733[0-9]* Bahnen\\), 4 Teilchen, (" +
                               zahl + "|-) Schritte/s, Rest 0:00:00\n";
    const struct {
        std::string vor, option, err; // shell text before and after the program; a regex
    } arten[] = {{"", "", ""},
                 {"AKKSTROM_FORTSCHRITT=1 ", "", zeilen},
                 {"", "--fortschritt", zeilen},
                 {"AKKSTROM_FORTSCHRITT=0 ", "", ""}};
    for (const auto& a : arten) {
        SCOPED_TRACE(a.vor + a.option);
        hilfen::TempOrdner o;
        frei(o);
        const hilfen::Lauf l = akkstrom(o.pfad(), a.option, a.vor);
        EXPECT_EQ(l.status, 0);
        EXPECT_TRUE(std::regex_match(l.err, std::regex(a.err))) << l.err;
        // The removed particle's abst_sqr is 0.020824^2.
        EXPECT_EQ(l.out,
                  "step: 1 akk.t: 5\nstep: 2 akk.t: 20\n Entferne Teilchen : 0 von 1 Teilchen  "
                  "zur Zeit: 20 : 0.0025 < abst_sqr < 0.228615ist : 0.000433632\n\nstep: 3 "
                  "akk.t: 40\nremove_count :1\n");
        EXPECT_EQ(hilfen::lies(o.datei("data/Akk-OYCar-20")),
                  "Teilchenanzahl 0\nTeilchenmasse 1.72815e-16\nZeit 20\n\n\nTeilchendaten:\n\n");
        EXPECT_EQ(hilfen::lies(o.datei("data/Akk-OYCar-40")), bei40);
    }
}

TEST(Akkstrom, SchlechteStromschluesselUndOptionenBeendenDenLaufVorDemErstenSchritt) {
    const std::string f = "Strom: Fehler: ", a = "akkstrom: Option --";
    const std::string param = hilfen::parameter("Externforce\nStromrate 1e-17 " + ohneWW);
    std::string ohneIntegrator = param;
    ohneIntegrator.erase(ohneIntegrator.find("RungeKutta\n"), 11);
    const struct {
        std::optional<std::string> param; // nullopt: no parameter file
        std::string option;
        std::string out, err; // out: its first line only when the keys are missing
        int status;
    } faelle[] = {
        // Each missing key has its line (StromquelleTest names them).
        {std::nullopt, "",
         f + "Stromrate fehlt (Massenrate durch L1, Sonnenmassen pro Sekunde) !\n",
         "error: unable to open parameter file in InitStrom!\n", 1},
        {param + "Strombreite -1", "", f + "Strombreite muss mindestens 0 sein, nicht '-1' !\n", "",
         1},
        {param + "Stromabstand 0.4", "",
         f + "Stromabstand 0.4 reicht von L1 bis an eta um den Prim\xe4rstern: L1 liegt 0.43467 "
             "vom Prim\xe4rstern, eta ist 0.05 !\n",
         "", 1},
        // Options: refused before anything is read or written.
        {param, "--fortschrit", "",
         "akkstrom: unbekannte Option '--fortschrit' (bekannt: --fortschritt, --weiter, "
         "--sicherung DATEI, --sicherung-schritte N, --sicherung-minuten M, --halt-nach N, "
         "--integrator cashkarp|leapfrog, --lichtkurve DATEI)\n",
         2},
        {param, "--integrator rk4", "",
         a + "integrator braucht cashkarp oder leapfrog, nicht 'rk4'\n", 2},
        {param, "--lichtkurve fehlt/l", "",
         "akkstrom: Lichtkurve 'fehlt/l' l\xe4sst sich nicht anlegen: No such file or "
         "directory; nichts gerechnet\n",
         1},
        {param, "--halt-nach 0", "", a + "halt-nach braucht eine ganze Zahl ab 1, nicht '0'\n", 2},
        {param, "--sicherung-schritte 2x", "",
         a + "sicherung-schritte braucht eine ganze Zahl ab 1, nicht '2x'\n", 2},
        {param, "--sicherung-minuten -1", "",
         a + "sicherung-minuten braucht eine Zahl ab 0 (0: keine), nicht '-1'\n", 2},
        {param, "--sicherung", "", a + "sicherung ohne Wert\n", 2},
        {param, "--halt-nach 1 --sicherung fehlt/s", "",
         "akkstrom: in den Ordner der Sicherung 'fehlt/s' l\xe4sst sich nicht schreiben: No such "
         "file or directory\n",
         1},
        // The stream is fine, the run is not: as akkscheibe, status 0.
        {ohneIntegrator, "", "Kein Odeint initialisiert !\n\n", "", 0},
    };
    for (const auto& c : faelle) {
        hilfen::TempOrdner o;
        hilfen::eingaben(o, c.param, leer);
        const hilfen::Lauf l = akkstrom(o.pfad(), c.option);
        const bool fehlen = c.out.find(" fehlt ") != std::string::npos;
        EXPECT_EQ(fehlen ? l.out.substr(0, l.out.find('\n') + 1) : l.out, c.out);
        EXPECT_TRUE(!fehlen || std::count(l.out.begin(), l.out.end(), '\n') == 6) << l.out;
        EXPECT_EQ(l.err, c.err);
        EXPECT_EQ(l.status, c.status);
        EXPECT_EQ(hilfen::anzahl(o.pfad() / "data"), c.param ? 2 : 1); // no snapshot
    }
}

TEST(Sicherung, AngehaltenUndWeitergerechnetGleichtDemDurchgehendenLauf) {
    const std::string licht = "--lichtkurve data/licht.tsv";
    struct Fall {
        void (*ordner)(const hilfen::TempOrdner&);
        std::vector<std::string> halte; // step numbers, or "@T": the step that ends at time T
        std::string optionen;
    } faelle[] = {
        // After step 1, after the step that wrote the snapshot at 650 s, before the last: four
        // runs.
        {gas, {"1", "@650", "15"}, ""},
        // Before and after the step that removed a particle.
        {frei, {"1", "2"}, ""},
        // With the light curve, whose rows must go on as well, and with the leapfrog, whose
        // accelerations of the last step are part of the state.
        {gas, {"1", "@650", "15"}, licht},
        {gas, {"1", "@650", "30"}, "--integrator leapfrog " + licht},
    };
    hilfen::TempOrdner ohne;
    gas(ohne);
    const hilfen::Lauf schlicht = akkstrom(ohne.pfad());
    for (const Fall& f : faelle) {
        hilfen::TempOrdner ganz, stueck;
        f.ordner(ganz);
        f.ordner(stueck);
        const hilfen::Lauf voll = akkstrom(ganz.pfad(), f.optionen);
        ASSERT_EQ(voll.status, 0);
        if (f.optionen == licht) { // the light curve changes no byte of the run
            EXPECT_EQ(voll.out, schlicht.out);
            EXPECT_EQ(schnappschuesse(ganz), schnappschuesse(ohne));
        }
        const std::string befehl = "akkstrom --weiter" +
                                   std::string(f.optionen.find("leap") != std::string::npos
                                                   ? " --integrator leapfrog" : "") +
                                   (f.optionen.empty() ? "" : " --lichtkurve 'data/licht.tsv'");
        std::string aus;
        int bisher = 0; // steps done by the runs before; --halt-nach counts those of each process
        for (std::string h : f.halte) {
            if (h[0] == '@')
                h = suche(voll.out, "step: ([0-9]+) akk\\.t: " + h.substr(1) + "\n");
            const hilfen::Lauf l = akkstrom(
                stueck.pfad(), std::string(aus.empty() ? "" : "--weiter ") + f.optionen +
                                   " --halt-nach " + std::to_string(std::stoi(h) - bisher));
            bisher = std::stoi(h);
            EXPECT_EQ(l.status, 3) << h;
            EXPECT_EQ(l.err, "akkstrom: angehalten nach Schritt " + h + " bei t = " +
                                 suche(voll.out, "step: " + h + " akk\\.t: ([^\n]+)\n") +
                                 " s; Sicherung in './data/akkstrom.sicherung', weiter mit: " +
                                 befehl + "\n");
            aus += l.out;
        }
        const hilfen::Lauf rest = akkstrom(stueck.pfad(), "--weiter " + f.optionen);
        EXPECT_EQ(rest.status, 0);
        EXPECT_EQ(aus + rest.out, voll.out);
        EXPECT_EQ(schnappschuesse(stueck), schnappschuesse(ganz));
        if (!f.optionen.empty()) {
            const std::string l = hilfen::lies(ganz.datei("data/licht.tsv"));
            EXPECT_EQ(hilfen::lies(stueck.datei("data/licht.tsv")), l);
            // Three header lines, then a row for the start of every step; the leapfrog, which
            // evaluates the forces at the end of its steps, also has the end's.
            const auto schritte = std::stol(suche(voll.out, "step: ([0-9]+) akk[^\n]+\nremove"));
            const bool lf = f.optionen.find("leap") != std::string::npos;
            EXPECT_EQ(std::count(l.begin(), l.end(), '\n'), 3 + schritte + (lf ? 1 : 0));
        }
    }
}

TEST(Sicherung, RegelmaessigeSicherungenStoerenDenLaufNicht) {
    // Every third step: the last checkpoint is after step 15, where the resumed run takes up. On
    // two threads: the same bytes as on one, with particles appended.
    hilfen::TempOrdner ohne, mit;
    gas(ohne);
    gas(mit);
    const hilfen::Lauf a = akkstrom(ohne.pfad());
    const hilfen::Lauf b =
        akkstrom(mit.pfad(), "--sicherung-schritte 3 --sicherung data/s", "OMP_NUM_THREADS=2 ");
    EXPECT_EQ(b.status, 0);
    EXPECT_EQ(b.err, "");
    EXPECT_EQ(b.out, a.out);
    EXPECT_EQ(schnappschuesse(mit), schnappschuesse(ohne));
    EXPECT_FALSE(hilfen::existiert(mit.datei("data/s.neu")));
    const hilfen::Lauf c = akkstrom(mit.pfad(), "--weiter --sicherung data/s");
    ASSERT_EQ(c.status, 0);
    EXPECT_EQ(c.out, a.out.substr(a.out.find("\n", a.out.find("step: 15 ")) + 1));

    // By wall time: every 6 microseconds is after every step; 0 is never.
    for (const char* minuten : {"0.0000001", "0"}) {
        hilfen::TempOrdner o;
        gas(o);
        const hilfen::Lauf l = akkstrom(o.pfad(), std::string("--sicherung-minuten ") + minuten);
        EXPECT_EQ(l.out, a.out);
        EXPECT_EQ(hilfen::existiert(o.datei("data/akkstrom.sicherung")), minuten[1] == '.');
    }
}

TEST(Sicherung, SignalWaehrendEinSchnappschussGeschriebenWird) {
    // The snapshot at 975 s (12 kB) goes into a 4 kB pipe read only after the SIGTERM, so the
    // signal comes mid-write: the snapshot must come out whole, the run stop after that step with a
    // checkpoint, and go on as if never stopped.
    hilfen::TempOrdner ganz, stueck;
    gas(ganz);
    gas(stueck);
    const hilfen::Lauf voll = akkstrom(ganz.pfad());
    const std::string rohr = stueck.datei("data/Akk-OYCar-975");
    ASSERT_EQ(mkfifo(rohr.c_str(), 0644), 0);
    // Opened and shrunk before the program can write into it.
    const int fd = open(rohr.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(fcntl(fd, F_SETPIPE_SZ, 4096), 4096);
    const pid_t kind = fork();
    ASSERT_GE(kind, 0);
    if (kind == 0) {
        if (chdir(stueck.pfad().c_str()) != 0)
            _exit(120);
        dup2(open("aus.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644), 1);
        dup2(open("err.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644), 2);
        setenv("OMP_NUM_THREADS", "1", 1);
        execl(AKK_STROM, "akkstrom", static_cast<char*>(nullptr));
        _exit(121);
    }
    int drin = 0;
    for (int i = 0; i < 6000 && drin < 4096; ++i) { // at most a minute
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        ioctl(fd, FIONREAD, &drin);
    }
    ASSERT_EQ(drin, 4096); // the pipe is full, the program waits inside the snapshot
    kill(kind, SIGTERM);
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK); // now read to the end
    std::string inhalt;
    char puffer[4096];
    for (ssize_t n; (n = read(fd, puffer, sizeof puffer)) > 0;)
        inhalt.append(puffer, static_cast<std::size_t>(n));
    close(fd);
    int roh = 0;
    waitpid(kind, &roh, 0);
    ASSERT_TRUE(WIFEXITED(roh));
    EXPECT_EQ(WEXITSTATUS(roh), 128 + SIGTERM);
    EXPECT_EQ(inhalt, hilfen::lies(ganz.datei("data/Akk-OYCar-975")));
    const std::string err = hilfen::lies(stueck.datei("err.txt"));
    EXPECT_NE(err.find("akkstrom: Signal empfangen"), std::string::npos) << err;
    EXPECT_NE(err.find("; Sicherung in './data/akkstrom.sicherung'"), std::string::npos) << err;
    fs::remove(rohr);
    const hilfen::Lauf rest = akkstrom(stueck.pfad(), "--weiter");
    EXPECT_EQ(rest.status, 0);
    EXPECT_EQ(hilfen::lies(stueck.datei("aus.txt")) + rest.out, voll.out);
    auto s = schnappschuesse(stueck), g = schnappschuesse(ganz);
    s.erase("Akk-OYCar-975"), g.erase("Akk-OYCar-975"); // came through the pipe
    EXPECT_EQ(s, g);
}

TEST(Sicherung, FremdeOderBeschaedigteSicherungWirdAbgelehnt) {
    hilfen::TempOrdner o;
    frei(o);
    ASSERT_EQ(akkstrom(o.pfad(), "--halt-nach 1").status, 3);
    const std::string gut = hilfen::lies(o.datei("data/akkstrom.sicherung"));
    const std::string kaputt = "ist besch\xe4"
                               "digt oder unvollst\xe4ndig (Pr\xfc"
                               "fsumme stimmt "
                               "nicht)",
                      fremd = "geh\xf6rt zu einem anderen Lauf: die ";
    std::string gekippt = gut;
    gekippt[gut.size() / 2] ^= 1;
    const struct {
        std::string sicherung, zusatz, anfang; // none if empty; appended to parameters, disc
        std::string meldung, optionen = "";
    } faelle[] = {
        {"", "", "", "l\xe4sst sich nicht lesen: No such file or directory"},
        {gut.substr(0, gut.size() / 2), "", "", kaputt},
        {gekippt, "", "", kaputt},
        {hilfen::lies(o.datei("data/Akk-OYCar-0")), "", "", "ist keine Sicherung von akkstrom"},
        {gut, "% a note\n", "",
         fremd + "Parameterdatei ist nicht die, mit der sie geschrieben wurde"},
        {gut, "", "\n", fremd + "Anfangsscheibe ist nicht die, mit der sie geschrieben wurde"},
        {gut, "", "",
         "geh\xf6rt zu einem Lauf mit anderen Optionen (sie f\xfchrt: nichts; dieser Lauf: "
         "leapfrog, lichtkurve)",
         " --integrator leapfrog --lichtkurve l"},
    };
    for (const auto& f : faelle) {
        hilfen::TempOrdner w;
        frei(w);
        std::ofstream(w.datei("data/OYCar.parameter"), std::ios::app) << f.zusatz;
        std::ofstream(w.datei("data/Akk-OYCar-0"), std::ios::app) << f.anfang;
        if (!f.sicherung.empty())
            hilfen::schreibe(w.datei("data/akkstrom.sicherung"), f.sicherung);
        const hilfen::Lauf l = akkstrom(w.pfad(), "--weiter" + f.optionen);
        EXPECT_EQ(l.status, 1);
        EXPECT_EQ(l.out, "");
        EXPECT_EQ(l.err, "akkstrom: Sicherung './data/akkstrom.sicherung' " + f.meldung +
                             "; nichts gerechnet\n");
        EXPECT_FALSE(hilfen::existiert(w.datei("data/Akk-OYCar-20"))) << f.meldung;
    }
}

} // namespace
