#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/host/LibraryFile.h"
#include "platform/Agent/MounterPlugin.h"
#include "platform/Plugin/Loader.h"

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
    /// Destroys the mounters of one plug-in and creates them anew over the same database; the
    /// library and its other plug-ins stay. Returns why that cannot be done, if it cannot: no
    /// plug-in of that name is registered, and nothing was done; or the plug-in failed, and its
    /// mounters are gone.
    std::optional<std::string> restart(std::string_view plugin);
    /// The mounters that are alive.
    std::vector<Orin::Ptr<const Vex::TypedNode>> mounters() const;

private:
    struct CloseLibrary {
        void operator()(void* library) const;
    };
    using Context = Agent::MounterPlugin::MounterContext;
    /// A plug-in, and the context that keeps its mounters.
    struct Hosted {
        const Plugin::Loader<Context>::LoaderInitCallerWithContext* initCaller;
        Orin::Ptr<Context> context;
    };
    /// Initialises a plug-in. Returns what it throws; its mounters are gone then.
    static std::optional<std::string> start(const Hosted& hosted);

    Orin::Ptr<Strata::EntityManager> entityManager_;
    std::optional<LibraryFile> file_;
    std::unique_ptr<void, CloseLibrary> library_;
    /// In the order in which they were started.
    std::vector<Hosted> plugins_;
};

}  // namespace QosAgent
