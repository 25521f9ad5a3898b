#pragma once

#include "platform/Orin/Export.h"

/// The base class of plug-ins that are initialised with a `Context`.
template <class Context>
class PluginBase {
public:
    virtual ~PluginBase() = default;
    virtual void init(Context* context) = 0;

    /// Initialises one plug-in, which must outlive it.
    class PluginBaseInitCaller {
    public:
        explicit PluginBaseInitCaller(PluginBase& plugin) : plugin_(&plugin) {}
        void operator()(Context* context) const { plugin_->init(context); }

    private:
        PluginBase* plugin_;
    };
};
