#pragma once

#include "platform/Agent/MounterPlugin.h"
#include "platform/Orin/Export.h"
#include "platform/Plugin/Loader.h"

namespace Qos {

/// The QoS agent's loader of mounter plug-ins.
PLATFORM_API Plugin::Loader<Agent::MounterPlugin::MounterContext>& defaultPluginLoader();

}  // namespace Qos
