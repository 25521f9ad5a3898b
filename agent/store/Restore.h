#pragma once

#include "agent/database/Database.h"
#include "agent/openconfig/Configuration.h"
#include "agent/store/Store.h"

namespace QosAgent {

/// Fills an empty database and its configuration with what the store keeps. Nobody may watch the
/// database yet.
StoreFault restore(Store& store, Database& database, Configuration& configuration);

/// Makes the configuration `tree`, with what the store keeps of its groups.
StoreFault restoreConfiguration(Store& store, ConfigurationTree tree, Configuration& configuration);

}  // namespace QosAgent
