// Runs a fuzz target without libFuzzer:
//
//     target [--runs N] [--seed S] FILE-OR-DIRECTORY...
//
// gives it every file as it is, then N inputs made by mutating them. The same seed (default 1)
// makes the same inputs, so that a failing run can be repeated. What fails is in the file
// crash-TARGET of the current directory afterwards.
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t maxInputSize = 8192;
constexpr std::size_t maxRepeats = 64;
constexpr std::size_t maxMutations = 4;

using Random = std::mt19937_64;

std::size_t below(Random& random, std::size_t limit) {
    return limit == 0 ? 0 : static_cast<std::size_t>(random() % limit);
}

/// A place in `input` and a length that does not leave it.
std::pair<std::size_t, std::size_t> piece(Random& random, const std::string& input) {
    const std::size_t begin = below(random, input.size() + 1);
    return {begin, below(random, std::min<std::size_t>(input.size() - begin, 64) + 1)};
}

void flip(Random& random, std::string& input, const std::string&) {
    if (!input.empty()) {
        char& byte = input[below(random, input.size())];
        byte = static_cast<char>(byte ^ (1 << below(random, 8)));
    }
}

void insert(Random& random, std::string& input, const std::string&) {
    // Bytes that formats give a meaning come more often than chance would bring them.
    static constexpr std::string_view telling("<>&;:/\"' =,-\n\r\t\0\x01\x7f\x80\xff", 20);
    const char byte = random() % 2 == 0 ? telling[below(random, telling.size())]
                                        : static_cast<char>(random() & 0xFFU);
    input.insert(below(random, input.size() + 1), 1, byte);
}

void erase(Random& random, std::string& input, const std::string&) {
    const auto [begin, length] = piece(random, input);
    input.erase(begin, length);
}

void splice(Random& random, std::string& input, const std::string& other) {
    const std::size_t cut = below(random, input.size() + 1);
    input = input.substr(0, cut) + other.substr(below(random, other.size() + 1));
}

void repeat(Random& random, std::string& input, const std::string&) {
    const auto [begin, length] = piece(random, input);
    const std::string part = input.substr(begin, length);
    for (std::size_t times = below(random, maxRepeats); times > 0; --times) {
        input.insert(begin, part);
    }
}

constexpr void (*mutations[])(Random&, std::string&, const std::string&) = {flip, insert, erase,
                                                                            splice, repeat};

std::string mutate(Random& random, const std::vector<std::string>& seeds) {
    std::string input = seeds[below(random, seeds.size())];
    for (std::size_t count = 1 + below(random, maxMutations); count > 0; --count) {
        const std::string& other = seeds[below(random, seeds.size())];
        mutations[below(random, std::size(mutations))](random, input, other);
    }
    input.resize(std::min(input.size(), maxInputSize));
    return input;
}

std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void collect(const std::filesystem::path& path, std::vector<std::string>& seeds) {
    if (!std::filesystem::is_directory(path)) {
        seeds.push_back(readFile(path));
        return;
    }
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (entry.is_regular_file()) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());  // the order of a directory is not the same anywhere
    for (const auto& file : files) {
        seeds.push_back(readFile(file));
    }
}

/// Holds the input that runs, so that it is there when the process dies of it. Kept open, since
/// opening a file for every input would take longer than most inputs do.
class CrashFile {
public:
    explicit CrashFile(std::string path)
        : m_path(std::move(path)),
          m_fd(::open(m_path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644)) {}
    CrashFile(const CrashFile&) = delete;
    CrashFile& operator=(const CrashFile&) = delete;
    ~CrashFile() {
        ::close(m_fd);
        std::filesystem::remove(m_path);
    }

    void hold(const std::string& input) const {
        const auto size = static_cast<ssize_t>(input.size());
        if (::ftruncate(m_fd, 0) != 0 || ::pwrite(m_fd, input.data(), input.size(), 0) != size) {
            std::cerr << "cannot keep the input in " << m_path << '\n';
            std::exit(1);
        }
    }

private:
    std::string m_path;
    int m_fd;
};

void run(const CrashFile& crashFile, const std::string& input) {
    crashFile.hold(input);
    // A copy of the exact size on the heap, so that a read beyond it is seen.
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int argc, char** argv) {
    std::uint64_t runs = 0;
    std::uint64_t seed = 1;
    std::vector<std::string> seeds;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if ((argument == "--runs" || argument == "--seed") && i + 1 < argc) {
            (argument == "--runs" ? runs : seed) = std::strtoull(argv[++i], nullptr, 10);
        } else {
            collect(argument, seeds);
        }
    }
    if (seeds.empty()) {
        std::cerr << "no input files\n";
        return 64;
    }
    const CrashFile crashFile("crash-" + std::filesystem::path(argv[0]).filename().string());
    for (const std::string& input : seeds) {
        run(crashFile, input);
    }
    Random random(seed);
    for (std::uint64_t i = 0; i < runs; ++i) {
        run(crashFile, mutate(random, seeds));
    }
    std::cout << seeds.size() << " files, " << runs << " mutated inputs\n";
    return 0;
}
