#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Agent/MounterPlugin.h"

namespace QosAgent {

/// Opens the plug-in's library, lets the plug-ins in it create their mounters over the database,
/// and takes it all down in the opposite order.
class PluginHost {
public:
    explicit PluginHost(const Orin::Ptr<Strata::EntityManager>& entityManager);
    ~PluginHost();

    /// Loads the library and starts the plug-ins that register themselves. Returns why that cannot
    /// be done, if it cannot.
    std::optional<std::string> load(const std::string& file);
    /// Destroys the mounters and creates them anew over the same database; the library stays.
    /// False, and nothing happens, when no plug-in of that name is registered.
    bool restart(std::string_view plugin);
    /// The mounters that are alive.
    std::vector<Orin::Ptr<const Vex::TypedNode>> mounters() const;

private:
    struct CloseLibrary {
        void operator()(void* library) const;
    };
    std::unique_ptr<void, CloseLibrary> library_;
    Orin::Ptr<Agent::MounterPlugin::MounterContext> context_;
};

}  // namespace QosAgent
