#pragma once

#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "agent/database/Database.h"
#include "agent/feed/Feed.h"
#include "agent/openconfig/Configuration.h"
#include "agent/store/InputRecords.h"
#include "agent/store/StateRecords.h"

namespace QosAgent {

/// Collects what a request changes: in the inputs, in the state, in the configuration, and in the
/// notes on who made what. Costs what the change costs, not what the database holds.
class TransactionCollector : private InputChanges::Listener, private ChangeListener {
public:
    /// What is passed must outlive this object, which collects from now on. `keepsChanges`: the
    /// transactions say what was published, too.
    TransactionCollector(Database& database, Configuration& configuration, Feed& feed,
                         bool keepsChanges);
    ~TransactionCollector() override;
    TransactionCollector(const TransactionCollector&) = delete;
    TransactionCollector& operator=(const TransactionCollector&) = delete;

    /// What has changed since the last call, without a number.
    Transaction take();

private:
    void inputChanged(InputChanges::Kind kind, std::string_view path) override;
    void changed(const Change& change) override;
    void takeInputs(std::vector<RecordEdit>& edits);
    bool isCovered(std::string_view path) const;
    void takeConfiguration(std::vector<RecordEdit>& edits);
    void takeGroup(const RecordEdit& edit, std::vector<RecordEdit>& edits) const;
    void takeOwners(std::vector<RecordEdit>& edits);

    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };

    Database& database_;
    Configuration& configuration_;
    Feed& feed_;
    const bool keepsChanges_;
    InputRecords records_;
    std::unordered_set<std::string, Hash, std::equal_to<>> inputs_;  ///< paths that were reported
    StateRecords state_;
    std::vector<ChangeLinePtr> changes_;
    std::set<std::string> owners_;  ///< paths whose notes changed
    ConfigurationTree tree_;        ///< of the last call
};

}  // namespace QosAgent
