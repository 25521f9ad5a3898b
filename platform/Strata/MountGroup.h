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

/// The mounts that one mounter requests, and the database's answers.
class PLATFORM_API MountGroup : public Orin::Node {
public:
    explicit MountGroup(const Orin::Ptr<EntityManager>& entityManager);

    /// Requests a mount. The database grants or refuses it at once.
    void doMount(const Mount& mount);
    /// All mounts, in the order of the requests.
    const std::vector<Mount>& mounts() const noexcept { return mounts_; }
    /// One line for each refused mount: its path and the reason.
    const std::vector<std::string>& faults() const noexcept { return faults_; }
    /// `mountSuccess_` if every mount was granted, otherwise `mountFailed_`.
    MountStatus status() const noexcept { return faults_.empty() ? mountSuccess_ : mountFailed_; }

private:
    Orin::Ptr<EntityManager> entityManager_;
    std::vector<Mount> mounts_;
    std::vector<std::string> faults_;
};

}  // namespace Strata
