#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <variant>
#include <vector>

#include "agent/configuration/ConfigurationEdit.h"
#include "agent/configuration/ConfigurationTree.h"
#include "agent/openconfig/OpenConfigReader.h"
#include "agent/openconfig/OpenConfigTranslator.h"

namespace QosAgent {

/// The OpenConfig configuration that a database has, none at first.
class Configuration {
public:
    /// The database outlives the configuration.
    explicit Configuration(Database& database, Strictness strictness = Strictness::warns);

    /// Makes the configuration what the document says, by the differences. `document` is a value
    /// of `tree`, which is kept. Returns what of the document was passed over, or why it is
    /// refused; nothing has changed then.
    std::variant<std::vector<Warning>, Fault> apply(Json tree, const JsonValue& document);

    /// Why edits are refused: a fault, and in which of them, from 0; nothing if it is in the list
    /// itself.
    struct Refusal {
        Fault fault;
        std::optional<std::size_t> edit = {};
    };
    /// Applies a list of edits, as `readEdits` reads it, all or none. Returns what of them was
    /// passed over.
    std::variant<std::vector<Warning>, Refusal> configure(const JsonValue& edits);

    /// The configuration as it was given.
    const ConfigurationTree& tree() const { return tree_; }

    // For a store, which keeps the configuration beyond the end of the program.

    /// The traffic class of a group; nothing if no such group is configured.
    std::optional<std::uint32_t> trafficClassOf(const Orin::String& group) const;
    Ownership& ownership() { return translator_.ownership(); }
    /// Until `restore` is called, the inputs may be changed without that these changes are taken
    /// for those of others.
    void suspend() { translator_.suspend(); }
    /// Takes the inputs, and the notes on who made them, for what the configuration `tree` made of
    /// them: in an earlier run, or before they were changed back. `trafficClassOf` tells those of
    /// its groups. Returns why the configuration cannot be read; nothing has changed then.
    using TrafficClasses = std::function<std::optional<std::uint32_t>(std::string_view group)>;
    std::optional<Fault> restore(ConfigurationTree tree, const TrafficClasses& trafficClassOf);

private:
    using Trees = std::vector<ConfigurationTree>;
    struct Reading;

    /// Each configuration on the way, the one before the edits first.
    std::variant<Trees, Refusal> treesOf(const std::vector<ConfigurationEdit>& edits) const;
    Reading read(const ConfigurationTree& tree) const;
    Refusal refusalOf(const std::vector<ConfigurationEdit>& edits, const Trees& trees,
                      Fault fault) const;

    Interner& interner_;
    Strictness strictness_;
    OpenConfigTranslator translator_;
    ConfigurationTree tree_;
    std::uint64_t change_ = 1;  ///< the number of the next change
};

}  // namespace QosAgent
