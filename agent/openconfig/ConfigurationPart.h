#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "agent/configuration/ConfigurationTree.h"

namespace QosAgent {

/// The part of a configuration that must be read again after a change: the entries and members that
/// changed, as a document of their own, and the names of entries that were removed. Costs what the
/// change touched, not what the configuration holds.
class ConfigurationPart {
public:
    /// Both trees must outlive the part. Places in the document are those of the change with that
    /// number; what earlier changes brought has none.
    ConfigurationPart(const ConfigurationTree& before, const ConfigurationTree& after,
                      std::uint64_t change);

    /// Returns true if the whole configuration must be read: it came or went as a whole, or is not
    /// of the model's form, which the reader then refuses.
    bool isWhole() const { return isWhole_; }
    /// Returns a document of the entries that changed; of a classifier, of the terms that changed.
    Json document() const;

    struct Classifier {
        /// All its terms are in the document.
        bool isWhole = false;
        std::set<std::string> changedTerms;
        std::vector<std::string> removedTerms;
        /// Names of members beside the list of terms that changed.
        std::vector<std::string> otherMembers;
    };
    /// Changed classifiers by name; removed ones are not among them.
    const std::map<std::string, Classifier>& classifiers() const { return classifiers_; }
    const std::vector<std::string>& removedClassifiers() const { return removedClassifiers_; }
    const std::vector<std::string>& removedGroups() const { return groups_.removed; }
    const std::vector<std::string>& removedInterfaces() const { return interfaces_.removed; }

private:
    using Names = std::vector<std::string>;
    /// The container of one of the lists below `qos`, and what changed in it.
    struct Holder {
        const char* name;
        const char* list;
        const char* key;
        Names changed = {};
        Names removed = {};
        Names otherMembers = {};
    };

    void note(const ModelPath& path, bool isThere);
    void noteInHolder(Holder& holder, const ModelPath& path, bool isThere);
    /// The holder itself came or went.
    void noteHolder(Holder& holder);
    void noteEntries(Holder& holder, const ConfigurationNode* list, bool isThere);
    void noteEntry(Holder& holder, const std::string& key, bool isThere);
    void noteInClassifier(const ModelPath& path, bool isThere);
    bool changesType(const std::string& classifier) const;
    Holder* holderNamed(std::string_view name);
    ConfigurationNodePtr entryOf(const Holder& holder, const std::string& key) const;
    void addHolder(JsonBuilder& builder, const Holder& holder) const;
    void addClassifier(JsonBuilder& builder, const std::string& name) const;
    void addTerms(JsonBuilder& builder, const ConfigurationNode& terms,
                  const Classifier& changed) const;
    void addMembers(JsonBuilder& builder, const ConfigurationNode* container,
                    const Names& names) const;

    const ConfigurationTree& before_;
    const ConfigurationTree& after_;
    std::uint64_t change_;
    bool isWhole_ = false;
    Holder groups_{"forwarding-groups", "forwarding-group", "name"};
    Holder classifierHolder_{"classifiers", "classifier", "name"};
    Holder interfaces_{"interfaces", "interface", "interface-id"};
    std::map<std::string, Classifier> classifiers_;
    Names removedClassifiers_;
    Names topMembers_;  ///< beside `qos`, that changed
    Names qosMembers_;  ///< beside the holders, that changed
};

}  // namespace QosAgent
