// Drives a target of tests/fuzz without libFuzzer: every file of the corpus, then random changes.
//
//   fuzz-TARGET DIRECTORY RUNS [SEED]

#include <random>

#include "fuzz.h"

namespace {

std::string Mutate(std::mt19937& engine, const std::vector<std::string>& corpus)
{
    const auto below = [&engine](std::size_t limit) { return limit == 0 ? 0 : engine() % limit; };
    std::string text = corpus[below(corpus.size())];
    for (std::size_t changes = 1 + below(6); changes > 0; --changes) {
        const std::size_t at = below(text.size() + 1);
        const std::string& other = corpus[below(corpus.size())];
        const std::string inserts[] = {std::string(1, static_cast<char>(engine())),
                                       std::string(1, "\0\n =/*[\xB0"[below(8)]),
                                       other.substr(below(other.size()), 1 + below(below(4) == 0 ? 4000 : 16)), ""};
        text.replace(at, below(2) * below(8), inserts[below(4)]);
    }
    return text;
}

}  // namespace

int main(int argc, char** argv)
{
    Require(argc >= 3, "a directory of inputs and a number of runs are needed");
    std::vector<std::string> corpus;
    for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
        std::ifstream stream(entry.path(), std::ios::binary);
        corpus.emplace_back(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>());
    }
    Require(!corpus.empty(), argv[1]);
    std::sort(corpus.begin(), corpus.end());
    std::mt19937 engine(argc > 3 ? static_cast<unsigned>(std::atol(argv[3])) : 1);
    for (std::size_t i = 0; i < corpus.size() + static_cast<std::size_t>(std::atol(argv[2])); ++i) {
        const std::string text = i < corpus.size() ? corpus[i] : Mutate(engine, corpus);
        // A copy without spare capacity lets a sanitizer see reads behind its end.
        const std::vector<std::uint8_t> data(text.begin(), text.end());
        LLVMFuzzerTestOneInput(data.data(), data.size());
    }
}
