#include "pluginCheck/exportedNames.h"

#include <elf.h>
#include <link.h>

#include <cstring>
#include <fstream>

namespace {

// The records at this place of the file; none when they do not lie within it.
template <class Record>
std::vector<Record> recordsAt(const std::string& file, std::size_t offset, std::size_t count) {
    if (offset > file.size() || count > (file.size() - offset) / sizeof(Record)) {
        return {};
    }
    std::vector<Record> records(count);
    std::memcpy(records.data(), file.data() + offset, count * sizeof(Record));
    return records;
}

bool isExported(const ElfW(Sym) & symbol) {
    return symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS &&
           ELF64_ST_BIND(symbol.st_info) != STB_LOCAL;
}

}  // namespace

std::vector<std::string> exportedNames(const std::string& path) {
    std::ifstream stream(path, std::ios::binary | std::ios::ate);
    std::string file(stream ? static_cast<std::size_t>(stream.tellg()) : 0, '\0');
    stream.seekg(0).read(file.data(), static_cast<std::streamsize>(file.size()));
    std::vector<std::string> names;
    for (const auto& header : recordsAt<ElfW(Ehdr)>(file, 0, 1)) {
        const auto sections = recordsAt<ElfW(Shdr)>(file, header.e_shoff, header.e_shnum);
        for (const auto& section : sections) {
            if (section.sh_type != SHT_DYNSYM || section.sh_link >= sections.size()) {
                continue;
            }
            const std::size_t texts = sections[section.sh_link].sh_offset;
            for (const auto& symbol : recordsAt<ElfW(Sym)>(file, section.sh_offset,
                                                           section.sh_size / sizeof(ElfW(Sym)))) {
                const std::size_t name = texts + symbol.st_name;
                if (isExported(symbol) && name < file.size()) {
                    names.emplace_back(file.c_str() + name);
                }
            }
        }
    }
    return names;
}
