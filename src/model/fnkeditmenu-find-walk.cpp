#include "model/fnkeditmenu-find-walk.h"

#include <fcntl.h>

#include <algorithm>
#include <cstring>
#include <system_error>
#include <thread>
#include <utility>

#include "core/fnkfiles-place.h"
#include "core/fnkraii.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"

FoundTree::FoundTree(const std::string& top) : entries_{NewEntry(top, true)} {}

FoundEntry FoundTree::NewEntry(const std::string& name, bool is_directory)
{
    const FoundEntry entry = {.name = names_.size(), .is_directory = is_directory};
    names_.append(name.c_str(), name.size() + 1);
    return entry;
}

/// Sorts the children, appends them to entries_ and makes them the children of parent. Only now are
/// their indices known, so their own children, which are in entries_ already, get their parent here.
/// The parent of the children of the top entry is kTop from the start.
void FoundTree::AdoptChildren(FoundEntry& parent, std::vector<FoundEntry>& children)
{
    std::sort(children.begin(), children.end(), [this](const FoundEntry& one, const FoundEntry& other) {
        return std::strcmp(Name(one), Name(other)) < 0;
    });
    parent.first_child = static_cast<std::uint32_t>(entries_.size());
    parent.child_count = static_cast<std::uint32_t>(children.size());
    for (const FoundEntry& child : children) {
        const auto place = static_cast<std::uint32_t>(entries_.size());
        for (std::uint32_t i = 0; i < child.child_count; ++i) {
            entries_[child.first_child + i].parent = place;
        }
        entries_.push_back(child);
    }
}

void FindProgress::ReportName(const char* name)
{
    if (is_wanted_.load(std::memory_order_relaxed)) {
        const std::lock_guard<std::mutex> lock(mutex_);
        name_ = name;
        is_wanted_ = false;
    }
}

std::string FindProgress::CurrentName()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    is_wanted_ = true;
    return name_;
}

std::vector<std::string> FindProgress::TakeMatches()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    return std::exchange(matches_, {});
}

/// Descends by file descriptor, so a directory that is replaced with a link meanwhile cannot lead
/// elsewhere. Not recursive, because the depth of directories must not be limited by the stack.
class FindWalk {
public:
    FindWalk(const FindRequest& request, FindProgress& progress)
        : request_(request), progress_(progress), found_(request.StartPath)
    {
    }
    FoundTree Run();

private:
    /// A directory that is being searched.
    struct Level {
        std::string name;
        struct stat st;
        DirectoryStream stream;
        std::vector<FoundEntry> entries;
        bool is_match;
    };

    bool Matches(const char* name, const char* suffix);
    void AddEntry(const std::string& name, bool is_directory)
    {
        levels_.back().entries.push_back(found_.NewEntry(name, is_directory));
    }
    bool Enter(const Place& place, bool is_match);
    void Leave();
    void Visit(const struct dirent& entry);
    void VisitDirectory(const std::string& name);

    const FindRequest& request_;
    FindProgress& progress_;
    FoundTree found_;
    std::vector<Level> levels_;  ///< From StartPath to the current directory.
};

/// Reports a match. suffix is "/" for a directory.
bool FindWalk::Matches(const char* name, const char* suffix)
{
    if (!MatchPattern(request_.Pattern, name)) {
        return false;
    }
    progress_.ReportMatch([&] {
        std::string path;
        for (std::size_t i = 1; i < levels_.size(); ++i) {
            path += WithSlash(levels_[i].name);
        }
        return path + name + suffix;
    });
    return true;
}

/// False if the directory cannot be read or is already being searched, because it is mounted inside
/// itself.
bool FindWalk::Enter(const Place& place, bool is_match)
{
    DirectoryStream stream = OpenDirectory(place);
    struct stat st = {};
    if (stream == nullptr || fstat(dirfd(stream.get()), &st) != 0 ||
        std::any_of(levels_.begin(), levels_.end(), [&st](const Level& level) { return IsSameObject(level.st, st); })) {
        return false;
    }
    levels_.push_back({place.name, st, std::move(stream), {}, is_match});
    return true;
}

/// Ends the current directory. Adds it to the result if it matches or contains a match.
void FindWalk::Leave()
{
    Level level = std::move(levels_.back());
    levels_.pop_back();
    if (levels_.empty()) {
        found_.AdoptChildren(found_.entries_[FoundTree::kTop], level.entries);
    } else if (!level.entries.empty() || level.is_match) {
        AddEntry(level.name, true);
        found_.AdoptChildren(levels_.back().entries.back(), level.entries);
    }
}

void FindWalk::VisitDirectory(const std::string& name)
{
    const bool is_match = Matches(name.c_str(), "/");
    const bool is_entered = request_.SubDir && Enter({dirfd(levels_.back().stream.get()), name, name}, is_match);
    if (!is_entered && is_match) {
        AddEntry(name, true);
    }
}

void FindWalk::Visit(const struct dirent& entry)
{
    if (IsDotOrDotDot(entry.d_name)) {
        return;
    }
    progress_.ReportName(entry.d_name);
    if (IsDirectoryEntry(dirfd(levels_.back().stream.get()), entry)) {
        VisitDirectory(entry.d_name);
    } else if (Matches(entry.d_name, "")) {
        AddEntry(entry.d_name, false);
    }
}

FoundTree FindWalk::Run()
{
    // "/" has no name in its parent. As an absolute path, it needs no parent.
    const PathPlace start(request_.StartPath);
    const std::string name = request_.StartPath == "/" ? "/" : start.Get().name;
    Enter({start.Get().directory, name, request_.StartPath}, false);
    while (!levels_.empty()) {
        const struct dirent* const entry = progress_.IsStopped() ? nullptr : readdir(levels_.back().stream.get());
        if (entry != nullptr) {
            Visit(*entry);
        } else {
            Leave();
        }
    }
    return std::move(found_);
}

FoundTree FindFile(const FindRequest& request, FindProgress& progress)
{
    return FindWalk(request, progress).Run();
}

BackgroundSearch::BackgroundSearch(const FindRequest& request) : state_(std::make_shared<State>(request))
{
    const auto run = [state = state_] {
        state->result = FindFile(state->request, state->progress);
        state->is_done = true;
    };
    try {
        std::thread(run).detach();
    } catch (const std::system_error&) {
        run();  // No thread is available, so block the caller instead.
    }
}
