#pragma once

#include <list>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Orin/Export.h"
#include "platform/Plugin/PluginBase.h"

namespace Plugin {

namespace Impl {

/// A registered plug-in, as the agent sees it.
struct Registration {
    std::string name;
    std::string version;      ///< empty: any
    std::string description;  ///< empty: none
    const void* initCaller;   ///< the function object that initialises it; identifies it
};

class PLATFORM_API LoaderImpl {
public:
    using Registry = std::list<Registration>;

    /// Registers a plug-in. Throws `std::invalid_argument` if the name is taken.
    static void registerPlugin(std::string_view name, Registry& registry, std::string_view version,
                               std::string_view description, const void* initCaller);
    /// Unregisters the plug-in with this init caller. No-op if there is none.
    static void unregisterPlugin(Registry& registry, const void* initCaller) noexcept;
};

}  // namespace Impl

/// The plug-ins that registered themselves when their libraries were loaded.
template <class Context>
class Loader {
public:
    using Registry = Impl::LoaderImpl::Registry;

    /// Initialises one plug-in with the loader's context.
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
    /// The plug-in that was registered last is first, and is called first.
    InitCallers& initCallers() noexcept { return initCallers_; }

    void init(Context* context) const {
        for (const LoaderInitCallerWithContext* caller : initCallers_)
            (*caller)(context);
    }

private:
    Registry registry_;
    InitCallers initCallers_;
};

/// Registers a plug-in with a loader from construction to destruction. A static object of the
/// plug-in's library, so that unloading the library unregisters the plug-in.
template <class Context>
class PluginRegistration {
public:
    /// Throws `std::invalid_argument` if the name is taken; nothing is registered then.
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
