#pragma once

#include <stdlib.h>

#include <filesystem>

namespace QosAgent {

/// A new, empty folder, gone in the end with all that is in it.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string name = std::filesystem::temp_directory_path() / "qos-agentXXXXXX";
        path_ = ::mkdtemp(name.data());
    }
    ~TemporaryFolder() { std::filesystem::remove_all(path_); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& name) const {
        return path_ / name;
    }

private:
    std::filesystem::path path_;
};

}  // namespace QosAgent
