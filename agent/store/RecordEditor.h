#pragma once

#include <string>
#include <string_view>

#include "agent/database/Checker.h"
#include "agent/database/Database.h"
#include "agent/database/Editor.h"

namespace QosAgent {

/// Makes the database what records say.
class RecordEditor {
public:
    /// The database must outlive this object.
    explicit RecordEditor(Database& database)
        : database_(database), checker_(database.interner()), editor_(database) {}

    /// Sets what the record is of. `path` is whole, with the one at which the subtree is mounted.
    /// Returns why the record is refused; empty if it is not.
    std::string put(std::string_view path, std::string_view record);
    /// Removes what is at the path. Has no effect where nothing is, or on what cannot be removed.
    void remove(std::string_view path);

private:
    Database& database_;
    Checker checker_;
    Editor editor_;
};

}  // namespace QosAgent
