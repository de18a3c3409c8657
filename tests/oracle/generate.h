#pragma once
// Trees and commands that nobody thought of.

#include <cstdint>
#include <random>

#include "answers.h"
#include "model.h"

class Generator {
public:
    Generator(std::uint64_t seed, std::string root_path, uid_t user);

    /// A small tree of few names, so that they meet often.
    Model MakeTree();

private:
    friend struct Command;
    std::size_t Below(std::size_t limit) { return engine_() % limit; }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template <typename List>
    auto Pick(const List& list)
    {
        return *(std::begin(list) + static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }
    NodePointer MakeNode(std::size_t depth);
    std::string MakeContent();
    std::string MakeLinkText(std::size_t depth);
    std::string PickPath(const Model& model);
    std::string NewPath(const Model& model);

    std::mt19937_64 engine_;
    std::string root_path_;
    uid_t user_;
    std::vector<std::string> names_;
    std::vector<NodePointer> files_;  ///< That may get another name.
    int contents_ = 0;
};

enum CommandKind { COMMAND_COPY = 2, COMMAND_MOVE = 3, COMMAND_DELETE = 4, COMMAND_MAKE = 5 };

/// What the user does, and answers.
struct Command {
    Command() = default;
    Command(Generator& random, const Model& model);

    /// As the program runs it; the answers are set up for it.
    Result RunEngine() const;
    Result RunModel(Model& model) const;
    std::string Describe() const;

    CommandKind kind = COMMAND_COPY;
    std::string destination;
    std::vector<std::string> sources;
    bool confirms = true;
    Answers script;
};
