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
    /// Opens a file for reading line by line; `-` is standard input. Does not wait for the first
    /// writer of a named pipe: the caller must wait until the file is readable before it reads.
    static File toReadLater(const std::string& name);
    /// Opens for appending; creates the file with `mode` if absent.
    static File toAppend(const std::string& name, unsigned mode);
    /// Opens for writing; empties the file, or creates it if absent.
    static File toWrite(const std::string& name);
    File(File&& other) noexcept;
    File& operator=(File&&) = delete;
    /// Replaces the open file by that of `other`, under the same descriptor. Returns 0. If `other`
    /// is not open, returns its `errno`, and this file stays open.
    int reopen(const File& other);
    ~File();

    /// Returns the descriptor; negative if the file is not open.
    int fd() const { return fd_; }
    /// Returns 0 if the file is open, else the `errno` of the failure.
    int error() const { return error_; }

    /// Returns true if the user can look up later what was read: a regular file, or a terminal. The
    /// contents of a pipe or a socket cannot be read again.
    bool isKept() const;

private:
    explicit File(int fd);

    int fd_;
    int error_;
};

/// Returns true if both names mean one regular file, existing or not; `-` is standard input.
bool isSameFile(const std::string& name, const std::string& other);
/// Returns true for a pipe, a device or a socket: opening or reading one may block for ever.
bool isSpecialFile(const std::string& name);
inline constexpr const char* kSpecialFile = "not a regular file";

/// The contents of a file, or the `errno` of the failure.
struct FileText {
    std::string text;
    int error = 0;
};

/// Reads a whole file, but at most `mostBytes` + 1 bytes.
FileText readFile(const std::string& name, std::size_t mostBytes);

}  // namespace QosAgent
