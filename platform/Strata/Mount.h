#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Orin/Export.h"

namespace Strata {

enum class MountFlag : std::uint8_t { read = 1, write = 2 };

/// The set of flags of a mount.
class AllMountFlags {
public:
    std::uint8_t val() const noexcept { return val_; }
    void valIs(std::uint8_t val) noexcept { val_ = val; }
    bool has(MountFlag flag) const noexcept {
        return (val_ & static_cast<std::uint8_t>(flag)) != 0;
    }
    void add(MountFlag flag) noexcept { val_ |= static_cast<std::uint8_t>(flag); }

private:
    std::uint8_t val_ = static_cast<std::uint8_t>(MountFlag::read);
};

/// A request for access to the entity at a path.
class PLATFORM_API Mount {
public:
    /// A new mount has read access.
    Mount(std::string_view path, std::string_view type) : path_(path), type_(type) {}

    const std::string& path() const noexcept { return path_; }
    /// The full name of the entity's type.
    const std::string& type() const noexcept { return type_; }
    AllMountFlags& flags() noexcept { return flags_; }
    const AllMountFlags& flags() const noexcept { return flags_; }
    /// Adds flags by letters: `r` for read, `w` for write access. Throws `std::invalid_argument`
    /// for any other letter; no flag is added then.
    void handleFlags(std::string_view letters);

private:
    std::string path_;
    std::string type_;
    AllMountFlags flags_;
};

}  // namespace Strata
