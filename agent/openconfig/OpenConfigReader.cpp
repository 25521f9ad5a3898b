// long: one class reads the whole model, level by level
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

using List = ConfigurationNode::List;

/// The list in a container of that name, below a node; null if there is none.
const List* listIn(const ConfigurationNode* node, std::string_view holder, std::string_view list) {
    for (const std::string_view name : {holder, list}) {
        const auto* member = node == nullptr ? nullptr : node->member(name);
        node = member == nullptr ? nullptr : member->node.get();
    }
    return node == nullptr ? nullptr : node->list();
}

/// The place of an entry; 0 if it has none of its own.
std::uint64_t placeIn(const List* list, std::string_view key) {
    return list == nullptr ? 0 : list->orderOf(key);
}

/// The terms of a classifier of the list; null if there are none.
const List* termsIn(const List* classifiers, std::string_view name) {
    const auto* entry = classifiers == nullptr ? nullptr : classifiers->find(name);
    return entry == nullptr ? nullptr : listIn((*entry)->node.get(), "terms", "term");
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
    return result();
}

std::variant<OpenConfigDocument, Fault> OpenConfigReader::readPart(const ConfigurationPart& part,
                                                                   OpenConfigDocument before) {
    part_ = &part;
    document_ = std::move(before);
    removeGone(part);
    const Json changed = part.document();
    readTop(changed.root());
    checkReferences(part);
    return result();
}

void OpenConfigReader::placesAre(const ConfigurationTree& tree) {
    const ConfigurationNodePtr qos = tree.nodeAt({{"qos", {}}});
    places_ = {listIn(qos.get(), "forwarding-groups", "forwarding-group"),
               listIn(qos.get(), "classifiers", "classifier"),
               listIn(qos.get(), "interfaces", "interface")};
}

std::variant<OpenConfigDocument, Fault> OpenConfigReader::result() {
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
    const String group = interner_(name->text());
    const ForwardingGroup* held = document_.groups.find(group);
    if (held != nullptr && part_ == nullptr)
        findings_.refuse(name->offset(), "a second forwarding group " + excerpt(name->text()));
    const auto next = static_cast<std::uint32_t>(document_.groups.size());
    document_.groups.set({group, held == nullptr ? next : held->trafficClass},
                         placeIn(places_.groups, group));
}

void OpenConfigReader::readClassifier(const ModelNode& entry) {
    const auto config = entry.container("config");
    const auto name = entry.listName("name", config);
    if (!name) return;
    const String held = interner_(name->text());
    if (part_ == nullptr &&
        (document_.classifiers.contains(held) || document_.otherClassifiers.contains(held)))
        findings_.refuse(name->offset(), "a second classifier " + excerpt(name->text()));
    ConfiguredClassifier classifier = begunClassifier(held);
    if (config && !readType(*config, classifier)) return;
    entry.carries({"name", "config", "terms"});
    if (config) config->carries({"name", "type"});
    const List* places = termsIn(places_.classifiers, classifier.name);
    entry.eachEntry("terms", "term",
                    [&](const ModelNode& term) { readTerm(term, classifier, places); });
    const std::uint64_t place = placeIn(places_.classifiers, classifier.name);
    document_.classifiers.set(std::move(classifier), place);
}

/// The classifier with the terms that the document to be read does not have.
ConfiguredClassifier OpenConfigReader::begunClassifier(const String& name) {
    ConfiguredClassifier classifier;
    classifier.name = name;
    if (part_ == nullptr) return classifier;
    const ConfiguredClassifier* held = document_.classifiers.find(name);
    const ConfigurationPart::Classifier& changed = part_->classifiers().at(std::string(name));
    if (changed.isWhole || held == nullptr) {
        document_.eraseClassifier(name);
        return classifier;
    }
    classifier.terms = held->terms;
    for (const std::string& id : changed.removedTerms)
        document_.eraseTerm(classifier, String(id));
    return classifier;
}

