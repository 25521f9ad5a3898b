#pragma once

#include <span>

#include "agent/database/Database.h"
#include "agent/openconfig/Configuration.h"
#include "agent/store/Store.h"

namespace QosAgent {

/// Makes the inputs what the store keeps again, by the differences, after transactions that are not
/// kept. `tree` is the configuration before the first of them. Returns why the store cannot be
/// read; then the inputs are in an undefined state.
StoreFault takeBack(std::span<const TransactionPtr> dropped, ConfigurationTree tree, Store& store,
                    Database& database, Configuration& configuration);

}  // namespace QosAgent
