#include "agent/database/Database.h"

#include <algorithm>

#include "platform/Vex/Module.h"

namespace QosAgent {
namespace {

Subtree emptySubtree(const MountPoint& mount) {
    const Vex::TypeRecord& record = *Vex::typeNamed(mount.type);
    return {&mount, {.shape = Vex::Shape::entity, .record = &record}, record.construct({})};
}

}  // namespace

Database::Database()
    : entityManager_(Orin::Ptr<Strata::EntityManager>::adopt(new Strata::EntityManager)) {
    for (const MountPoint& mount : mountPoints()) {
        subtrees_.push_back(emptySubtree(mount));
        entityManager_->entityIs(
            mount.path, subtrees_.back().root,
            mount.isState ? Strata::Access::readAndWrite : Strata::Access::read);
    }
}

const Subtree* Database::subtreeAt(std::string_view path) const {
    for (const Subtree& subtree : subtrees_)
        if (subtree.mount->path == path) return &subtree;
    return nullptr;
}

const Subtree& Database::stateTree() const {
    return *std::find_if(subtrees_.begin(), subtrees_.end(),
                         [](const Subtree& subtree) { return subtree.mount->isState; });
}

}  // namespace QosAgent
