#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "agent/store/Record.h"

/// The one interface behind which stores are, and how the program opens a store's library.
namespace QosAgent {

/// One line that says why something failed; empty if it did not.
using StoreFault = std::string;

/// Keeps records beyond the end of the program. One thread at a time may call it.
class Store {
public:
    using Visit = std::function<void(std::string_view path, std::string_view value)>;

    /// Closes the store. What was committed stays.
    virtual ~Store() = default;

    /// Whether transactions are to say what was published, too.
    virtual bool keepsChanges() const { return false; }
    /// The number of the last transaction that is kept; 0 if the store holds nothing yet.
    virtual std::uint64_t lastNumber() const = 0;
    /// Calls `visit` for the record at the path and for each below it; for all of the area if the
    /// path is empty. Records come in ascending order of their paths, step by step: what is below a
    /// path follows it at once. What `visit` gets is valid during the
    /// call only.
    virtual StoreFault read(RecordArea area, const std::string& path, const Visit& visit) = 0;
    /// Keeps the transactions, in the order given, all of them or none. When this returns without a
    /// fault, they outlive the program and the machine's power. May wait.
    virtual StoreFault commit(std::span<const TransactionPtr> transactions) = 0;
};

/// An open store, or one line that says why it could not be opened.
using OpenedStore = std::variant<std::unique_ptr<Store>, StoreFault>;

/// What a store's library exports. Program and library must agree on `version`.
struct StoreModule {
    unsigned version;
    /// `url` is the whole of what `--store` was given.
    OpenedStore (*open)(const std::string& url);
};

/// Increased whenever anything that stores see changes.
inline constexpr unsigned kStoreVersion = 1;

/// The name of the one symbol that a store's library exports, `extern "C" const StoreModule*`.
inline constexpr const char* kStoreSymbol = "qosAgentStore";

}  // namespace QosAgent

/// Defines the library's symbol: `QOS_AGENT_STORE(openFunction)`, at namespace scope, once.
#define QOS_AGENT_STORE(OPEN)                                                                \
    extern "C" [[gnu::visibility("default")]] const QosAgent::StoreModule* qosAgentStore() { \
        static const QosAgent::StoreModule module{QosAgent::kStoreVersion, OPEN};            \
        return &module;                                                                      \
    }
