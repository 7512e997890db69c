// Runs a fuzz target without libFuzzer.
#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr int kUsageError = 64;
constexpr std::size_t kMaxInputSize = 8192;
constexpr std::size_t kMaxRepeats = 64;
constexpr std::size_t kMaxMutations = 4;

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t limit) {
    return limit == 0 ? 0 : static_cast<std::size_t>(random() % limit);
}

void mutateOnce(Random& random, std::string& input, const std::string& other) {
    // Bytes that formats give a meaning come more often than chance would bring them.
    static constexpr std::string_view kTelling("<>&;:/\"' =,-\n\r\t\0\x01\x7f\x80\xff", 20);
    const std::size_t at = below(random, input.size() + 1);
    const std::string part = input.substr(at, below(random, 64));
    switch (below(random, 5)) {
        case 0:
            if (at < input.size()) {
                input[at] = static_cast<char>(input[at] ^ (1 << below(random, 8)));
            }
            break;
        case 1:
            input.insert(at, 1,
                         random() % 2 == 0 ? kTelling[below(random, kTelling.size())]
                                           : static_cast<char>(random() & 0xFFU));
            break;
        case 2:
            input.erase(at, part.size());
            break;
        case 3:
            input = input.substr(0, at) + other.substr(below(random, other.size() + 1));
            break;
        default:
            for (std::size_t times = below(random, kMaxRepeats); times > 0; --times) {
                input.insert(at, part);
            }
    }
}

std::string mutate(Random& random, const std::vector<std::string>& seeds) {
    std::string input = seeds[below(random, seeds.size())];
    for (std::size_t count = 1 + below(random, kMaxMutations); count > 0; --count) {
        mutateOnce(random, input, seeds[below(random, seeds.size())]);
    }
    input.resize(std::min(input.size(), kMaxInputSize));
    return input;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void collect(const std::filesystem::path& path, std::vector<std::string>& seeds) {
    std::set<std::filesystem::path> files;  // the order of a directory is not the same anywhere
    if (!std::filesystem::is_directory(path)) {
        files.insert(path);
    } else {
        for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) {
                files.insert(entry.path());
            }
        }
    }
    for (const auto& file : files) {
        seeds.push_back(readFile(file));
    }
}

/// `crashFile` holds the input that runs, so that it is there when the process dies of it. It is
/// kept open, since opening it for every input would take longer than most inputs do.
void run(int crashFile, const std::string& input) {
    const auto size = static_cast<ssize_t>(input.size());
    if (::ftruncate(crashFile, 0) != 0 ||
        ::pwrite(crashFile, input.data(), input.size(), 0) != size) {
        std::cerr << "cannot keep the input\n";
        std::exit(1);
    }
    // A copy of the exact size on the heap, so that a read beyond it is seen.
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::uint64_t runs = 0;
    std::uint64_t start = 1;
    std::vector<std::string> places;
    CLI::App line(
        "Gives the target every file as it is, then inputs made by mutating them. What "
        "fails is in the file crash-TARGET of the current directory afterwards.");
    line.add_option("--runs", runs, "How many mutated inputs")->capture_default_str();
    line.add_option("--seed", start, "The same makes the same inputs")->capture_default_str();
    line.add_option("FILE-OR-DIRECTORY", places)->required()->check(CLI::ExistingPath);
    try {
        line.parse(argc, argv);
    } catch (const CLI::ParseError& failure) {
        return line.exit(failure) == 0 ? 0 : kUsageError;
    }
    std::vector<std::string> seeds;
    for (const std::string& place : places) {
        collect(place, seeds);
    }
    if (seeds.empty()) {
        std::cerr << "no input files\n";
        return kUsageError;
    }
    const std::string path = "crash-" + std::filesystem::path(argv[0]).filename().string();
    const int crashFile = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    for (const std::string& input : seeds) {
        run(crashFile, input);
    }
    Random random(start);
    for (std::uint64_t i = 0; i < runs; ++i) {
        run(crashFile, mutate(random, seeds));
    }
    ::close(crashFile);
    std::filesystem::remove(path);
    std::cout << seeds.size() << " files, " << runs << " mutated inputs\n";
    return 0;
}
