#include "tests/support/VtableLayout.h"

#include <cxxabi.h>
#include <dlfcn.h>
#include <elf.h>
#include <link.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <map>
#include <memory>
#include <unordered_map>

namespace TestSupport {
namespace {

struct Symbol {
    std::string name;
    std::size_t size;
};

/// The symbols of one loaded file by their addresses in the file.
using Symbols = std::unordered_multimap<std::uintptr_t, Symbol>;

/// The object of type `T` at a place in the bytes of a file.
template <class T>
T at(const std::vector<char>& file, std::size_t offset) {
    T value;
    std::memcpy(&value, file.data() + offset, sizeof value);
    return value;
}

std::vector<char> contentsOf(const char* path) {
    std::ifstream in(path, std::ios::binary | std::ios::ate);
    std::vector<char> contents(static_cast<std::size_t>(in.tellg()));
    in.seekg(0).read(contents.data(), static_cast<std::streamsize>(contents.size()));
    return contents;
}

Symbols symbolsIn(const char* path) {
    const std::vector<char> file = contentsOf(path);
    const auto header = at<ElfW(Ehdr)>(file, 0);
    const auto section = [&](std::size_t index) {
        return at<ElfW(Shdr)>(file, header.e_shoff + index * sizeof(ElfW(Shdr)));
    };
    Symbols symbols;
    for (std::size_t i = 0; i < header.e_shnum; ++i) {
        const auto table = section(i);
        if (table.sh_type != SHT_SYMTAB) continue;
        const char* names = file.data() + section(table.sh_link).sh_offset;
        for (std::size_t n = 0; n < table.sh_size / sizeof(ElfW(Sym)); ++n) {
            const auto symbol = at<ElfW(Sym)>(file, table.sh_offset + n * sizeof(ElfW(Sym)));
            const auto type = ELF64_ST_TYPE(symbol.st_info);
            if (symbol.st_shndx == SHN_UNDEF || (type != STT_FUNC && type != STT_OBJECT)) continue;
            symbols.emplace(symbol.st_value, Symbol{names + symbol.st_name, symbol.st_size});
        }
    }
    return symbols;
}

/// What is called `prefix...` at an address of this process; null where nothing is.
const Symbol* symbolAt(const void* address, const char* prefix) {
    Dl_info file;
    if (dladdr(address, &file) == 0) return nullptr;
    static std::map<std::string, Symbols> known;
    const auto [entry, isNew] = known.try_emplace(file.dli_fname);
    if (isNew) {
        const bool isProgram = file.dli_fname == std::string(program_invocation_name);
        entry->second = symbolsIn(isProgram ? "/proc/self/exe" : file.dli_fname);
    }
    const auto offset = reinterpret_cast<std::uintptr_t>(address) -
                        reinterpret_cast<std::uintptr_t>(file.dli_fbase);
    const auto [from, to] = entry->second.equal_range(offset);
    for (auto symbol = from; symbol != to; ++symbol)
        if (symbol->second.name.starts_with(prefix)) return &symbol->second;
    return nullptr;
}

std::string operationName(const std::string& mangled) {
    if (mangled.ends_with("D0Ev")) return "delete ~";
    if (mangled.ends_with("D1Ev") || mangled.ends_with("D2Ev")) return "~";
    if (mangled == "__cxa_pure_virtual") return mangled;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(mangled.c_str(), nullptr, nullptr, nullptr), std::free);
    const std::string name = text ? text.get() : mangled;
    return name.substr(0, name.find('('));
}

}  // namespace

std::vector<std::string> virtualOperations(const void* object) {
    const auto* slots = at<const void* const*>(
        {static_cast<const char*>(object), static_cast<const char*>(object) + sizeof(void*)}, 0);
    const Symbol* table = symbolAt(slots - 2, "_ZTV");
    std::vector<std::string> operations;
    if (table == nullptr) return operations;
    for (std::size_t slot = 0; slot < table->size / sizeof(void*) - 2; ++slot) {
        const Symbol* operation = symbolAt(slots[slot], "_");
        operations.push_back(operation == nullptr ? "?" : operationName(operation->name));
    }
    return operations;
}

}  // namespace TestSupport
