#pragma once
// The fixture of tests that work with the record of settings.

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <ctime>
#include <optional>
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
