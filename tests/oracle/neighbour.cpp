// A second process that renames, deletes, makes, exchanges directories for links and changes modes
// in the tree that the engine, the list, the tree and the search are at work in. The links lead to
// a tree outside, with the same names in it, which nobody may touch.

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "engine/fnkprogress-count.h"
#include "disk.h"
#include "faults.h"
#include "model/fnkdirtree-scan.h"
#include "model/fnkeditmenu-find-walk.h"
#include "model/fnkfilelist-rows.h"
#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-delete.h"
#include "core/fnkraii.h"
#include "modes.h"
#include "scratch.h"

namespace {

constexpr const char* kNames[] = {"a", "b", "c"};

class Neighbour {
public:
    Neighbour(std::uint64_t seed, const std::string& inside, std::string outside)
        : engine_(seed), inside_(open(inside.c_str(), O_PATH | O_DIRECTORY)), outside_(std::move(outside))
    {
    }

    void Work()
    {
        for (;;) {
            // Never through a link: it may be one of its own.
            const Descriptor here = Descend();
            const Descriptor there = Descend();
            Act(here.Get(), Name(), there.Get(), Name());
        }
    }

private:
    std::size_t Below(std::size_t limit) { return engine_() % limit; }
    const char* Name() { return kNames[Below(3)]; }
    Descriptor Descend()
    {
        Descriptor directory(dup(inside_.Get()));
        for (std::size_t levels = Below(4); levels > 0; --levels) {
            Descriptor next(openat(directory.Get(), Name(), O_PATH | O_DIRECTORY | O_NOFOLLOW));
            if (next) {
                directory = std::move(next);
            }
        }
        return directory;
    }
    void Act(int here, const char* name, int there, const char* other)
    {
        switch (Below(8)) {
        case 0:
            renameat(here, name, there, other);
            break;
        case 1:
            unlinkat(here, name, Below(2) == 0 ? AT_REMOVEDIR : 0);
            break;
        case 2:
        case 3:
            mkdirat(here, name, 0755);
            break;
        case 4:
            if (const Descriptor file(openat(here, name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW, 0644)); file) {
                static_cast<void>(write(file.Get(), "mine", 4));
            }
            break;
        case 5:
            if (const Descriptor object(openat(here, name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK)); object) {
                fchmod(object.Get(), Below(2) == 0 ? 0755 : 0500);
            }
            break;
        default:
            // A directory becomes a link to one outside that looks like it, and back.
            if (renameat(here, name, inside_.Get(), "aside") == 0) {
                symlinkat((outside_ + (Below(2) == 0 ? "" : Name())).c_str(), here, name);
                if (Below(2) == 0) {
                    unlinkat(here, name, 0);
                    renameat(inside_.Get(), "aside", here, name);
                }
            }
            unlinkat(inside_.Get(), "aside", Below(2) == 0 ? AT_REMOVEDIR : 0);
        }
    }

    std::mt19937_64 engine_;
    Descriptor inside_;
    std::string outside_;
};

void Fill(const NodePointer& directory, int depth, mode_t mode)
{
    directory->type = S_IFDIR;
    directory->mode = 0755;
    for (const char* const name : kNames) {
        const auto node = std::make_shared<Node>();
        node->owner = geteuid();
        node->mode = mode;
        node->content = std::string("content of ") + name;
        if (depth > 0) {
            node->content.clear();
            Fill(node, depth - 1, mode);
        }
        directory->entries[name] = node;
    }
}

void ActOn(std::mt19937_64& random, const std::string& inside)
{
    const auto item = [&] { return inside + kNames[random() % 3] + (random() % 2 == 0 ? "/" : ""); };
    answers = Answers();
    answers.to_messages = {RESULT_OK};
    answers.to_deletes = {RESULT_YES_ALL};
    int flag = 0;
    Result answer = RESULT_CANCEL;
    switch (random() % 8) {
    case 0:
        CopyFile(item(), item(), &flag);
        break;
    case 1:
    case 2:
        MoveFile(item(), item(), &flag);
        break;
    case 3:
    case 4:
        RemoveFile(item(), &answer);
        break;
    case 5: {
        FindProgress progress;
        FindFile({inside, "*", true}, progress);
        break;
    }
    case 6: {
        FileRows rows;
        std::vector<Subdirectory> found;
        ReadFileRows(inside, rows);
        ScanSubdirectories(item(), found);
        break;
    }
    default:
        CountOperationFile(item());
    }
}

}  // namespace

std::string RunBesideNeighbour(std::uint64_t seed, const std::string& root_path)
{
    const NodePointer root = std::make_shared<Node>();
    for (const char* const name : {"inside", "outside"}) {
        root->entries[name] = std::make_shared<Node>();
        root->entries[name]->owner = geteuid();
        Fill(root->entries[name], 3, 0640);
    }
    MakeOnDisk(root_path, root);
    const std::string inside = root_path + "inside/";
    pGTable->ConfilmOverwrite = seed % 2 == 0 ? 1 : 0;
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_PDEATHSIG, SIGKILL);
        Neighbour(seed, inside, root_path + "outside/").Work();
    }
    Require(child > 0, "neighbour");
    std::mt19937_64 random(seed);
    for (int left = 40; left > 0; --left) {
        ActOn(random, inside);
    }
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    std::error_code ignored;  // What it locked goes later.
    std::filesystem::remove_all(inside, ignored);
    return Compare(root->entries["outside"], ReadDisk(root_path + "outside/"), "/outside");
}
