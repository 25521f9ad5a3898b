#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "agent/json/Json.h"
#include "agent/json/JsonBuilder.h"

namespace QosAgent {

/// Puts a state document together from records, so that a database reads them all at once.
class RecordDocument {
public:
    RecordDocument() { builder_.beginObject(JsonBuilder::kNoOffset); }

    /// Adds a record. `mount` is the path at which its subtree is mounted, `path` the way on from
    /// there, empty for the root. Records must come in the order of `Store::read`, mount by mount.
    /// Returns why the record is refused; empty if it is not.
    std::string add(std::string_view mount, std::string_view path, std::string_view record);
    /// The document. To be called once.
    Json take();

private:
    struct Level {
        std::string step;
        bool isObject;
    };

    bool enter(const std::vector<std::string_view>& steps);
    void closeTo(std::size_t depth);

    JsonBuilder builder_;
    std::vector<Level> open_;  ///< where the last record stands, the mount first
};

}  // namespace QosAgent
