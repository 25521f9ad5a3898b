#pragma once

#include <string_view>
#include <vector>

#include "agent/database/InputChanges.h"
#include "agent/database/Interner.h"
#include "agent/database/Mounts.h"
#include "platform/Strata/EntityManager.h"
#include "platform/Vex/TypeRecord.h"

namespace QosAgent {

/// One subtree, and its root.
struct Subtree {
    const MountPoint* mount;
    Vex::Type type;  ///< of the root
    Orin::Ptr<Vex::TypedNode> root;
};

/// The state database of the agent: the roots of all subtrees, there from the beginning and never
/// replaced, in an entity manager in which plug-ins find them.
class Database {
public:
    Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    const Orin::Ptr<Strata::EntityManager>& entityManager() const { return entityManager_; }
    /// In the order of `mountPoints()`.
    const std::vector<Subtree>& subtrees() const { return subtrees_; }
    /// The one mounted at the path; null if there is none.
    const Subtree* subtreeAt(std::string_view path) const;
    /// The one that the plug-in writes.
    const Subtree& stateTree() const;
    /// For all texts that enter the database.
    Interner& interner() { return interner_; }
    /// Where every writer of the inputs reports, and others listen.
    InputChanges& inputChanges() { return inputChanges_; }

private:
    Orin::Ptr<Strata::EntityManager> entityManager_;
    std::vector<Subtree> subtrees_;
    Interner interner_;
    InputChanges inputChanges_;
};

}  // namespace QosAgent
