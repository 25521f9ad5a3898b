#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace QosAgent {

/// An open file; closed with this object, unless it is standard input.
class File {
public:
    /// Opens for reading; `-` is standard input.
    static File toRead(const std::string& name);
    /// The same for a file that is read as it grows. Does not wait for the first writer of a named
    /// pipe: the caller must wait until the file is readable before it reads.
    static File toReadLater(const std::string& name);
    /// Opens for writing at the end, created with `mode` if absent.
    static File toAppend(const std::string& name, unsigned mode);
    /// Opens for writing, empty and made if absent.
    static File toWrite(const std::string& name);
    File(File&& other) noexcept;
    File& operator=(File&&) = delete;
    /// Takes over what `other` has opened, under the same descriptor. Returns 0, or `errno` where
    /// `other` is not open: this file stays open then.
    int reopen(const File& other);
    ~File();

    /// Not negative if it is open.
    int fd() const { return fd_; }
    /// `errno` if it is not.
    int error() const { return error_; }

    /// Returns whether people can look up later what was read: it is a regular file, or they typed
    /// it. What came through a pipe or a socket is gone.
    bool isKept() const;

private:
    explicit File(int fd);

    int fd_;
    int error_;
};

/// Whether both names lead to one regular file, or would once it is made; `-` is standard input.
bool isSameFile(const std::string& name, const std::string& other);
/// A pipe, a device or a socket: to open or read one may mean to wait for ever.
bool isSpecialFile(const std::string& name);
inline constexpr const char* kSpecialFile = "not a regular file";

/// What a file holds, or the `errno` of what went wrong.
struct FileText {
    std::string text;
    int error = 0;
};

/// Reads a whole file, but no more than one byte over `mostBytes`.
FileText readFile(const std::string& name, std::size_t mostBytes);

}  // namespace QosAgent
