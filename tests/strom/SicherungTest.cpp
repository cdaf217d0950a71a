// Checkpoint and restart of akkstrom: a run stopped anywhere and taken up
// again with --weiter prints the remaining lines and writes the remaining
// snapshots byte for byte as the run that was never stopped; a checkpoint
// that is damaged or belongs to another run is refused before anything is
// computed.

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
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

hilfen::Lauf akkstrom(const fs::path& ordner, const std::string& optionen = "",
                      const std::string& faeden = "1") {
    // One thread: a test run shares the machine with others, where waiting
    // threads would only slow it down; the bytes are the same on any number.
    return hilfen::starte(ordner, "OMP_NUM_THREADS=" + faeden + " ", AKK_STROM, optionen);
}

// The shipped stream example with all four forces, shortened to 1300 s and
// four snapshots (325, 650, 975, 1300 s): 16 steps, up to 240 particles.
void gas(const fs::path& o) {
    fs::create_directories(o / "data");
    for (const char* d : {"OYCar.parameter", "Akk-OYCar-0"})
        fs::copy(fs::path(AKK_QUELLE) / "strom/beispiel/data" / d, o / "data" / d);
    std::ofstream(o / "data/OYCar.parameter", std::ios::app) << "\nOutputtime 1300\nOutputfiles 4\n";
}

// No forces: steps end at 5, 20 and 40 s; particle 0 is appended at 5 s and
// leaves beyond rMax at 20 s, when four more are appended.
void frei(const fs::path& o) {
    fs::create_directories(o / "data");
    hilfen::schreibe((o / "data/OYCar.parameter").string(),
                     hilfen::parameter("Stromrate 4.49320066e-17 Stromgeschwindigkeit 0.025 "
                                       "Stromstreuung 0 Stromabstand 0.01 Strombreite 0 "
                                       "Stromsaat 1\n"));
    hilfen::schreibe((o / "data/Akk-OYCar-0").string(), "Teilchenanzahl 0\nZeit 0\nTeilchendaten:\n");
}

// The snapshots of a run folder, by name.
std::vector<std::pair<std::string, std::string>> schnappschuesse(const fs::path& o) {
    std::vector<std::pair<std::string, std::string>> s;
    for (const auto& e : fs::directory_iterator(o / "data"))
        if (e.path().filename().string().rfind("Akk-OYCar-", 0) == 0)
            s.emplace_back(e.path().filename().string(), hilfen::lies(e.path().string()));
    std::sort(s.begin(), s.end());
    return s;
}

// The first group of `muster` in a run's lines "step: N akk.t: T".
std::string suche(const std::string& aus, const std::string& muster) {
    std::smatch m;
    return std::regex_search(aus, m, std::regex(muster)) ? m[1].str() : "?";
}
// The number of the step that ended at time `zeit`, and the time at which step `schritt` ended.
std::string schrittBei(const std::string& aus, const std::string& zeit) {
    return suche(aus, "step: ([0-9]+) akk\\.t: " + zeit + "\n");
}
std::string zeitNach(const std::string& aus, const std::string& schritt) {
    return suche(aus, "step: " + schritt + " akk\\.t: ([^\n]+)\n");
}

