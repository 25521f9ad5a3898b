#include "platform/Strata/EntityManager.h"

namespace Strata {

void EntityManager::entityIs(std::string_view path, const Orin::Ptr<Vex::TypedNode>& entity) {
    entities_.insert_or_assign(std::string(path), entity);
}

Orin::Ptr<Vex::TypedNode> EntityManager::getEntity(std::string_view path) const {
    const auto at = entities_.find(path);
    return at == entities_.end() ? nullptr : at->second;
}

}  // namespace Strata
