// Random trees, random commands and random answers: what the engine makes of them, against what a
// model says.
//
//   oracle [--sequences N] [--seed S] [--mode MODE] [--user]
//
// Every sequence has a seed of its own, printed when something is wrong with it: S for the first, S + 1 for the next.

#include <grp.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "disk.h"
#include "faults.h"
#include "modes.h"
#include "scratch.h"

namespace {

/// As a user whom permissions stop.
void BecomeOrdinaryUser()
{
    constexpr uid_t kNobody = 65534;
    Require(geteuid() != 0 || (setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
                               setresuid(kNobody, kNobody, kNobody) == 0),
            "another user");
}

std::string ListQuestions(const std::vector<std::string>& asked)
{
    std::string lines;
    for (const std::string& question : asked) {
        lines += "  " + Printable(question) + "\n";
    }
    return lines;
}

}  // namespace

std::string RunAgainstModel(std::uint64_t seed, const std::string& root_path)
{
    Generator random(seed, root_path, geteuid());
    Model model = random.MakeTree();
    MakeOnDisk(root_path, model.root);
    std::string story = Describe(model.root, "");
    for (int left = 4; left > 0; --left) {
        const Command command(random, model);
        story += command.Describe();
        const Result result = command.RunEngine();
        const Answers asked = answers;
        const Result expected = command.RunModel(model);
        if (model.has_left_root) {
            return {};
        }
        std::string differences = Compare(model.root, ReadDisk(root_path), "");
        if (result != expected) {
            differences += FormatText("The result is %X, should be %X\n", result, expected);
        }
        if (asked.asked != answers.asked || asked.steps != answers.steps) {
            differences +=
                FormatText("After %d steps it asked\n%sAfter %d steps it should have asked\n%s", asked.steps,
                           ListQuestions(asked.asked).c_str(), answers.steps, ListQuestions(answers.asked).c_str());
        }
        if (!differences.empty()) {
            return story + differences;
        }
    }
    return {};
}

int main(int argc, char** argv)
{
    constexpr struct {
        const char* name;
        std::string (*run)(std::uint64_t seed, const std::string& root_path);
    } kModes[] = {{"model", RunAgainstModel},    {"faults", RunWithFaults},       {"full", RunOnFullDisk},
                  {"kill", RunKilledEverywhere}, {"settings", RunSettingsKilled}, {"neighbour", RunBesideNeighbour}};
    std::uint64_t sequences = 1000;
    std::uint64_t seed = 1;
    const auto* mode = kModes;
    bool is_ordinary_user = false;
    for (int i = 1; i < argc; ++i) {
        const std::string option = argv[i];
        const char* const value = i + 1 < argc ? argv[i + 1] : "";
        if (option == "--user") {
            is_ordinary_user = true;
            continue;
        }
        ++i;
        if (option == "--sequences") {
            sequences = std::strtoull(value, nullptr, 10);
        } else if (option == "--seed") {
            seed = std::strtoull(value, nullptr, 10);
        } else if (option == "--mode") {
            mode = std::find_if(std::begin(kModes), std::end(kModes),
                                [&](const auto& known) { return std::strcmp(known.name, value) == 0; });
        }
        if (mode == std::end(kModes)) {
            std::fprintf(stderr, "no such mode: %s\n", value);
            return EXIT_FAILURE;
        }
    }
    if (is_ordinary_user) {
        BecomeOrdinaryUser();
    }
    std::setlocale(LC_ALL, "C.UTF-8");
    umask(022);
    faults.spares_disk = faults.sorts_directories = true;
    const ScratchDirectory files;
    files.SetMode("", 0755);
    GTable table;
    table.RootDir = table.CurrentDir = files.Path();
    pGTable = &table;
    std::printf("%s: %llu sequences from seed %llu\n", mode->name, static_cast<unsigned long long>(sequences),
                static_cast<unsigned long long>(seed));
    const auto begin = std::chrono::steady_clock::now();
    int failures = 0;
    for (std::uint64_t i = 0; i < sequences && failures < 3; ++i) {
        EmptyOnDisk(files.Path());
        const std::string wrong = mode->run(seed + i, files.Path());
        if (!wrong.empty()) {
            std::printf("--seed %llu\n%s\n", static_cast<unsigned long long>(seed + i), wrong.c_str());
            ++failures;
        }
    }
    EmptyOnDisk(files.Path());
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    std::printf("%d wrong, %.1f s\n", failures, taken.count());
    return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
