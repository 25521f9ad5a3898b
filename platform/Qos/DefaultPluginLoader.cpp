#include "platform/Qos/DefaultPluginLoader.h"

namespace Qos {

Plugin::Loader<Agent::MounterPlugin::MounterContext>& defaultPluginLoader() {
    static Plugin::Loader<Agent::MounterPlugin::MounterContext> loader;
    return loader;
}

}  // namespace Qos
