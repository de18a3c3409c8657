#pragma once
// Random trees, and random commands on them.

#include <cstdint>
#include <random>

#include "answers.h"
#include "disk.h"

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}
    std::size_t Below(std::size_t limit) { return engine_() % limit; }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template <typename List>
    const auto& Pick(const List& list)
    {
        return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

private:
    std::mt19937_64 engine_;
};

/// Few names, so that they clash often.
using Names = std::vector<std::string>;
Names RandomNames(Random& random);
Disk RandomDisk(Random& random, const std::string& top, const Names& names);

enum CommandKind { COMMAND_COPY, COMMAND_MOVE, COMMAND_DELETE, COMMAND_MAKE };

/// What a user does to one item, and answers.
struct Command {
    Command(Random& random, const std::string& top, const Names& names, const Disk& disk);

    /// As the program runs it.
    Result Run() const;
    std::string Describe() const;

    CommandKind kind;
    std::string source;
    std::string destination;
    bool confirms;
    bool agrees;  ///< To everything, and cancels nothing.
    Answers script;
};
