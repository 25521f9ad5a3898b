#include "platform/Vex/Module.h"

#include <algorithm>
#include <vector>

#include "platform/Vex/Assert.h"

namespace Vex {
namespace {

std::vector<const Module*>& registered() {
    static std::vector<const Module*> modules;
    return modules;
}

}  // namespace

void vexModuleIs(const Module& module) {
    auto free = std::find(registered().begin(), registered().end(), nullptr);
    if (free == registered().end())
        registered().push_back(&module);
    else
        *free = &module;
}

void vexModuleDel(const Module& module) noexcept {
    std::replace(registered().begin(), registered().end(), &module,
                 static_cast<const Module*>(nullptr));
}

std::span<const Module* const> modules() noexcept {
    return registered();
}

const TypeRecord* typeNamed(std::string_view fullName) noexcept {
    for (const Module* module : registered()) {
        if (module == nullptr) continue;
        for (const TypeRecord* type : module->types)
            if (type->fullName == fullName) return type;
    }
    return nullptr;
}

FwkType TypedNode::fwkType() const {
    const TypeRecord* wanted = &typeData();
    for (std::size_t m = 0; m < registered().size(); ++m) {
        if (registered()[m] == nullptr) continue;
        const auto types = registered()[m]->types;
        const auto at = std::find(types.begin(), types.end(), wanted);
        if (at != types.end())
            return {static_cast<std::uint16_t>(m), static_cast<std::uint16_t>(at - types.begin())};
    }
    assertFail("type is registered", "platform/Vex/Module", __LINE__, __PRETTY_FUNCTION__);
}

const AttributeRecord* attributeNamed(const TypeRecord& type, std::string_view name) {
    for (const AttributeRecord& attribute : type.attributes)
        if (attribute.name == name) return &attribute;
    return nullptr;
}

const AttributeRecord* attributeWithId(const TypeRecord& type, Orin::AttributeId id) {
    for (const AttributeRecord& attribute : type.attributes)
        if (attribute.id == id) return &attribute;
    return nullptr;
}

}  // namespace Vex
