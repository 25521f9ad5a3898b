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

/// Opens the plug-in's library and initialises its plug-ins, which create their mounters over the
/// database. Destroys everything in the reverse order.
class PluginHost {
public:
    explicit PluginHost(const Orin::Ptr<Strata::EntityManager>& entityManager);
    ~PluginHost();

    /// Loads the library and starts the plug-ins that it registers. Returns a message if that
    /// fails.
    std::optional<std::string> load(const std::string& file);
    /// Destroys the mounters of one plug-in and creates them again over the same database. The
    /// library and its other plug-ins are not affected. Returns a message if no plug-in of this
    /// name is registered; nothing has changed then. Also returns a message if the plug-in fails;
    /// it has no mounters then.
    std::optional<std::string> restart(std::string_view plugin);
    /// Returns the existing mounters.
    std::vector<Orin::Ptr<const Vex::TypedNode>> mounters() const;

private:
    struct CloseLibrary {
        void operator()(void* library) const;
    };
    using Context = Agent::MounterPlugin::MounterContext;
    /// A plug-in, and the context that owns its mounters.
    struct Hosted {
        const Plugin::Loader<Context>::LoaderInitCallerWithContext* initCaller;
        Orin::Ptr<Context> context;
    };
    /// Initialises a plug-in. If it throws, returns the message; it has no mounters then.
    static std::optional<std::string> start(const Hosted& hosted);

    Orin::Ptr<Strata::EntityManager> entityManager_;
    std::optional<LibraryFile> file_;
    std::unique_ptr<void, CloseLibrary> library_;
    /// In the order in which they were started.
    std::vector<Hosted> plugins_;
};

}  // namespace QosAgent