TEST(Sicherung, AngehaltenUndWeitergerechnetGleichtDemDurchgehendenLauf) {
    struct Fall {
        void (*ordner)(const fs::path&);
        std::vector<std::string> halte; // step numbers, or "@T": the step that ends at time T
    } faelle[] = {
        // After the first step, after the step that wrote the snapshot at 650 s,
        // and before the last one: one chain of four runs.
        {gas, {"1", "@650", "15"}},
        // Before and after the step that removed a particle.
        {frei, {"1", "2"}},
    };
    for (const Fall& f : faelle) {
        hilfen::TempOrdner ganz, stueck;
        f.ordner(ganz.pfad());
        f.ordner(stueck.pfad());
        const hilfen::Lauf voll = akkstrom(ganz.pfad());
        ASSERT_EQ(voll.status, 0);
        std::string aus;
        int bisher = 0; // steps done by the runs before
        for (std::string h : f.halte) {
            if (h[0] == '@')
                h = schrittBei(voll.out, h.substr(1));
            // --halt-nach counts the steps of each process.
            const hilfen::Lauf l = akkstrom(stueck.pfad(), (aus.empty() ? "" : "--weiter ") +
                                                               std::string("--halt-nach ") +
                                                               std::to_string(std::stoi(h) - bisher));
            bisher = std::stoi(h);
            EXPECT_EQ(l.status, 3) << h;
            EXPECT_EQ(l.err, "akkstrom: angehalten nach Schritt " + h + " bei t = " +
                                 zeitNach(voll.out, h) +
                                 " s; Sicherung in './data/akkstrom.sicherung', weiter mit: "
                                 "akkstrom --weiter\n");
            aus += l.out;
        }
        const hilfen::Lauf rest = akkstrom(stueck.pfad(), "--weiter");
        EXPECT_EQ(rest.status, 0);
        EXPECT_EQ(aus + rest.out, voll.out);
        EXPECT_EQ(schnappschuesse(stueck.pfad()), schnappschuesse(ganz.pfad()));
    }
}

TEST(Sicherung, RegelmaessigeSicherungenStoerenDenLaufNicht) {
    // Every third step: the checkpoint after step 15 is the last; taken up
    // there, the run prints what the whole run printed after step 15. That run
    // is on two threads: the same bytes as on one, with particles appended.
    hilfen::TempOrdner ohne, mit;
    gas(ohne.pfad());
    gas(mit.pfad());
    const hilfen::Lauf a = akkstrom(ohne.pfad());
    const hilfen::Lauf b = akkstrom(mit.pfad(), "--sicherung-schritte 3 --sicherung data/s", "2");
    EXPECT_EQ(b.status, 0);
    EXPECT_EQ(b.err, "");
    EXPECT_EQ(b.out, a.out);
    EXPECT_EQ(schnappschuesse(mit.pfad()), schnappschuesse(ohne.pfad()));
    EXPECT_FALSE(hilfen::existiert(mit.datei("data/s.neu")));
    const hilfen::Lauf c = akkstrom(mit.pfad(), "--weiter --sicherung data/s");
    ASSERT_EQ(c.status, 0);
    EXPECT_EQ(c.out, a.out.substr(a.out.find("\n", a.out.find("step: 15 ")) + 1));

    // By wall time: every 6 microseconds is after every step; 0 is never.
    for (const char* minuten : {"0.0000001", "0"}) {
        hilfen::TempOrdner o;
        gas(o.pfad());
        const hilfen::Lauf l = akkstrom(o.pfad(), std::string("--sicherung-minuten ") + minuten);
        EXPECT_EQ(l.out, a.out);
        EXPECT_EQ(hilfen::existiert(o.datei("data/akkstrom.sicherung")), minuten[1] == '.');
    }
}

