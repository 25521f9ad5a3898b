#include "agent/store/OpenStore.h"

#include <utility>

#include "agent/host/InstalledModule.h"
#include "agent/store/Restore.h"

namespace QosAgent {

std::variant<std::unique_ptr<OpenStore>, StoreFault> OpenStore::open(
    const InstalledLibrary& library, const std::string& url, Database& database,
    Configuration& configuration, Feed& feed) {
    const auto module = moduleOf<StoreModule>(library, kStoreVersion);
    if (const auto* fault = std::get_if<std::string>(&module)) return *fault;
    auto opened = std::get<const StoreModule*>(module)->open(url);
    if (auto* fault = std::get_if<StoreFault>(&opened)) return std::move(*fault);
    auto& store = std::get<std::unique_ptr<Store>>(opened);
    if (StoreFault fault = restore(*store, database, configuration); !fault.empty()) return fault;
    return std::unique_ptr<OpenStore>(
        new OpenStore(std::move(store), database, configuration, feed));
}

StoreFault OpenStore::keepAll() {
    keeper_.endRequest();
    StoreFault fault;
    keeper_.whenKept([&fault](const StoreFault& why) { fault = why; });
    keeper_.flush();
    return fault;
}

}  // namespace QosAgent
