// What it costs the web server to load a plug-in:
//
//     dlopenCost build/release/apiMgmt/webservices/sanService/libsanService.so [RUNS]
//
// Each run is a process of its own. It loads the libraries that the plug-in needs, then measures
// the plug-in alone: time from dlopen to its return, start-up code included, and the growth of
// the process's private memory. A second kind of run loads both at once. Medians are printed.
#include <dlfcn.h>
#include <elf.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// The engine's library expects its host to have a table of this name.
extern "C" __attribute__((visibility("default"))) const void* const namespaces[4] = {};

namespace {

constexpr int kDefaultRuns = 21;

struct Cost {
    double milliseconds;
    double privateKiB;
};

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "dlopenCost: %s\n", what.c_str());
    std::_Exit(1);
}

/// The records of one type at the file offset; Fail when they do not lie inside the file.
template <class Record>
std::vector<Record> readRecords(const std::string& file, std::size_t offset, std::size_t count) {
    if (offset > file.size() || count > (file.size() - offset) / sizeof(Record)) {
        fail("not a whole shared object");
    }
    std::vector<Record> records(count);
    std::memcpy(records.data(), file.data() + offset, count * sizeof(Record));
    return records;
}

/// The names of the libraries that a 64-bit shared object says it needs.
std::vector<std::string> neededLibraries(const char* path) {
    std::ifstream stream(path, std::ios::binary);
    const std::string file((std::istreambuf_iterator<char>(stream)), {});
    const Elf64_Ehdr header = readRecords<Elf64_Ehdr>(file, 0, 1).front();
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64) {
        fail(std::string(path) + " is no 64-bit shared object");
    }
    const auto sections = readRecords<Elf64_Shdr>(file, header.e_shoff, header.e_shnum);
    std::vector<std::string> names;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_type != SHT_DYNAMIC || section.sh_link >= sections.size()) {
            continue;
        }
        const std::size_t count = section.sh_size / sizeof(Elf64_Dyn);
        for (const Elf64_Dyn& entry : readRecords<Elf64_Dyn>(file, section.sh_offset, count)) {
            const std::size_t name = sections[section.sh_link].sh_offset + entry.d_un.d_val;
            if (entry.d_tag == DT_NEEDED && name < file.size()) {
                names.emplace_back(file.c_str() + name);
            }
        }
    }
    return names;
}

void Load(const char* path, int binding) {
    if (!dlopen(path, binding | RTLD_GLOBAL)) {
        fail(dlerror());
    }
}

/// Memory that this process shares with no other and not with the page cache.
double privateMemoryKiB() {
    std::ifstream rollup("/proc/self/smaps_rollup");
    double total = 0;
    std::string word;
    while (rollup >> word) {
        if (word == "Private_Dirty:") {
            double kib = 0;
            rollup >> kib;
            total += kib;
        }
    }
    return total;
}

Cost measure(const char* path, const std::vector<std::string>& before) {
    for (const std::string& library : before) {
        Load(library.c_str(), RTLD_LAZY);  // the engine's calls back into generated code
    }
    privateMemoryKiB();  // its own buffers are there from now on
    const double held = privateMemoryKiB();
    const auto start = std::chrono::steady_clock::now();
    Load(path, RTLD_NOW);
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    return {taken.count(), privateMemoryKiB() - held};
}

Cost measureInChild(const char* path, const std::vector<std::string>& before) {
    int ends[2];
    if (pipe(ends) != 0) {
        fail("no pipe");
    }
    const pid_t child = fork();
    if (child == 0) {
        const Cost cost = measure(path, before);
        std::_Exit(write(ends[1], &cost, sizeof(cost)) == sizeof(cost) ? 0 : 1);
    }
    Cost cost{};
    close(ends[1]);
    const bool whole = child > 0 && read(ends[0], &cost, sizeof(cost)) == sizeof(cost);
    close(ends[0]);
    if (child > 0) {
        waitpid(child, nullptr, 0);
    }
    if (!whole) {
        fail("a run gave no figures");
    }
    return cost;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char* what, const char* path, const std::vector<std::string>& before, int runs) {
    std::vector<double> milliseconds;
    std::vector<double> privateKiB;
    for (int i = 0; i < runs; ++i) {
        const Cost cost = measureInChild(path, before);
        milliseconds.push_back(cost.milliseconds);
        privateKiB.push_back(cost.privateKiB);
    }
    std::printf("%-28s %8.2f ms (least %.2f) %9.0f KiB private\n", what, median(milliseconds),
                *std::min_element(milliseconds.begin(), milliseconds.end()), median(privateKiB));
}

}  // namespace

int main(int argc, char** argv) {
    const int runs = argc > 2 ? std::atoi(argv[2]) : kDefaultRuns;
    if (argc < 2 || runs < 1) {
        std::fprintf(stderr, "usage: dlopenCost PLUGIN [RUNS]\n");
        return 2;
    }
    const std::vector<std::string> needed = neededLibraries(argv[1]);
    report("plug-in, libraries loaded", argv[1], needed, runs);
    report("plug-in with its libraries", argv[1], {}, runs);
    return 0;
}
