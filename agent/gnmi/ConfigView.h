#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "agent/gnmi/Schema.h"
#include "agent/json/Json.h"

namespace QosAgent::Gnmi {

/// A node of the configuration, or none. Borrows: the configuration must outlive it.
class ConfigView {
public:
    class Entries;

    /// No node.
    ConfigView() = default;
    explicit ConfigView(const JsonValue& json) : json_(json) {}

    explicit operator bool() const { return json_.has_value(); }
    /// The member that stands for a child in the model; none if it is absent.
    ConfigView child(const SchemaNode& child) const;
    /// The entry of a list with that key; none if it is absent.
    ConfigView entry(const SchemaNode& list, std::string_view key) const;
    /// The entries of a list, in the order given.
    Entries entries() const;
    /// The key of this entry of `list`.
    std::string key(const SchemaNode& list) const;
    /// The value of a leaf or leaf-list as RFC 7951 JSON.
    std::string json() const;

private:
    std::optional<JsonValue> json_;
};

/// Goes through the entries of a list.
class ConfigView::Entries {
public:
    explicit Entries(const JsonRange<JsonValue>& range) : at_(range.begin()), end_(range.end()) {}

    bool isAtEnd() const { return at_ == end_; }
    ConfigView operator*() const { return ConfigView(*at_); }
    Entries& operator++() {
        ++at_;
        return *this;
    }

private:
    JsonIterator<JsonValue> at_;
    JsonIterator<JsonValue> end_;
};

}  // namespace QosAgent::Gnmi
