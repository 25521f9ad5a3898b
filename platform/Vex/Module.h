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

/// Registers a module under the lowest free index. The caller must keep the module at its address
/// until `vexModuleDel`.
PLATFORM_API void vexModuleIs(const Module& module);
PLATFORM_API void vexModuleDel(const Module& module) noexcept;

/// Registers a module as long as it exists. A static object of the library with the types.
class ModuleRegistration {
public:
    explicit ModuleRegistration(const Module& module) : module_(module) { vexModuleIs(module_); }
    ~ModuleRegistration() { vexModuleDel(module_); }
    ModuleRegistration(const ModuleRegistration&) = delete;
    ModuleRegistration& operator=(const ModuleRegistration&) = delete;

private:
    const Module& module_;
};

/// Returns the modules by index; null where a module was unregistered.
PLATFORM_API std::span<const Module* const> modules() noexcept;
/// Returns the type with this full name in any registered module; null if there is none.
PLATFORM_API const TypeRecord* typeNamed(std::string_view fullName) noexcept;

/// Checks this type, the types of the children in its attributes, and so on down the tree. Returns
/// those that are in no registered module.
PLATFORM_API std::vector<const TypeRecord*> unregisteredTypes(const TypeRecord& type);

}  // namespace Vex
