#pragma once
// What the targets in tests/fuzz have in common. Each is one procedure that is handed bytes nobody
// chose: built with clang (the preset "fuzz") it is driven by libFuzzer, in the ordinary tests
// by support/replay.cpp.

#include <fcntl.h>
#include <langinfo.h>
#include <locale.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <utility>

#include "core/fnktable.h"
#include "scratch.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

/// Ends the program, which tells the driver that the input is a finding.
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

/// Up to the first NUL, and what is behind it up to the next.
inline std::pair<std::string, std::string> AsTwoTexts(const std::uint8_t* data, std::size_t size)
{
    const std::string both = AsText(data, size);
    const std::string first = both.c_str();
    return {first, first.size() < size ? both.c_str() + first.size() + 1 : ""};
}

/// Text is stepped through differently in these two locales; the size decides. True for UTF-8.
inline bool SetLocaleFor(std::size_t size)
{
    static const locale_t kLocales[] = {newlocale(LC_ALL_MASK, "C", nullptr),
                                        newlocale(LC_ALL_MASK, "C.UTF-8", nullptr)};
    uselocale(kLocales[size % 2]);
    return size % 2 != 0;
}

/// A record of defaults and a home with files of any bytes in it.
struct FuzzHome {
    FuzzHome()
    {
        setenv("HOME", files.Path().c_str(), 1);
        table.RootDir = table.CurrentDir = files.Path();
        pGTable = &table;
    }
    void Write(const char* name, const std::string& data) const
    {
        unlink(files.At(name).c_str());  // Truncating would have the disk wait.
        const int file = open(files.At(name).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        Require(write(file, data.data(), data.size()) == static_cast<ssize_t>(data.size()) && close(file) == 0, name);
    }

    ScratchDirectory files;
    GTable table;
};
