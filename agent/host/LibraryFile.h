#pragma once

#include <string>

#include "agent/host/File.h"

namespace QosAgent {

/// The file of a shared library, opened once: the file that is checked is the file that is loaded,
/// even if the path names another one by then.
class LibraryFile {
public:
    explicit LibraryFile(const std::string& path);

    /// Returns why the file must not be loaded; empty if no reason is known. It must be a regular
    /// file, owned by root or the user of this process, not writable by others, and not truncated,
    /// which would kill the process. The C library reports other faults.
    std::string fault() const;
    /// Returns the name by which the C library loads this open file. The caller must keep this
    /// object as long as the library is loaded, because debuggers look the name up later.
    std::string loadName() const;

private:
    File file_;
};

}  // namespace QosAgent
