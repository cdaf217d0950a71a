// Reference runs: each folder under tests/data/{beispiele,regression} holds a run's inputs and,
// byte for byte, what the program must print, return and write; the regression folders predate the
// optimised, threaded forces, so no optimisation may change a result. Each run on 1, 2 and 3
// threads: the bytes may not depend on the thread count (3 on 2 cores also cuts slabs unevenly).

#include "tests/Hilfen.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

namespace fs = std::filesystem;

namespace {

// Folder paths relative to the test data, e.g. "beispiele/p01_oycar".
std::vector<std::string> beispiele() {
    std::vector<std::string> namen;
    for (const char* gruppe : {"beispiele", "regression"})
        for (const auto& e : fs::directory_iterator(fs::path(AKK_TESTDATEN) / gruppe))
            if (e.is_directory())
                namen.push_back(std::string(gruppe) + "/" + e.path().filename().string());
    std::sort(namen.begin(), namen.end());
    return namen;
}

class Beispiel : public ::testing::TestWithParam<std::tuple<std::string, int>> {};

TEST_P(Beispiel, GleichtDerReferenzBytefuerByte) {
    const auto& [ordner, faeden] = GetParam();
    const fs::path quelle = fs::path(AKK_TESTDATEN) / ordner;
    hilfen::TempOrdner arbeit;
    fs::copy(quelle / "data", arbeit.pfad() / "data", fs::copy_options::recursive);

    hilfen::Lauf lauf =
        hilfen::starte(arbeit.pfad(), "OMP_NUM_THREADS=" + std::to_string(faeden) + " ");

    const fs::path erwartet = quelle / "expected";
    EXPECT_EQ(hilfen::lies((erwartet / "exit").string()), std::to_string(lauf.status) + "\n");
    EXPECT_EQ(hilfen::lies((erwartet / "stdout").string()), lauf.out);
    EXPECT_EQ(hilfen::lies((erwartet / "stderr").string()), lauf.err);
    for (const auto& e : fs::directory_iterator(erwartet / "data")) {
        const fs::path geschrieben = arbeit.pfad() / "data" / e.path().filename();
        ASSERT_TRUE(fs::exists(geschrieben)) << geschrieben << " was not written";
        EXPECT_EQ(hilfen::lies(e.path().string()), hilfen::lies(geschrieben.string()))
            << e.path().filename();
    }
    // Nothing but the expected snapshots may appear.
    for (const auto& e : fs::directory_iterator(arbeit.pfad() / "data")) {
        const fs::path name = e.path().filename();
        EXPECT_TRUE(fs::exists(quelle / "data" / name) || fs::exists(erwartet / "data" / name))
            << "unexpected file " << name;
    }
}

INSTANTIATE_TEST_SUITE_P(Referenzlaeufe, Beispiel,
                         ::testing::Combine(::testing::ValuesIn(beispiele()),
                                            ::testing::Values(1, 2, 3)),
                         [](const auto& info) {
                             return fs::path(std::get<0>(info.param)).filename().string() + "_" +
                                    std::to_string(std::get<1>(info.param)) + "_Faeden";
                         });

} // namespace
