#pragma once

#include <set>
#include <string>
#include <string_view>

#include "agent/database/Database.h"
#include "agent/feed/PolicyMapNames.h"

namespace QosAgent {

/// Keeps the names of the QoS policy maps that the database has. Event thread only.
class PolicyMapWatch : private InputChanges::Listener {
public:
    /// The database must outlive the watch.
    explicit PolicyMapWatch(Database& database);
    ~PolicyMapWatch() override;
    PolicyMapWatch(const PolicyMapWatch&) = delete;
    PolicyMapWatch& operator=(const PolicyMapWatch&) = delete;

    /// The names as they are now. Must not be called while an operation is being applied.
    const PolicyMapNames& names();

private:
    void inputChanged(InputChanges::Kind kind, std::string_view path) override;
    void readAll();

    Database& database_;
    PolicyMapNames names_;
    std::set<std::string> reported_;  ///< names of policy maps that may have come or gone
    bool isAllReported_ = true;
};

}  // namespace QosAgent
