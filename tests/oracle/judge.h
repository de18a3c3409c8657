#pragma once
// What a command may do to a tree, whatever goes wrong.

#include <optional>

#include "command.h"

/// The objects that a command is about, told from the disk before it. Paths below the top, without
/// "/" at the end.
struct Reach {
    /// None when that cannot be told.
    static std::optional<Reach> Find(const Command& command, const std::string& top);

    CommandKind kind;
    std::string source;  ///< Goes, is copied, or is deleted.
    std::string target;  ///< Where the source, or the new directory, is to be.
    bool HasSource() const { return kind != COMMAND_MAKE; }
    bool HasTarget() const { return kind != COMMAND_DELETE; }
    /// Whether one is inside the other.
    bool Overlaps() const;
};

/// What is wrong with the tree after the command; nothing when nothing is. Each object is the old
/// one or the new one, whole, and nothing else has changed. Where calls of the system failed,
/// modes may be wrong, and new directories still private.
std::string Judge(const Disk& before, const Disk& after, const Reach& reach, bool has_failed);

/// What is wrong with a command that was neither cancelled nor declined, nor met an error.
std::string JudgeSuccess(const Disk& before, const Disk& after, const Reach& reach, int steps);

/// Non-directories at or below a path: the steps that a command on it takes.
int CountSteps(const Disk& disk, const std::string& path);
