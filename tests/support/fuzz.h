#pragma once
// What the targets in tests/fuzz share. Each target takes any bytes: libFuzzer drives it in the
// preset "fuzz", support/replay.cpp in the ordinary tests.

#include <locale.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/fnktable.h"
#include "scratch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Aborts, which the driver takes for a finding.
inline void Expect(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

inline std::string AsText(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// The size decides between two locales that step through text differently. True for UTF-8.
inline bool SetLocaleFor(std::size_t size)
{
    static const locale_t kLocales[] = {newlocale(LC_ALL_MASK, "C", nullptr),
                                        newlocale(LC_ALL_MASK, "C.UTF-8", nullptr)};
    uselocale(kLocales[size % 2]);
    return size % 2 != 0;
}

/// A home directory, and a record of defaults.
struct FuzzHome {
    FuzzHome()
    {
        setenv("HOME", files.Path().c_str(), 1);
        table.RootDir = table.CurrentDir = files.Path();
        pGTable = &table;
    }

    ScratchDirectory files;
    GTable table;
};
