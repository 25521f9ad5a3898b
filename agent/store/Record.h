#pragma once

#include <compare>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "agent/feed/ChangeLine.h"

/// What a store keeps: records, small texts by path, and transactions that change them.
namespace QosAgent {

/// What a record belongs to. The letters are part of the stores' formats.
enum class RecordArea : char {
    configuration = 'c',  ///< the OpenConfig configuration as it was given
    group = 'g',          ///< the traffic classes that the configuration gave its groups
    input = 'i',          ///< the subtrees that are not the plug-in's
    owner = 'o',          ///< who made what the configuration describes
    state = 's',          ///< the state tree
};

/// The name of a record. A path is steps with `/` between them, keys escaped as in change streams.
struct RecordKey {
    RecordArea area;
    std::string path;

    friend auto operator<=>(const RecordKey&, const RecordKey&) = default;
};

/// One step of a transaction.
struct RecordEdit {
    enum class Kind : std::uint8_t {
        put,         ///< the record has the value from now on
        erase,       ///< the record, if there is one
        eraseBelow,  ///< the record and all whose paths go on from it
    };
    Kind kind;
    RecordKey key;
    std::string value = {};  ///< of `put`: one line of JSON

    friend bool operator==(const RecordEdit&, const RecordEdit&) = default;
};

/// What one request changed; kept as a whole or not at all. Immutable once it is handed over.
struct Transaction {
    /// From 1, one more than that of the transaction before.
    std::uint64_t number = 0;
    std::vector<RecordEdit> edits;
    /// The published changes, in order, for stores that keep them.
    std::vector<ChangeLinePtr> changes;

    bool isEmpty() const { return edits.empty() && changes.empty(); }
};
using TransactionPtr = std::shared_ptr<const Transaction>;

}  // namespace QosAgent
