#pragma once

#include <string>
#include <vector>

#include "platform/Orin/Export.h"
#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"
#include "platform/Strata/EntityManager.h"
#include "platform/Strata/Mount.h"
#include "platform/Strata/MountStatus.h"

namespace Strata {

/// The mounts that one mounter asks for, and the database's answer to them.
class PLATFORM_API MountGroup : public Orin::Node {
public:
    explicit MountGroup(const Orin::Ptr<EntityManager>& entityManager);

    /// Asks for a mount. The database grants or refuses it at once.
    void doMount(const Mount& mount);
    /// All mounts, in the order in which they were asked for.
    const std::vector<Mount>& mounts() const noexcept { return mounts_; }
    /// One line for each mount that was refused: its path, and why.
    const std::vector<std::string>& faults() const noexcept { return faults_; }
    /// `mountSuccess_` if every mount was granted, otherwise `mountFailed_`.
    MountStatus status() const noexcept { return faults_.empty() ? mountSuccess_ : mountFailed_; }

private:
    Orin::Ptr<EntityManager> entityManager_;
    std::vector<Mount> mounts_;
    std::vector<std::string> faults_;
};

}  // namespace Strata
