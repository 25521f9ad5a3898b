#pragma once

#include <string>
#include <variant>

namespace QosAgent::Lmdb {

/// The folder of a store, which this program alone uses while the object lives.
class StoreFolder {
public:
    /// Takes the folder, made with mode 0700 if it is not there; or says why it cannot be had.
    static std::variant<StoreFolder, std::string> take(const std::string& path);
    StoreFolder(StoreFolder&& other) noexcept;
    StoreFolder& operator=(StoreFolder&&) = delete;
    ~StoreFolder();

    /// The file with the data.
    std::string dataFile() const { return path_ + "/data.mdb"; }
    /// What a new one is called until it is complete.
    std::string newFile() const { return path_ + "/new.mdb"; }
    /// Renames the new file to that of the data, so that it outlives a loss of power. Returns
    /// `errno`, or 0.
    int putNewFileInPlace() const;
    /// Whether the disk has no room left.
    bool isFull() const;

private:
    StoreFolder(std::string path, int lock) : path_(std::move(path)), lock_(lock) {}

    std::string path_;
    int lock_;
};

}  // namespace QosAgent::Lmdb
