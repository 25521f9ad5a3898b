#pragma once

#include <string_view>
#include <unordered_set>
#include <variant>

#include "agent/database/Interner.h"
#include "agent/openconfig/ModelNode.h"
#include "agent/openconfig/OpenConfigDocument.h"

namespace QosAgent {

/// Whether a document is meant as an OpenConfig configuration: its member at the top tells, even if
/// it is misspelt.
bool isOpenConfig(const JsonValue& document);

/// Reads an OpenConfig QoS configuration (RFC 7951), and checks of it all that the agent carries.
/// What it passes can be applied as a whole. One reader reads one document.
class OpenConfigReader {
public:
    explicit OpenConfigReader(Interner& interner) : interner_(interner) {}

    /// What the document says, or why it is refused. The empty object configures nothing.
    std::variant<OpenConfigDocument, Fault> read(const JsonValue& document);
    /// What was passed over; in ascending order of place.
    std::vector<Warning> warnings() const { return findings_.warnings(); }

private:
    using Type = QosOc::Classifier::Type;

    void readTop(const JsonValue& document);
    void readQos(const ModelNode& qos);
    void readGroup(const ModelNode& entry);
    void readClassifier(const ModelNode& entry);
    void readTerm(const ModelNode& entry, ConfiguredClassifier& classifier);
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
    Findings findings_;
    OpenConfigDocument document_;
    /// Classifiers of types that are not carried.
    std::unordered_set<Orin::String> otherClassifiers_;
    std::unordered_set<std::string_view> interfaceIds_;
};

}  // namespace QosAgent
