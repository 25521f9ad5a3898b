#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "agent/store/Record.h"

namespace QosAgent {

/// Collects the published changes of one request as records: `classifier/C/state` and
/// `classifier/C/terms/term/T`, below the root of the state tree.
class StateRecords {
public:
    void updated(std::string_view path, std::string value) {
        put_.insert_or_assign(std::string(path), std::move(value));
    }
    /// What was at the path is gone, with all below it.
    void removed(std::string_view path);
    /// Takes over what an edit says, if it is one of the state.
    void add(const RecordEdit& edit);
    /// Appends the edits and begins anew.
    void take(std::vector<RecordEdit>& edits);

private:
    std::set<std::string> removed_;
    std::map<std::string, std::string, std::less<>> put_;
};

}  // namespace QosAgent