TEST(Sicherung, SignalWaehrendEinSchnappschussGeschriebenWird) {
    // The snapshot at 975 s (12 kB) goes into a pipe of 4 kB that the test
    // reads only after the SIGTERM: the program is blocked in the middle of
    // writing it when the signal comes. The snapshot must come out whole, the
    // run stop after that step with a checkpoint, and go on as if never stopped.
    hilfen::TempOrdner ganz, stueck;
    gas(ganz.pfad());
    gas(stueck.pfad());
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
        const int aus = open("aus.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        const int err = open("err.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(aus, 1);
        dup2(err, 2);
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
    auto ohne975 = [](std::vector<std::pair<std::string, std::string>> s) {
        s.erase(std::remove_if(s.begin(), s.end(),
                               [](const auto& p) { return p.first == "Akk-OYCar-975"; }),
                s.end());
        return s;
    };
    EXPECT_EQ(ohne975(schnappschuesse(stueck.pfad())), ohne975(schnappschuesse(ganz.pfad())));
}

TEST(Sicherung, FremdeOderBeschaedigteSicherungWirdAbgelehnt) {
    hilfen::TempOrdner o;
    frei(o.pfad());
    ASSERT_EQ(akkstrom(o.pfad(), "--halt-nach 1").status, 3);
    const std::string sicherung = o.datei("data/akkstrom.sicherung");
    const std::string gut = hilfen::lies(sicherung);
    const std::string v = "akkstrom: Sicherung './data/akkstrom.sicherung' ";
    std::string gekippt = gut;
    gekippt[gut.size() / 2] ^= 1;
    const struct {
        std::string sicherung;  // empty: none
        std::string zusatz;     // appended to the parameter file
        std::string anfang;     // appended to the initial disc
        std::string meldung;
    } faelle[] = {
        {"", "", "", v + "l\xe4sst sich nicht lesen: No such file or directory; nichts gerechnet\n"},
        {gut.substr(0, gut.size() / 2), "", "",
         v + "ist besch\xe4" "digt oder unvollst\xe4ndig (Pr\xfc" "fsumme stimmt nicht); nichts gerechnet\n"},
        {gekippt, "", "",
         v + "ist besch\xe4" "digt oder unvollst\xe4ndig (Pr\xfc" "fsumme stimmt nicht); nichts gerechnet\n"},
        {hilfen::lies(o.datei("data/Akk-OYCar-0")), "", "",
         v + "ist keine Sicherung von akkstrom; nichts gerechnet\n"},
        {gut, "% a note\n", "",
         v + "geh\xf6rt zu einem anderen Lauf: die Parameterdatei ist nicht die, mit der sie "
             "geschrieben wurde; nichts gerechnet\n"},
        {gut, "", "\n",
         v + "geh\xf6rt zu einem anderen Lauf: die Anfangsscheibe ist nicht die, mit der sie "
             "geschrieben wurde; nichts gerechnet\n"},
    };
    for (const auto& f : faelle) {
        hilfen::TempOrdner w;
        frei(w.pfad());
        std::ofstream(w.datei("data/OYCar.parameter"), std::ios::app) << f.zusatz;
        std::ofstream(w.datei("data/Akk-OYCar-0"), std::ios::app) << f.anfang;
        if (!f.sicherung.empty())
            hilfen::schreibe(w.datei("data/akkstrom.sicherung"), f.sicherung);
        const hilfen::Lauf l = akkstrom(w.pfad(), "--weiter");
        EXPECT_EQ(l.status, 1);
        EXPECT_EQ(l.out, "");
        EXPECT_EQ(l.err, f.meldung);
        EXPECT_FALSE(hilfen::existiert(w.datei("data/Akk-OYCar-20"))) << f.meldung;
    }

    // Options: refused before anything is read or written.
    const struct {
        std::string optionen, meldung;
        int status;
    } optionen[] = {
        {"--halt-nach 0", "akkstrom: Option --halt-nach braucht eine ganze Zahl ab 1, nicht '0'\n", 2},
        {"--sicherung-schritte 2x",
         "akkstrom: Option --sicherung-schritte braucht eine ganze Zahl ab 1, nicht '2x'\n", 2},
        {"--sicherung-minuten -1",
         "akkstrom: Option --sicherung-minuten braucht eine Zahl ab 0 (0: keine), nicht '-1'\n", 2},
        {"--sicherung", "akkstrom: Option --sicherung ohne Wert\n", 2},
        {"--halt-nach 1 --sicherung fehlt/s",
         "akkstrom: in den Ordner der Sicherung 'fehlt/s' l\xe4sst sich nicht schreiben: No such "
         "file or directory\n", 1},
    };
    for (const auto& f : optionen) {
        hilfen::TempOrdner w;
        frei(w.pfad());
        const hilfen::Lauf l = akkstrom(w.pfad(), f.optionen);
        EXPECT_EQ(l.status, f.status) << f.optionen;
        EXPECT_EQ(l.out, "");
        EXPECT_EQ(l.err, f.meldung);
    }
}

} // namespace
