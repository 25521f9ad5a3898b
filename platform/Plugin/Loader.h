#pragma once

#include <list>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Orin/Export.h"
#include "platform/Plugin/PluginBase.h"

namespace Plugin {

namespace Impl {

/// One plug-in as an agent knows it.
struct Registration {
    std::string name;
    std::string version;      ///< empty: any
    std::string description;  ///< empty: none
    const void* initCaller;   ///< what initialises it: its identity
};

class PLATFORM_API LoaderImpl {
public:
    using Registry = std::list<Registration>;

    /// Enters a plug-in. Throws `std::invalid_argument` when the name is taken.
    static void registerPlugin(std::string_view name, Registry& registry, std::string_view version,
                               std::string_view description, const void* initCaller);
    /// Takes out what `registerPlugin` entered for this init caller, if anything.
    static void unregisterPlugin(Registry& registry, const void* initCaller) noexcept;
};

}  // namespace Impl

/// Knows the plug-ins that registered themselves when their libraries were loaded.
template <class Context>
class Loader {
public:
    using Registry = Impl::LoaderImpl::Registry;

    /// Initialises one plug-in with the context that the loader is given.
    class LoaderInitCallerWithContext {
    public:
        explicit LoaderInitCallerWithContext(
            typename PluginBase<Context>::PluginBaseInitCaller caller)
            : caller_(caller) {}
        void operator()(Context* context) const { caller_(context); }

    private:
        typename PluginBase<Context>::PluginBaseInitCaller caller_;
    };
    using InitCallers = std::list<const LoaderInitCallerWithContext*>;

    Registry& registry() noexcept { return registry_; }
    /// The last one registered stands first, and is called first.
    InitCallers& initCallers() noexcept { return initCallers_; }

    void init(Context* context) const {
        for (const LoaderInitCallerWithContext* caller : initCallers_)
            (*caller)(context);
    }

private:
    Registry registry_;
    InitCallers initCallers_;
};

/// Keeps a plug-in registered with a loader from construction to destruction: a static object of
/// the plug-in's library, so that its unload takes the plug-in along.
template <class Context>
class PluginRegistration {
public:
    /// Throws `std::invalid_argument` when the name is taken, and then registers nothing.
    PluginRegistration(std::string_view name, Loader<Context>& loader, PluginBase<Context>& plugin)
        : loader_(loader),
          caller_(typename PluginBase<Context>::PluginBaseInitCaller(plugin)) {
        loader_.initCallers().push_front(&caller_);
        try {
            Impl::LoaderImpl::registerPlugin(name, loader_.registry(), "", "", &caller_);
        } catch (...) {
            loader_.initCallers().remove(&caller_);
            throw;
        }
    }
    ~PluginRegistration() {
        Impl::LoaderImpl::unregisterPlugin(loader_.registry(), &caller_);
        loader_.initCallers().remove(&caller_);
    }
    PluginRegistration(const PluginRegistration&) = delete;
    PluginRegistration& operator=(const PluginRegistration&) = delete;

private:
    Loader<Context>& loader_;
    typename Loader<Context>::LoaderInitCallerWithContext caller_;
};

}  // namespace Plugin
