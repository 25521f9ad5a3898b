#include "platform/Vex/Module.h"

#include <algorithm>
#include <optional>
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

/// Returns where the type is registered; nothing if it is in no module.
static std::optional<FwkType> placeOf(const TypeRecord& type) {
    for (std::size_t m = 0; m < registered().size(); ++m) {
        if (registered()[m] == nullptr) continue;
        const auto types = registered()[m]->types;
        const auto at = std::find(types.begin(), types.end(), &type);
        if (at != types.end())
            return FwkType{static_cast<std::uint16_t>(m),
                           static_cast<std::uint16_t>(at - types.begin())};
    }
    return std::nullopt;
}

std::vector<const TypeRecord*> unregisteredTypes(const TypeRecord& type) {
    std::vector<const TypeRecord*> seen{&type};
    for (std::size_t at = 0; at != seen.size(); ++at)
        for (const AttributeRecord& attribute : seen[at]->attributes)
            if (attribute.role == Role::child &&
                std::find(seen.begin(), seen.end(), attribute.type->record) == seen.end())
                seen.push_back(attribute.type->record);
    std::erase_if(seen, [](const TypeRecord* each) { return placeOf(*each).has_value(); });
    return seen;
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

// `Orin::Node` only declares type records; this folder defines them.
namespace Orin {

const Vex::TypeRecord& Node::typeData() const {
    Vex::assertFail("class has a type record", "platform/Vex/Module", __LINE__,
                    __PRETTY_FUNCTION__);
}

Vex::FwkType Node::fwkType() const {
    const std::optional<Vex::FwkType> place = Vex::placeOf(typeData());
    Vex::assertThat(place.has_value(), "type is registered", "platform/Vex/Module", __LINE__,
                    __PRETTY_FUNCTION__);
    return *place;
}

}  // namespace Orin
