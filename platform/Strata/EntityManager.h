#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform/Orin/Export.h"
#include "platform/Orin/Ptr.h"
#include "platform/Vex/TypedNode.h"

namespace Strata {

/// The state database: entities by the path at which they can be mounted, `/` between its parts
/// and none at its ends.
class PLATFORM_API EntityManager : public Orin::Node {
public:
    using Entities = std::map<std::string, Orin::Ptr<Vex::TypedNode>, std::less<>>;

    /// Puts an entity at the path, in place of what was there.
    void entityIs(std::string_view path, const Orin::Ptr<Vex::TypedNode>& entity);
    /// The entity at the path; null if there is none.
    Orin::Ptr<Vex::TypedNode> getEntity(std::string_view path) const;
    const Entities& entities() const noexcept { return entities_; }

private:
    Entities entities_;
};

}  // namespace Strata
