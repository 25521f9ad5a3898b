#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "platform/Orin/Export.h"
#include "platform/Vex/TypeRecord.h"

namespace Vex {

/// The types of one library, or of one source of it, as registered with the runtime.
struct Module {
    std::string_view name;
    std::span<const TypeRecord* const> types;
};

/// Registers a module; its index is the lowest free one. The module stays where it is until
/// `vexModuleDel`.
PLATFORM_API void vexModuleIs(const Module& module);
PLATFORM_API void vexModuleDel(const Module& module) noexcept;

/// Registered from construction to destruction: a static object of the library that has the types.
class ModuleRegistration {
public:
    explicit ModuleRegistration(const Module& module) : module_(module) { vexModuleIs(module_); }
    ~ModuleRegistration() { vexModuleDel(module_); }
    ModuleRegistration(const ModuleRegistration&) = delete;
    ModuleRegistration& operator=(const ModuleRegistration&) = delete;

private:
    const Module& module_;
};

/// The modules by index; null where one has left.
PLATFORM_API std::span<const Module* const> modules() noexcept;
/// The type with this full name in any registered module; null if there is none.
PLATFORM_API const TypeRecord* typeNamed(std::string_view fullName) noexcept;

/// Returns the types that are in no registered module, among this one, the types of the children
/// that its attributes hold, and so on down the tree.
PLATFORM_API std::vector<const TypeRecord*> unregisteredTypes(const TypeRecord& type);

}  // namespace Vex
