// Measures changing files, with the progress dialog, in turns with standard tools that do the same.
// Also measures how long the main loop is blocked meanwhile. Needs a display. FENNICK_BENCH_DIR names
// the folder for the scratch directory; it should be on a disk and have 12 GiB to spare.
//
//     script/with-display build/bench/bench-change [--growth] [PART OF A NAME]

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>

#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkprogress-count.h"
#include "kit/fnkprogress.h"
#include "measure.h"

namespace {

namespace fs = std::filesystem;

constexpr int kFiles = 10'000;
constexpr int kDirectories = 110;
constexpr std::size_t kLargeBytes = std::size_t{1} << 30;

std::string top;

/// Runs work as the commands of the window do.
void Perform(OperationKind kind, const std::string& item, const std::function<void()>& work)
{
    RunCommand({item}, kind, work);
}

void Copy(const std::string& source, const std::string& destination)
{
    Perform(OPERATION_COPY, source, [&] {
        int flag = 0;
        CopyFile(destination, source, &flag);
    });
}

void Delete(const std::string& item)
{
    Perform(OPERATION_DELETE, item, [&] {
        Result answer = RESULT_YES_ALL;
        RemoveFile(item, &answer);
    });
}

void MakeTree()
{
    for (int i = 0; i < kFiles; ++i) {
        const std::string directory =
            top + "/tree/d" + std::to_string(i % 10) + "/d" + std::to_string(i % kDirectories);
        fs::create_directories(directory);
        std::ofstream(directory + "/file" + std::to_string(i))
            << std::string(static_cast<std::size_t>(i) * 37 % 8193, 'x');
    }
    std::ofstream large(top + "/large", std::ios::binary);
    std::string block(1 << 20, '\0');
    for (std::size_t i = 0; i < kLargeBytes / block.size(); ++i) {
        std::generate(block.begin(), block.end(),
                      [seed = i]() mutable { return static_cast<char>(seed = seed * 69069 + 1); });
        large << block;
    }
    large.close();
    Tool("cat " + top + "/large > /dev/null");
}

void Measure()
{
    const auto at = [](const char* name, int run) { return top + "/" + name + std::to_string(run); };
    const auto doom = [&](const char* name) {
        return [&at, name](int run) { Tool("cp -a " + top + "/tree " + at(name, run)); };
    };
    const auto goal = [](double ratio) { return Goal{.ratio = ratio, .pause = 100}; };
    Compare("copy 10,000 files", goal(1.3), {[&](int run) { Copy(top + "/tree/", at("ours", run)); }}, "cp -a, sync",
            {[&](int run) { Tool("cp -a " + top + "/tree " + at("tool", run) + " && sync"); }});
    Compare("count 10,000 files", goal(1.2), {[&](int) { CountOperationFile(top + "/tree/"); }}, "find",
            {[&](int) { Tool("find " + top + "/tree > /dev/null"); }});
    Compare("delete 10,000 files", goal(1.3), {[&](int run) { Delete(at("doomed", run) + "/"); }, doom("doomed")},
            "rm -rf, sync",
            {[&](int run) { Tool("rm -rf " + at("tool-doomed", run) + " && sync"); }, doom("tool-doomed")});
    Compare("copy 1 GiB", goal(1.1), {[&](int run) { Copy(top + "/large", at("our-large", run)); }}, "cp, sync",
            {[&](int run) { Tool("cp " + top + "/large " + at("tool-large", run) + " && sync"); }});
}

/// A tree of count empty files, a hundred in each directory, created on first use.
std::string ManyFiles(int count)
{
    constexpr int kInDirectory = 100;
    const std::string path = top + "/files" + std::to_string(count);
    if (!fs::create_directory(path)) {
        return path;
    }
    for (int i = 0; i < count; ++i) {
        const std::string directory = path + "/d" + std::to_string(i / kInDirectory);
        fs::create_directory(directory);
        mknod((directory + "/file" + std::to_string(i)).c_str(), S_IFREG | 0644, 0);
    }
    sync();
    return path;
}

using Step = void (*)(const std::string& source, const std::string& copy);

void CopyByTool(const std::string& source, const std::string& copy)
{
    Tool("cp -a " + source + " " + copy + " && sync");
}

/// Prepares a step that works on a copy. Makes the copy, untimed, unless an earlier step left one.
void NeedCopy(const std::string& source, const std::string& copy)
{
    if (!fs::exists(copy)) {
        CopyByTool(source, copy);
    }
}

/// Copies everything before deleting anything: for some minutes after many deletions, ext4 is slow at
/// creating files.
void MeasureGrowth()
{
    const Step nothing = [](const std::string&, const std::string&) {};
    const auto row = [](const char* name, const char* copy, Step prepare, Step step) {
        const auto side = [=](int count) {
            const auto at = [path = ManyFiles(count), copy](Step act) {
                return [=](int run) { act(path, path + copy + std::to_string(run)); };
            };
            return Side{at(step), at(prepare)};
        };
        PrintGrowth(name, kUpToAMillion, side, [](int count) { return count < kMeasuredOnce ? kRuns : 1; });
    };
    row("copy", "-ours", nothing, [](const std::string& source, const std::string& copy) { Copy(source + "/", copy); });
    row("cp -a, sync", "-tool", nothing, CopyByTool);
    row("count", "-ours", NeedCopy,
        [](const std::string&, const std::string& copy) { CountOperationFile(copy + "/"); });
    row("find", "-tool", NeedCopy,
        [](const std::string&, const std::string& copy) { Tool("find " + copy + " > /dev/null"); });
    row("delete", "-ours", NeedCopy, [](const std::string&, const std::string& copy) { Delete(copy + "/"); });
    row("rm -rf, sync", "-tool", NeedCopy,
        [](const std::string&, const std::string& copy) { Tool("rm -rf " + copy + " && sync"); });
}

}  // namespace

int main(int argc, char** argv)
{
    const BenchDirectory scratch;
    top = scratch.Path();
    gtk_init(&argc, &argv);
    ReadWanted(argc, argv);
    StartFennick(top);
    if (wanted.growth) {
        MeasureGrowth();
    } else {
        MakeTree();
        Measure();
    }
    return 0;
}
