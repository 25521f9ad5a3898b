#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "agent/configuration/PersistentMap.h"

namespace QosAgent {

/// The names of the policy maps that the database has. Copies share what they have in common, and
/// may be read by several threads.
class PolicyMapNames {
public:
    bool contains(std::string_view name) const { return names_.find(name) != nullptr; }
    /// Whether there is the policy map that applies a pair of attached classifiers. Either name may
    /// be empty, not both.
    bool containsOfPair(std::string_view ipv4Classifier, std::string_view ipv6Classifier) const;
    /// Both are no-ops if the name is there, or absent, already.
    void insert(std::string name);
    void erase(std::string_view name);
    template <class Visit>
    void each(Visit visit) const {
        names_.each([&](const auto& entry) { visit(entry->text); });
    }

    /// Whether one is a copy of the other, or of an ancestor with nothing changed since.
    bool isSame(const PolicyMapNames& other) const { return version_ == other.version_; }

private:
    struct Name {
        std::string text;
        const std::string& key() const { return text; }
    };

    PersistentMap<Name> names_;
    std::uint64_t version_ = 0;
};

}  // namespace QosAgent
