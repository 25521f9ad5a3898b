#include "agent/openconfig/OpenConfigReader.h"

#include <algorithm>
#include <bitset>
#include <span>
#include <utility>

#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"
#include "platform/QosOc/Naming.h"

namespace QosAgent {
namespace {

using Orin::String;
using QosOc::Classifier::Type;

constexpr std::string_view kModule = "openconfig-qos:";
constexpr std::string_view kTopMember = "openconfig-qos:qos";
constexpr std::uint64_t kMaxDscp = 63;
constexpr const char* kOtherTypes = "classifiers of types other than IPV4 and IPV6";
constexpr const char* kOtherFamily = "conditions of another family than the classifier's";

/// The types of the model, which the agent carries in part.
constexpr std::string_view kClassifierTypes[] = {"IPV4", "IPV6", "MPLS", "ETHERNET"};
constexpr std::string_view kAttachmentTypes[] = {"IPV4", "IPV6", "MPLS", "IPV4_MULTICAST",
                                                 "IPV6_MULTICAST"};

/// The fault of a type that the model does not have; empty if it has it.
std::string typeFault(std::span<const std::string_view> known, std::string_view name) {
    if (std::find(known.begin(), known.end(), name) != known.end()) return {};
    std::string fault = "unknown type " + excerpt(name) + ", expected one of ";
    for (const std::string_view type : known)
        fault.append(type).append(type == known.back() ? "" : ", ");
    return fault;
}

std::optional<Type> carriedType(std::string_view name) {
    for (const Vex::EnumName& type : QosOc::Classifier::kTypeNames)
        if (type.name == name) return static_cast<Type>(type.value);
    return {};
}

std::string_view familyName(Type family) {
    return family == Type::IPV6 ? "ipv6" : "ipv4";
}

Type otherFamily(Type family) {
    return family == Type::IPV6 ? Type::IPV4 : Type::IPV6;
}

}  // namespace

bool isTopMember(std::string_view name) {
    constexpr std::string_view known[] = {kTopMember};
    return name.starts_with(kModule) || name == kTopMember.substr(kModule.size()) ||
           !suggestion(name, known).empty();
}

bool isOpenConfig(const JsonValue& document) {
    const auto members = document.members();
    const bool isEmpty = members.begin() == members.end();
    return (!isEmpty && isTopMember((*members.begin()).key)) || document.find(kTopMember);
}

std::variant<OpenConfigDocument, Fault> OpenConfigReader::read(const JsonValue& document) {
    readTop(document);
    if (strictness_ == Strictness::refuses) findings_.refuseWarnings();
    if (!findings_.faults().empty()) return findings_.faults().found().front();
    return std::move(document_);
}

std::vector<Fault> OpenConfigReader::faults() const {
    std::vector<Fault> sorted = findings_.faults().found();
    std::ranges::stable_sort(sorted, {}, &Fault::offset);
    return sorted;
}

void OpenConfigReader::readTop(const JsonValue& document) {
    if (!document.is(JsonKind::object))
        findings_.refuse(document.offset(), unexpected("an object", document.kind()));
    for (const JsonMember& member : document.members()) {
        if (member.key == kTopMember) {
            readQos(ModelNode(member.value, findings_));
        } else if (isTopMember(member.key) || member.key.find(':') == std::string::npos) {
            // A top member has its module's prefix, and this module has but one.
            findings_.refuse(member.keyOffset, "unknown member " + excerpt(member.key) +
                                                   ", expected " + excerpt(kTopMember));
        } else {
            findings_.passOver(member.keyOffset, std::string(member.key));
        }
    }
}

void OpenConfigReader::readQos(const ModelNode& qos) {
    if (!qos.isObject()) return;
    qos.carries({"forwarding-groups", "queues", "classifiers", "interfaces"});
    qos.eachEntry("forwarding-groups", "forwarding-group",
                  [this](const ModelNode& entry) { readGroup(entry); });
    qos.eachEntry("classifiers", "classifier",
                  [this](const ModelNode& entry) { readClassifier(entry); });
    qos.eachEntry("interfaces", "interface",
                  [this](const ModelNode& entry) { readInterface(entry); });
}

void OpenConfigReader::readGroup(const ModelNode& entry) {
    entry.carries({"name", "config"});
    const auto config = entry.container("config");
    if (config)
        config->carries({"name", "output-queue", "unicast-output-queue", "multicast-output-queue"});
    const auto name = entry.listName("name", config);
    if (!name) return;
    const auto trafficClass = static_cast<std::uint32_t>(document_.groups.size());
    if (!document_.groups.add({interner_(name->text()), trafficClass}))
        findings_.refuse(name->offset(), "a second forwarding group " + excerpt(name->text()));
}

void OpenConfigReader::readClassifier(const ModelNode& entry) {
    const auto config = entry.container("config");
    const auto name = entry.listName("name", config);
    if (!name) return;
    ConfiguredClassifier classifier;
    classifier.name = interner_(name->text());
    if (document_.classifiers.contains(classifier.name) ||
        otherClassifiers_.contains(classifier.name))
        findings_.refuse(name->offset(), "a second classifier " + excerpt(name->text()));
    if (config && !readType(*config, classifier)) return;
    entry.carries({"name", "config", "terms"});
    if (config) config->carries({"name", "type"});
    entry.eachEntry("terms", "term", [&](const ModelNode& term) { readTerm(term, classifier); });
    document_.classifiers.add(std::move(classifier));
}

bool OpenConfigReader::readType(const ModelNode& config, ConfiguredClassifier& classifier) {
    const auto type = config.text("type");
    if (!type) return true;
    classifier.type = carriedType(type->text());
    if (classifier.type) return true;
    otherClassifiers_.insert(classifier.name);
    if (std::string fault = typeFault(kClassifierTypes, type->text()); fault.empty()) {
        findings_.passOver(type->offset(), kOtherTypes);
    } else {
        findings_.refuse(type->offset(), std::move(fault));
        unreadClassifiers_.insert(classifier.name);
    }
    return false;
}

void OpenConfigReader::readTerm(const ModelNode& entry, ConfiguredClassifier& classifier) {
    entry.carries({"id", "config", "conditions", "actions"});
    const auto config = entry.container("config");
    if (config) config->carries({"id"});
    const auto id = entry.listName("id", config);
    if (!id) return;
    ConfiguredTerm term;
    term.id = interner_(id->text());
    term.objName = interner_(QosOc::configObjName(classifier.name, term.id));
    {
        const Findings::OfTerm ofTerm(findings_, classifier.name, term.id);
        readConditions(entry, classifier.family(), term.conditions);
    }
    term.targetGroup = readTargetGroup(entry);
    if (!classifier.terms.add(std::move(term)))
        findings_.refuse(id->offset(), "a second term " + excerpt(id->text()));
}

void OpenConfigReader::readConditions(const ModelNode& term, Type family,
                                      QosOc::Config::TermConditionsIpConfig& conditions) {
    const auto families = term.container("conditions");
    if (!families) return;
    families->carries({"ipv4", "ipv6"});
    const auto other = families->member(familyName(otherFamily(family)));
    if (other && !holdsNothing(other->value)) findings_.passOver(other->keyOffset, kOtherFamily);
    const auto own = families->container(familyName(family));
    if (!own) return;
    own->carries({"config"});
    const auto config = own->container("config");
    if (!config) return;
    config->carries({"dscp", "dscp-set"});
    if (const auto dscp = config->member("dscp")) conditions.dscp = readDscp(dscp->value);
    if (const auto dscpSet = config->list("dscp-set")) readDscpSet(*dscpSet, conditions.dscpSet);
}

void OpenConfigReader::readDscpSet(const JsonValue& list, Orin::Vector<std::uint8_t>& dscpSet) {
    std::bitset<kMaxDscp + 1> given;
    for (const JsonValue& element : list.elements()) {
        const auto dscp = readDscp(element);
        if (!dscp) continue;
        if (given.test(*dscp))
            findings_.refuse(element.offset(), "a second value " + std::to_string(*dscp));
        given.set(*dscp);
        dscpSet.push(*dscp);
    }
}

std::optional<std::uint8_t> OpenConfigReader::readDscp(const JsonValue& value) {
    if (!value.is(JsonKind::number)) {
        findings_.refuse(value.offset(), unexpected("a number", value.kind()));
        return {};
    }
    const auto dscp = value.plainNumber();
    if (dscp && *dscp <= kMaxDscp) return static_cast<std::uint8_t>(*dscp);
    findings_.refuse(value.offset(), excerpt(value.text()) + " is no DSCP, expected 0 to 63");
    return {};
}

String OpenConfigReader::readTargetGroup(const ModelNode& term) {
    const auto actions = term.container("actions");
    if (!actions) return {};
    actions->carries({"config"});
    const auto config = actions->container("config");
    if (!config) return {};
    config->carries({"target-group"});
    const auto name = config->text("target-group");
    if (!name) return {};
    String group = interner_(name->text());
    if (!document_.groups.contains(group))
        findings_.refuse(name->offset(),
                         "no forwarding group " + excerpt(name->text()) + " is configured");
    return group;
}

void OpenConfigReader::readInterface(const ModelNode& entry) {
    entry.carries({"interface-id", "config", "input"});
    const auto config = entry.container("config");
    if (config) config->carries({"interface-id"});
    const auto id = entry.listKey("interface-id", config);
    if (!id) return;
    if (!interfaceIds_.insert(id->text()).second)
        findings_.refuse(id->offset(), "a second interface " + excerpt(id->text()));
    const auto input = entry.container("input");
    if (!input) return;
    input->carries({"classifiers"});
    AttachedPair pair;
    std::unordered_set<std::string_view> types;
    input->eachEntry("classifiers", "classifier",
                     [&](const ModelNode& attachment) { readAttachment(attachment, types, pair); });
    if (pair.ipv4ClassifierName.empty() && pair.ipv6ClassifierName.empty()) return;
    pair.pmapName = interner_(QosOc::pmapName(pair.ipv4ClassifierName, pair.ipv6ClassifierName));
    document_.attachedPairs.add(std::move(pair));
}

void OpenConfigReader::readAttachment(const ModelNode& entry,
                                      std::unordered_set<std::string_view>& types,
                                      AttachedPair& pair) {
    const auto config = entry.container("config");
    const auto type = entry.listKey("type", config);
    if (!type) return;
    if (!types.insert(type->text()).second)
        findings_.refuse(type->offset(), "a second classifier of type " + excerpt(type->text()));
    const auto family = carriedType(type->text());
    if (!family) {
        if (std::string fault = typeFault(kAttachmentTypes, type->text()); fault.empty())
            findings_.passOver(type->offset(), kOtherTypes);
        else
            findings_.refuse(type->offset(), std::move(fault));
        return;
    }
    entry.carries({"type", "config"});
    if (!config) return;
    config->carries({"type", "name"});
    const auto name = config->text("name");
    if (!name) return;
    (family == Type::IPV6 ? pair.ipv6ClassifierName : pair.ipv4ClassifierName) =
        attachable(*name, *family);
}

String OpenConfigReader::attachable(const JsonValue& name, Type family) {
    String classifierName = interner_(name.text());
    const ConfiguredClassifier* classifier = document_.classifiers.find(classifierName);
    if (classifier != nullptr && classifier->family() == family) return classifierName;
    // The fault of its type says enough.
    if (unreadClassifiers_.contains(classifierName)) return {};
    const bool isConfigured = classifier != nullptr || otherClassifiers_.contains(classifierName);
    findings_.refuse(name.offset(), "the classifier " + excerpt(name.text()) +
                                        (isConfigured ? " is of another type than its attachment"
                                                      : " is not configured"));
    return {};
}

}  // namespace QosAgent
