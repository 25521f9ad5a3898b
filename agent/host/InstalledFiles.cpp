#include "agent/host/InstalledFiles.h"

#include <filesystem>
#include <system_error>

namespace QosAgent {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPluginName = "libQosOpenConfig.so";
constexpr const char* kLibraryFolder = "lib/qos-agent";
constexpr const char* kToggleFolder = "etc/qos-agent";

fs::path programFolder() {
    std::error_code ignored;
    return fs::read_symlink("/proc/self/exe", ignored).parent_path();
}

fs::path installFolder() {
    return programFolder().parent_path();
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

}  // namespace

std::string defaultPluginFile() {
    const fs::path beside = programFolder() / kPluginName;
    return isThere(beside) ? beside : installFolder() / kLibraryFolder / kPluginName;
}

std::string installedLibrary(const std::string& name) {
    for (const fs::path& folder : {programFolder(), installFolder() / kLibraryFolder})
        if (const fs::path file = folder / name; isThere(file)) return file;
    return {};
}

std::string defaultToggleFolder() {
    const fs::path installed = installFolder();
    if (fs::path folder = installed / kToggleFolder; isThere(folder)) return folder;
    // A program that is installed in /usr has its configuration in /etc.
    const fs::path above = installed.parent_path() / kToggleFolder;
    return installed.filename() == "usr" && isThere(above) ? above : fs::path();
}

}  // namespace QosAgent
