#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Module.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSmMounter.h"
#include "platform/Agent/MounterPlugin.h"
#include "platform/Plugin/Loader.h"
#include "platform/Qos/DefaultPluginLoader.h"

/// What happens when the library is loaded, in this order, and is taken back in the opposite order
/// when it is unloaded.
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
