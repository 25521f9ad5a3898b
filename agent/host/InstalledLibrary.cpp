#include "agent/host/InstalledLibrary.h"

#include <dlfcn.h>

#include "agent/host/InstalledFiles.h"

namespace QosAgent {

std::variant<void*, std::string> openInstalled(const InstalledLibrary& library) {
    const std::string path = installedLibrary(library.file);
    if (path.empty())
        return std::string("needs the package ") + library.package + ", which is not installed";
    void* const opened = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const symbol = opened == nullptr ? nullptr : ::dlsym(opened, library.symbol);
    if (symbol == nullptr) return std::string("cannot be loaded: ") + ::dlerror();
    return symbol;
}

}  // namespace QosAgent
