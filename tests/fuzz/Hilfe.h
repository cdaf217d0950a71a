#pragma once
// Shared by the fuzz targets.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>

// A scratch directory of this process, removed at exit (never destroyed, so the exit handler
// cannot outlive it). The readers' messages on malformed input are expected: std::cout and
// std::cerr lose their buffers; libFuzzer and the sanitizers write to the descriptors, visible.
inline const std::string& fuzzVerzeichnis() {
    static const std::string* v = [] {
        std::cout.rdbuf(nullptr);
        std::cerr.rdbuf(nullptr);
        const char* tmp = std::getenv("TMPDIR");
        auto* s = new std::string(std::string(tmp ? tmp : "/tmp") + "/akkfuzz.XXXXXX");
        if (!mkdtemp(s->data()) || std::atexit([] {
                std::error_code e;
                std::filesystem::remove_all(fuzzVerzeichnis(), e);
            }))
            std::abort();
        return s;
    }();
    return *v;
}

// Writes the file and returns its name.
inline const char* schreibe(const std::string& pfad, const void* daten, std::size_t n) {
    std::FILE* f = std::fopen(pfad.c_str(), "wb");
    if (!f || std::fwrite(daten, 1, n, f) != n || std::fclose(f) != 0)
        std::abort();
    return pfad.c_str();
}
