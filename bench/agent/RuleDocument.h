#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "agent/database/Database.h"

namespace QosBench {

/// The text of a document with one access list, and what loading it leads to: the database, and the
/// root machine over it.
class RuleDocument {
public:
    explicit RuleDocument(std::size_t rules);

    /// Reads, checks and merges the text into a new database, and starts the machines over it.
    void load();
    /// Takes down what `load` made.
    void unload();

private:
    std::string text_;
    std::unique_ptr<QosAgent::Database> database_;
    Orin::Ptr<QosOc::ClassifierStateSm> root_;
};

}  // namespace QosBench
