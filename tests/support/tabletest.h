#pragma once
// The fixture of tests that work with the record of settings.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <random>
#include <string>

#include "core/fnktable.h"
#include "scratch.h"

/// Sets an environment variable, null unsets it, and puts it back when the test ends.
class ScopedVariable {
public:
    ScopedVariable(const char* name, const char* value) : name_(name)
    {
        if (const char* const old = std::getenv(name)) {
            old_ = old;
        }
        Set(value);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() { Set(old_ ? old_->c_str() : nullptr); }

    void Set(const char* value)
    {
        value != nullptr ? setenv(name_, value, 1) : unsetenv(name_);
        tzset();
    }

private:
    const char* name_;
    std::optional<std::string> old_;
};

/// Text is stepped through differently in these.
constexpr const char* kTwoByteLocale = "C";
constexpr const char* kUtf8Locale = "C.UTF-8";

/// A private home, a directory for the files of the test, which is both RootDir and CurrentDir,
/// and a record of defaults behind pGTable.
class TableTest : public ::testing::Test {
protected:
    TableTest()
    {
        umask(022);
        table.RootDir = table.CurrentDir = files.Path();
        pGTable = &table;
    }
    ~TableTest() override
    {
        pGTable = nullptr;
        SetLocale("C");
    }

    static void SetLocale(const char* name) { Require(std::setlocale(LC_ALL, name) != nullptr, name); }

    ScratchDirectory home;
    ScratchDirectory files;
    ScopedVariable home_variable{"HOME", home.Path().c_str()};
    GTable table;
};

/// Tells its seed when the test fails; FENNICK_TEST_SEED repeats a run.
class SeededRandom {
public:
    SeededRandom()
    {
        const char* const given = std::getenv("FENNICK_TEST_SEED");
        seed_ = given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
        engine.seed(seed_);
    }
    std::string Trace() const { return "FENNICK_TEST_SEED=" + std::to_string(seed_); }
    /// 0 to limit - 1.
    std::size_t Below(std::size_t limit) { return engine() % limit; }
    template <typename List>
    auto Pick(const List& list)
    {
        return *(std::begin(list) + static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

    std::mt19937_64 engine;

private:
    unsigned seed_ = 0;
};
