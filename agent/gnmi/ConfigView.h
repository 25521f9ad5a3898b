#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/configuration/ConfigurationTree.h"
#include "agent/gnmi/Schema.h"

namespace QosAgent::Gnmi {

/// A node of the configuration as the served model has it, or none. Keeps what it shows alive.
class ConfigView {
public:
    class Entries;

    /// No node.
    ConfigView() = default;
    explicit ConfigView(std::optional<ConfigurationView> view) : view_(std::move(view)) {}

    explicit operator bool() const { return view_.has_value(); }
    /// The member that stands for a child in the model; none if it is absent.
    ConfigView child(const SchemaNode& child) const;
    /// The entry of a list with that key; none if it is absent.
    ConfigView entry(std::string_view key) const;
    /// The entries of a list, in the order given.
    Entries entries() const;
    /// The value of a leaf or leaf-list as RFC 7951 JSON.
    std::string json() const;

private:
    std::optional<ConfigurationView> view_;
};

/// Goes through the entries of a list.
class ConfigView::Entries {
public:
    Entries(ConfigView list, std::vector<std::string> keys)
        : list_(std::move(list)), keys_(std::move(keys)) {}

    bool isAtEnd() const { return at_ == keys_.size(); }
    const std::string& key() const { return keys_[at_]; }
    ConfigView operator*() const { return list_.entry(key()); }
    Entries& operator++() {
        ++at_;
        return *this;
    }

private:
    ConfigView list_;
    std::vector<std::string> keys_;
    std::size_t at_ = 0;
};

}  // namespace QosAgent::Gnmi
