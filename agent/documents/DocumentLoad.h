#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "agent/database/Database.h"
#include "agent/documents/DocumentFile.h"
#include "agent/openconfig/Configuration.h"
#include "agent/output/Progress.h"

namespace QosAgent {

/// Applies documents one by one: a state document is merged into the database, an OpenConfig
/// document becomes the configuration.
class DocumentLoad {
public:
    /// Both must outlive this object.
    DocumentLoad(Database& database, Configuration& configuration)
        : database_(database), configuration_(configuration) {}

    /// Reads, checks and applies a document; draws its progress and reports its warnings on
    /// standard error. Returns why it was refused; nothing of it was applied then.
    std::optional<Diagnostic> load(const std::string& name);

private:
    std::variant<std::vector<Warning>, Fault> apply(DocumentFile& document, Progress& progress);

    Database& database_;
    Configuration& configuration_;
};

}  // namespace QosAgent
