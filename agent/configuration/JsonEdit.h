#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "agent/configuration/ConfigurationEdit.h"

namespace QosAgent {

/// Applies one edit within a value: makes a copy of the value with the edit.
class JsonEdit {
public:
    /// `steps` is the part of the edit's path below the value. All arguments must outlive this.
    JsonEdit(const ConfigurationEdit& edit, std::span<const PathElement> steps)
        : edit_(edit), steps_(steps) {}

    /// The value after the edit. `held` is nothing where there was no value. Its places are kept if
    /// `isOfChange`: the change that makes the edit said it; else they are the edit's.
    Json apply(std::optional<JsonValue> held, bool isOfChange, const ModelSchema* schema);
    /// Returns the first value with the second merged into it.
    Json merge(const JsonValue& held, bool isOfChange, const JsonValue& value,
               const ModelSchema* schema);

private:
    using Held = std::optional<JsonValue>;

    void addEdited(const Held& held, const ModelSchema* schema, std::size_t at);
    void addMember(const Held& held, std::string_view name, const ModelSchema* schema,
                   std::size_t at);
    void addEntries(const Held& held, const ModelSchema* schema, std::size_t at);
    void addEntry(const Held& held, const ModelSchema* schema, std::size_t at);
    void addMerged(const JsonValue& held, const JsonValue& value, const ModelSchema* schema,
                   bool isEntry);
    void addMergedObject(const JsonValue& held, const JsonValue& value, const ModelSchema* schema);
    void addMergedList(const JsonValue& held, const JsonValue& value, const ModelSchema& schema);
    void addUnion(const JsonValue& held, const JsonValue& value);
    bool removesHere(std::size_t at) const { return at + 1 == steps_.size() && isRemoval(); }
    bool isRemoval() const { return edit_.operation == ConfigurationEdit::Operation::remove; }
    void keep(const JsonValue& held) { builder_.copy(held, keptOffset_); }
    void keepKey(const JsonMember& held) {
        builder_.key(held.key, keptOffset_.value_or(held.keyOffset));
    }

    const ConfigurationEdit& edit_;
    std::span<const PathElement> steps_;
    JsonBuilder builder_;
    std::optional<std::size_t> keptOffset_;
};

}  // namespace QosAgent
