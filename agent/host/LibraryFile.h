#pragma once

#include <string>

#include "agent/host/File.h"

namespace QosAgent {

/// The file of a shared library, opened once: what is checked here is what is loaded, whatever
/// takes its place in the folder meanwhile.
class LibraryFile {
public:
    explicit LibraryFile(const std::string& path);

    /// Why the file must not be loaded; empty if nothing is known against it. A library is a
    /// regular file that belongs to root or to the user of this process, that nobody else may
    /// write, and that is not cut off, which would end the process. The C library refuses the rest.
    std::string fault() const;
    /// The name by which the C library loads this very file. Keep this object as long as the
    /// library is loaded: debuggers look the name up later.
    std::string loadName() const;

private:
    File file_;
};

}  // namespace QosAgent
