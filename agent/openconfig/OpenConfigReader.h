#pragma once

#include <string_view>
#include <unordered_set>
#include <variant>

#include "agent/database/Interner.h"
#include "agent/openconfig/ConfigurationPart.h"
#include "agent/openconfig/ModelNode.h"
#include "agent/openconfig/OpenConfigDocument.h"

namespace QosAgent {

/// Returns whether a document is meant as an OpenConfig configuration: whether it has the member
/// `openconfig-qos:qos`, or a name close to it as its first member (`qos`, a misspelt name), so
/// that the reader can say what was expected.
bool isOpenConfig(const JsonValue& document);
/// Returns whether `name` is that member or close to it.
bool isTopMember(std::string_view name);

/// What becomes of a document that says something which the agent does not carry.
enum class Strictness { warns, refuses };

/// Reads an OpenConfig QoS configuration (RFC 7951), and checks of it all that the agent carries.
/// What it passes can be applied as a whole. One reader reads one document.
class OpenConfigReader {
public:
    /// The interner must outlive the reader, which keeps the first `mostFaults` faults.
    explicit OpenConfigReader(Interner& interner, Strictness strictness = Strictness::warns,
                              std::size_t mostFaults = 1)
        : interner_(interner), strictness_(strictness), findings_(mostFaults) {}

    /// Returns what the document says, or the first fault found. The empty object configures
    /// nothing.
    std::variant<OpenConfigDocument, Fault> read(const JsonValue& document);
    /// Returns what a configuration says whose part changed; it was read as `before` then.
    std::variant<OpenConfigDocument, Fault> readPart(const ConfigurationPart& part,
                                                     OpenConfigDocument before);
    /// Gives entries the places that they have in the tree, which must outlive the reader; without
    /// a tree they have the order of the document.
    void placesAre(const ConfigurationTree& tree);
    /// Returns all faults that were kept, in ascending order of place.
    std::vector<Fault> faults() const;
    /// What was passed over; in ascending order of place.
    std::vector<Warning> warnings() const { return findings_.warnings(); }

private:
    using Type = QosOc::Classifier::Type;

    std::variant<OpenConfigDocument, Fault> result();
    void removeGone(const ConfigurationPart& part);
    void checkReferences(const ConfigurationPart& part);
    void checkGroup(const std::string& name);
    void checkAttachments(const std::string& classifierName);
    std::string attachmentFault(std::string_view name, Type family) const;

    void readTop(const JsonValue& document);
    void readQos(const ModelNode& qos);
    void readGroup(const ModelNode& entry);
    void readClassifier(const ModelNode& entry);
    ConfiguredClassifier begunClassifier(const Orin::String& name);
    AttachedPair readInput(const ModelNode& entry);
    /// Returns false if the classifier is passed over or refused for its type.
    bool readType(const ModelNode& config, ConfiguredClassifier& classifier);
    /// `places`: of the classifier's terms; may be null.
    void readTerm(const ModelNode& entry, ConfiguredClassifier& classifier,
                  const ConfigurationNode::List* places);
    void readConditions(const ModelNode& term, Type family,
                        QosOc::Config::TermConditionsIpConfig& conditions);
    void readDscpSet(const JsonValue& list, Orin::Vector<std::uint8_t>& dscpSet);
    std::optional<std::uint8_t> readDscp(const JsonValue& value);
    Orin::String readTargetGroup(const ModelNode& term);
    void readInterface(const ModelNode& entry);
    void readAttachment(const ModelNode& entry, std::unordered_set<std::string_view>& types,
                        AttachedPair& pair);
    /// The classifier's name if it may be attached as one of that family; empty if it is refused.
    Orin::String attachable(const JsonValue& name, Type family);

    Interner& interner_;
    Strictness strictness_;
    Findings findings_;
    OpenConfigDocument document_;
    const ConfigurationPart* part_ = nullptr;  ///< null: a whole document is read
    /// The lists of the tree that tells the places of entries; null without one.
    struct Places {
        const ConfigurationNode::List* groups = nullptr;
        const ConfigurationNode::List* classifiers = nullptr;
        const ConfigurationNode::List* interfaces = nullptr;
    };
    Places places_;
    /// Classifiers whose type the model does not have.
    std::unordered_set<Orin::String> unreadClassifiers_;
};

}  // namespace QosAgent
