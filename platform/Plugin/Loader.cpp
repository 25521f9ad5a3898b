#include "platform/Plugin/Loader.h"

#include <algorithm>
#include <stdexcept>

namespace Plugin::Impl {

void LoaderImpl::registerPlugin(std::string_view name, Registry& registry, std::string_view version,
                                std::string_view description, const void* initCaller) {
    const bool isTaken = std::any_of(registry.begin(), registry.end(),
                                     [name](const Registration& r) { return r.name == name; });
    if (isTaken) throw std::invalid_argument("plug-in registered twice: " + std::string(name));
    registry.push_back({std::string(name), std::string(version), std::string(description), initCaller});
}

void LoaderImpl::unregisterPlugin(Registry& registry, const void* initCaller) noexcept {
    registry.remove_if([initCaller](const Registration& r) { return r.initCaller == initCaller; });
}

}  // namespace Plugin::Impl
