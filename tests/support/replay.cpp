// Drives a target of tests/fuzz where there is no libFuzzer: every file of the corpus, then random
// changes of them.
//
//   fuzz-TARGET DIRECTORY [RUNS [SEED]]

#include <algorithm>
#include <cstdio>
#include <random>
#include <vector>

#include "fuzz.h"

namespace {

std::mt19937 engine;

std::size_t Below(std::size_t limit)
{
    return limit == 0 ? 0 : engine() % limit;
}

/// A part of one of the files, which hold the words that the readers know.
std::string SomePart(const std::vector<std::string>& corpus)
{
    const std::string& text = corpus[Below(corpus.size())];
    return text.substr(Below(text.size()), 1 + Below(Below(4) == 0 ? 4000 : 16));
}

std::string Mutate(const std::vector<std::string>& corpus)
{
    std::string text = corpus[Below(corpus.size())];
    for (std::size_t changes = 1 + Below(6); changes > 0; --changes) {
        const std::size_t at = Below(text.size() + 1);
        switch (Below(4)) {
        case 0:
            text.insert(at, 1, static_cast<char>(engine()));
            break;
        case 1:
            text.insert(at, SomePart(corpus));
            break;
        case 2:
            text.erase(at, 1 + Below(8));
            break;
        default:
            if (at < text.size()) {
                text[at] = static_cast<char>(Below(3) == 0 ? engine() : "\0\n =/*[\xB0"[Below(8)]);
            }
        }
    }
    return text;
}

void Run(const std::string& text)
{
    // Of its own size, so that a sanitizer sees what is read behind its end.
    const std::vector<std::uint8_t> data(text.begin(), text.end());
    LLVMFuzzerTestOneInput(data.data(), data.size());
}

}  // namespace

int main(int argc, char** argv)
{
    Require(argc >= 2, "a directory of inputs is needed");
    const long runs = argc > 2 ? std::atol(argv[2]) : 0;
    const unsigned seed = argc > 3 ? static_cast<unsigned>(std::atol(argv[3])) : 1;
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    Require(!paths.empty(), argv[1]);
    std::vector<std::string> corpus;
    for (const std::string& path : paths) {
        std::ifstream stream(path, std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
        Run(corpus.back());
    }
    engine.seed(seed);
    std::printf("%zu inputs, %ld changes of them, seed %u\n", corpus.size(), runs, seed);
    std::fflush(stdout);
    for (long i = 0; i < runs; ++i) {
        Run(Mutate(corpus));
    }
}
