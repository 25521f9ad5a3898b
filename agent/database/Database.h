#pragma once

#include <string_view>
#include <vector>

#include "agent/database/InputChanges.h"
#include "agent/database/Interner.h"
#include "agent/database/Mounts.h"
#include "platform/Strata/EntityManager.h"
#include "platform/Vex/TypeRecord.h"

namespace QosAgent {

/// A subtree and its root.
struct Subtree {
    const MountPoint* mount;
    Vex::Type type;  ///< of the root
    Orin::Ptr<Vex::TypedNode> root;
};

/// The agent's database: the root entities of all subtrees, in an entity manager from which
/// plug-ins mount them. The roots are created once and never replaced.
class Database {
public:
    Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const Orin::Ptr<Strata::EntityManager>& entityManager() const { return entityManager_; }
    /// In the order of `mountPoints()`.
    const std::vector<Subtree>& subtrees() const { return subtrees_; }
    /// Returns the subtree that is mounted at the path; null if there is none.
    const Subtree* subtreeAt(std::string_view path) const;
    /// Returns the subtree that the plug-in writes.
    const Subtree& stateTree() const;
    /// The interner for all texts in the database.
    Interner& interner() { return interner_; }
    /// Every writer of the inputs must report its changes here; listeners receive them.
    InputChanges& inputChanges() { return inputChanges_; }

private:
    Orin::Ptr<Strata::EntityManager> entityManager_;
    std::vector<Subtree> subtrees_;
    Interner interner_;
    InputChanges inputChanges_;
};

}  // namespace QosAgent