bool OpenConfigReader::readType(const ModelNode& config, ConfiguredClassifier& classifier) {
    const auto type = config.text("type");
    if (!type) return true;
    classifier.type = carriedType(type->text());
    if (classifier.type) return true;
    document_.eraseClassifier(classifier.name);
    document_.otherClassifiers.set({classifier.name});
    if (std::string fault = typeFault(kClassifierTypes, type->text()); fault.empty()) {
        findings_.passOver(type->offset(), kOtherTypes);
    } else {
        findings_.refuse(type->offset(), std::move(fault));
        unreadClassifiers_.insert(classifier.name);
    }
    return false;
}

void OpenConfigReader::readTerm(const ModelNode& entry, ConfiguredClassifier& classifier,
                                const List* places) {
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
    if (part_ == nullptr && classifier.terms.contains(term.id))
        findings_.refuse(id->offset(), "a second term " + excerpt(id->text()));
    const std::uint64_t place = placeIn(places, term.id);
    document_.setTerm(classifier, std::move(term), place);
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
    ConfiguredInterface interface {
        interner_(id->text()), {}
    };
    if (part_ == nullptr && document_.interfaces.contains(interface.id))
        findings_.refuse(id->offset(), "a second interface " + excerpt(id->text()));
    interface.pair = readInput(entry);
    const std::uint64_t place = placeIn(places_.interfaces, interface.id);
    document_.setInterface(std::move(interface), place);
}

AttachedPair OpenConfigReader::readInput(const ModelNode& entry) {
    AttachedPair pair;
    const auto input = entry.container("input");
    if (!input) return pair;
    input->carries({"classifiers"});
    std::unordered_set<std::string_view> types;
    input->eachEntry("classifiers", "classifier",
                     [&](const ModelNode& attachment) { readAttachment(attachment, types, pair); });
    if (!pair.empty())
        pair.pmapName =
            interner_(QosOc::pmapName(pair.ipv4ClassifierName, pair.ipv6ClassifierName));
    return pair;
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
    // The fault of its type says enough.
    if (unreadClassifiers_.contains(classifierName)) return {};
    std::string fault = attachmentFault(name.text(), family);
    if (fault.empty()) return classifierName;
    findings_.refuse(name.offset(), std::move(fault));
    return {};
}

/// Why a classifier of that name cannot be attached as one of that family; empty if it can be.
std::string OpenConfigReader::attachmentFault(std::string_view name, Type family) const {
    const String classifierName(name);
    const ConfiguredClassifier* classifier = document_.classifiers.find(classifierName);
    if (classifier != nullptr && classifier->family() == family) return {};
    const bool isConfigured =
        classifier != nullptr || document_.otherClassifiers.contains(classifierName);
    return "the classifier " + excerpt(name) +
           (isConfigured ? " is of another type than its attachment" : " is not configured");
}

void OpenConfigReader::removeGone(const ConfigurationPart& part) {
    for (const std::string& name : part.removedGroups())
        document_.groups.erase(String(name));
    for (const std::string& name : part.removedClassifiers())
        document_.eraseClassifier(String(name));
    for (const std::string& id : part.removedInterfaces())
        document_.eraseInterface(String(id));
}

/// Checks what was not read: whether it refers to something that is there no longer.
void OpenConfigReader::checkReferences(const ConfigurationPart& part) {
    for (const std::string& name : part.removedGroups())
        checkGroup(name);
    for (const std::string& name : part.removedClassifiers())
        checkAttachments(name);
    for (const auto& [name, classifier] : part.classifiers())
        if (classifier.isWhole) checkAttachments(name);
}

void OpenConfigReader::checkGroup(const std::string& name) {
    if (document_.termsOfGroup.contains(String(name)))
        findings_.refuse(JsonBuilder::kNoOffset,
                         "no forwarding group " + excerpt(name) + " is configured");
}

void OpenConfigReader::checkAttachments(const std::string& classifierName) {
    const Users<AttachedPair>* pairs = document_.pairsOfClassifier.find(String(classifierName));
    if (pairs == nullptr) return;
    // All pairs have it in the place of its family, so one tells for all.
    const bool isIpv4 = pairs->users.first()->ipv4ClassifierName == classifierName;
    std::string fault = attachmentFault(classifierName, isIpv4 ? Type::IPV4 : Type::IPV6);
    if (!fault.empty()) findings_.refuse(JsonBuilder::kNoOffset, std::move(fault));
}

}  // namespace QosAgent
