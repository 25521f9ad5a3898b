#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>

#include "platform/Orin/Export.h"
#include "platform/Orin/Ptr.h"
#include "platform/Strata/Mount.h"
#include "platform/Vex/TypedNode.h"

namespace Strata {

/// The access that plug-ins may have to a mounted entity.
enum class Access : std::uint8_t { read, readAndWrite };

/// The state database: entities by mount path. The parts of a path are separated by `/`; it neither
/// begins nor ends with one.
class PLATFORM_API EntityManager : public Orin::Node {
public:
    struct Hosted {
        Orin::Ptr<Vex::TypedNode> entity;
        Access access;
    };
    using Entities = std::map<std::string, Hosted, std::less<>>;

    /// Puts an entity at the path; replaces an earlier one.
    void entityIs(std::string_view path, const Orin::Ptr<Vex::TypedNode>& entity,
                  Access access = Access::read);
    /// Returns the entity at the path; null if absent.
    Orin::Ptr<Vex::TypedNode> getEntity(std::string_view path) const;
    const Entities& entities() const noexcept { return entities_; }
    /// Returns why the mount cannot be granted, in a few words; empty if it can.
    std::string faultOf(const Mount& mount) const;

private:
    Entities entities_;
};

}  // namespace Strata
