#pragma once
// The fixture of tests that work with the record of settings.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <random>
#include <string>

#include "fnktable.h"
#include "scratch.h"

/// Puts an environment variable back when the test ends; null unsets it.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name)
    {
        if (const char* const old = std::getenv(name)) {
            had_value_ = true;
            old_ = old;
        }
        Set(value);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() { Set(had_value_ ? old_.c_str() : nullptr); }

    void Set(const char* value)
    {
        if (value != nullptr) {
            setenv(name_, value, 1);
        } else {
            unsetenv(name_);
        }
        tzset();
    }

private:
    const char* name_;
    bool had_value_ = false;
    std::string old_;
};

/// A private home, a directory with the files of the test, which is both RootDir and CurrentDir,
/// a record of defaults behind pGTable, and the "C" locale.
class TableTest : public ::testing::Test {
protected:
    TableTest()
    {
        table.RootDir = files.Path();
        table.CurrentDir = files.Path();
        pGTable = &table;
        std::setlocale(LC_ALL, "C");
    }
    ~TableTest() override
    {
        pGTable = nullptr;
        std::setlocale(LC_ALL, "C");
    }

    ScratchDirectory home;
    ScratchDirectory files;
    ScopedVariable home_variable{"HOME", home.Path().c_str()};
    GTable table;
};

/// The locales that text is stepped through differently in.
constexpr const char* kTwoByteLocale = "C";
constexpr const char* kUtf8Locale = "C.UTF-8";

/// A generator whose seed is told when the test fails; FENNICK_TEST_SEED repeats a run.
class SeededRandom {
public:
    SeededRandom()
    {
        const char* const given = std::getenv("FENNICK_TEST_SEED");
        seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
        engine_.seed(seed_);
    }
    std::string Trace() const { return "FENNICK_TEST_SEED=" + std::to_string(seed_); }
    /// 0 to limit - 1.
    std::size_t Below(std::size_t limit) { return engine_() % limit; }
    template <typename List>
    auto Pick(const List& list)
    {
        return *(std::begin(list) + static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

private:
    unsigned seed_ = 0;
    std::mt19937_64 engine_;
};
