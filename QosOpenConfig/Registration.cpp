#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Module.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSmMounter.h"
#include "platform/Agent/MounterPlugin.h"
#include "platform/Plugin/Loader.h"
#include "platform/Qos/DefaultPluginLoader.h"

/// Registers types, trace handles and the plug-in, in this order, when the library is loaded.
/// Unloading it unregisters them in the reverse order.
namespace QosOc {
namespace {

using Context = Agent::MounterPlugin::MounterContext;

const Vex::ModuleRegistration stateSmModule(kStateSmModule);
const Vex::ModuleRegistration mounterModule(kMounterModule);
const Vex::TraceRegistration stateSmTrace(traceHandle);
const Vex::TraceRegistration mounterTrace(mounterTraceHandle);
Agent::MounterPlugin::Plugin<ClassifierStateSmMounter> plugin;
const Plugin::PluginRegistration<Context> registration("ClassifierStateSmPlugin",
                                                       Qos::defaultPluginLoader(), plugin);

}  // namespace
}  // namespace QosOc
