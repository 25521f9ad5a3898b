#include "platform/Strata/EntityManager.h"

#include "platform/Vex/Escape.h"
#include "platform/Vex/TypeRecord.h"

namespace Strata {
namespace {

std::string wrongType(std::string_view hosted, std::string_view wanted) {
    std::string fault = "its type is " + std::string(hosted) + ", not ";
    Vex::appendEscaped(fault, wanted);
    return fault;
}

}  // namespace

void EntityManager::entityIs(std::string_view path, const Orin::Ptr<Vex::TypedNode>& entity,
                             Access access) {
    entities_.insert_or_assign(std::string(path), Hosted{entity, access});
}

Orin::Ptr<Vex::TypedNode> EntityManager::getEntity(std::string_view path) const {
    const auto at = entities_.find(path);
    return at == entities_.end() ? nullptr : at->second.entity;
}

std::string EntityManager::faultOf(const Mount& mount) const {
    const auto at = entities_.find(mount.path());
    if (at == entities_.end() || !at->second.entity) return "there is no such path";
    const std::string_view type = at->second.entity->typeData().fullName;
    if (type != mount.type()) return wrongType(type, mount.type());
    if (mount.flags().has(MountFlag::write) && at->second.access != Access::readAndWrite)
        return "it must not be written";
    if (mount.flags().val() == 0) return "neither reading nor writing is asked for";
    return {};
}

}  // namespace Strata
