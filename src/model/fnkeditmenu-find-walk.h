#pragma once
// Searching directories for names. The walk knows no window and no record, so that it can have a
// thread of its own and outlive both.

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

struct FindRequest {
    std::string StartPath;  ///< Absolute, canonical, ending in "/".
    std::string Pattern;    ///< Of the shell's kind, for the whole name; "*" takes a leading "." too.
    bool SubDir = false;    ///< Whether to look below the directories of StartPath as well.
};

/// An entry of the result: a match, or a directory on the way to one.
struct FoundEntry {
    std::size_t name = 0;  ///< Where in the tree's text.
    std::uint32_t parent = 0;
    std::uint32_t first_child = 0;  ///< The children follow one another.
    std::uint32_t child_count = 0;
    bool is_directory = false;
};

/// What was found, as a tree; children are in the order of their names' bytes. The top is
/// StartPath, everything else a name.
class FoundTree {
public:
    static constexpr std::uint32_t kTop = 0;

    /// A tree of nothing but the top.
    explicit FoundTree(const std::string& top);

    const FoundEntry& Entry(std::uint32_t index) const { return entries_[index]; }
    const char* Name(const FoundEntry& entry) const { return names_.c_str() + entry.name; }
    const char* Name(std::uint32_t index) const { return Name(entries_[index]); }

private:
    friend class FindWalk;
    FoundEntry NewEntry(const std::string& name, bool is_directory);
    void AdoptChildren(FoundEntry& parent, std::vector<FoundEntry>& children);

    std::string names_;  ///< Each ends in a zero byte.
    std::vector<FoundEntry> entries_;
};

/// What a search and whoever waits for it tell each other, from a thread each.
class FindProgress {
public:
    void Stop() { stop_ = true; }
    bool IsStopped() const { return stop_; }
    /// The search comes past a name. Kept only if somebody asked since the last: cheap.
    void ReportName(const char* name);
    /// The name passed when this was last called; empty before there is one.
    std::string CurrentName();

private:
    std::atomic<bool> stop_ = false;
    std::atomic<bool> is_wanted_ = true;
    std::mutex mutex_;
    std::string name_;
};

/// Searches until all is seen or it is told to stop; what was found until then is the result.
/// Links are not followed, directories that cannot be read are passed over, and one that is being
/// searched already is not entered again.
FoundTree FindFile(const FindRequest& request, FindProgress& progress);

/// A search in a thread of its own. Destroying this gives it up without waiting for it: a disk
/// that does not answer holds up nobody.
class BackgroundSearch {
public:
    explicit BackgroundSearch(const FindRequest& request);
    BackgroundSearch(const BackgroundSearch&) = delete;
    BackgroundSearch& operator=(const BackgroundSearch&) = delete;
    ~BackgroundSearch() { Stop(); }

    void Stop() { state_->progress.Stop(); }
    bool IsStopped() const { return state_->progress.IsStopped(); }
    std::string CurrentName() { return state_->progress.CurrentName(); }
    bool IsDone() const { return state_->is_done; }
    /// Once it is done.
    FoundTree TakeResult() { return std::move(state_->result); }

private:
    struct State {
        explicit State(const FindRequest& search) : request(search), result(search.StartPath) {}
        FindRequest request;
        FindProgress progress;
        FoundTree result;
        std::atomic<bool> is_done = false;
    };
    std::shared_ptr<State> state_;
};
