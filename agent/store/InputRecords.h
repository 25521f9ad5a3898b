#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/database/Database.h"
#include "agent/store/Record.h"

namespace QosAgent {

/// The inputs of a database as records. Each member of a collection that is a value has one, with
/// the whole value, and each entity one, with its plain members; a null entry has `null`.
class InputRecords {
public:
    /// The database must outlive this object.
    explicit InputRecords(Database& database) : database_(database) {}

    /// Appends the edits after which the records say what the database has at the path: of an
    /// entity or a collection with all below it, of anything else with the value that it is part
    /// of. `path` must be as `parsePath` reads it.
    void refresh(std::string_view path, std::vector<RecordEdit>& edits) const;

private:
    Database& database_;
};

/// The JSON text of an entity's own record: its plain members.
std::string entityRecord(const Vex::TypedNode& entity);

}  // namespace QosAgent
