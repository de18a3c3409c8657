#pragma once
// Searches directories for names. A search uses neither the window nor the record, so it can run in
// its own thread and outlive both.

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

struct FindRequest {
    std::string StartPath;  ///< Absolute, canonical, ending in "/".
    std::string Pattern;    ///< For MatchPattern.
    bool SubDir = false;    ///< Search subdirectories as well.
};

/// A match, or a directory that contains one at any depth.
struct FoundEntry {
    std::size_t name = 0;  ///< Offset into FoundTree::names_.
    std::uint32_t parent = 0;
    std::uint32_t first_child = 0;  ///< The other children follow it.
    std::uint32_t child_count = 0;
    bool is_directory = false;
};

/// The result of a search. The name of the top entry is StartPath, all others are plain names.
/// Siblings are sorted by the bytes of their names.
class FoundTree {
public:
    static constexpr std::uint32_t kTop = 0;

    /// Contains only the top entry.
    explicit FoundTree(const std::string& top);

    const FoundEntry& Entry(std::uint32_t index) const { return entries_[index]; }
    const char* Name(const FoundEntry& entry) const { return names_.c_str() + entry.name; }
    const char* Name(std::uint32_t index) const { return Name(entries_[index]); }

private:
    friend class FindWalk;
    FoundEntry NewEntry(const std::string& name, bool is_directory);
    void AdoptChildren(FoundEntry& parent, std::vector<FoundEntry>& children);

    std::string names_;  ///< Each ends in a NUL.
    std::vector<FoundEntry> entries_;
};

/// Connects a search with the thread that waits for it.
class FindProgress {
public:
    void Stop() { stop_ = true; }
    bool IsStopped() const { return stop_; }
    /// Called by the search for each name. Cheap: copies the name only if CurrentName was called since
    /// the last copy.
    void ReportName(const char* name);
    /// A recent name: the first one reported after the previous call. Empty at first.
    std::string CurrentName();

    /// Matches beyond these are only counted.
    static constexpr std::size_t kReportedMatches = 1000;
    /// Called by the search for each match; path is below StartPath and may end in "/". It is only asked
    /// for while matches are reported.
    template <typename MakePath>
    void ReportMatch(const MakePath& path)
    {
        if (++match_count_ <= kReportedMatches) {
            const std::lock_guard<std::mutex> lock(mutex_);
            matches_.push_back(path());
        }
    }
    std::size_t MatchCount() const { return match_count_; }
    /// The matches reported since the last call.
    std::vector<std::string> TakeMatches();

private:
    std::atomic<bool> stop_ = false;
    std::atomic<bool> is_wanted_ = true;
    std::atomic<std::size_t> match_count_ = 0;
    std::mutex mutex_;
    std::string name_;
    std::vector<std::string> matches_;
};

/// Searches until it is done or stopped, and returns what it has found. Does not follow links, and
/// skips directories that it cannot read or that are mounted inside themselves.
FoundTree FindFile(const FindRequest& request, FindProgress& progress);

/// A search in its own thread. The destructor abandons it without waiting, so a hung disk blocks
/// nobody.
class BackgroundSearch {
public:
    explicit BackgroundSearch(const FindRequest& request);
    BackgroundSearch(const BackgroundSearch&) = delete;
    BackgroundSearch& operator=(const BackgroundSearch&) = delete;
    ~BackgroundSearch() { Stop(); }

    void Stop() { state_->progress.Stop(); }
    bool IsStopped() const { return state_->progress.IsStopped(); }
    FindProgress& Progress() { return state_->progress; }
    bool IsDone() const { return state_->is_done; }
    /// Call it once, and only when IsDone.
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
