#include "agent/explain/NameIndex.h"

#include <array>

#include "platform/Acl/AclType.h"
#include "platform/Qos/MapType.h"
#include "platform/QosOc/Naming.h"

namespace QosAgent {
namespace {

using Orin::String;
using Vex::Value;

constexpr std::array<std::string_view, 2> kClassMaps{"cmapTypeStatus", "cmapStatus"};
constexpr std::array<std::string_view, 2> kAccessLists{"aclTypeConfig", "aclConfig"};
constexpr std::array<std::string_view, 3> kPolicyMaps{"pmapTypeStatus", "pmapStatus", "classes"};

template <class Enum>
bool isEnum(const Value& key, Enum value) {
    return key.as<std::uint64_t>() == static_cast<std::uint64_t>(value);
}

void nameIs(Names& names, const String& name, bool isPresent) {
    if (isPresent)
        names.insert(name);
    else
        names.erase(name);
}

}  // namespace

NameIndex::NameIndex(const Database& database)
    : classMapReport_(
          [this](const auto& keys, bool isPresent) { return handleClassMap(keys, isPresent); }),
      accessListReport_(
          [this](const auto& keys, bool isPresent) { return handleAccessList(keys, isPresent); }),
      policyMapReport_(
          [this](const auto& keys, bool isPresent) { return handlePolicyMap(keys, isPresent); }),
      classMaps_(database.subtreeAt("qos/status")->root, kClassMaps, classMapReport_),
      accessLists_(database.subtreeAt("acl/config/cli")->root, kAccessLists, accessListReport_),
      policyMaps_(database.subtreeAt("qos/status")->root, kPolicyMaps, policyMapReport_) {}

const MadeFromClassifier* NameIndex::find(std::string_view classifier) const {
    const auto at = classifiers_.find(classifier);
    return at == classifiers_.end() ? nullptr : &at->second;
}

/// Calls `change` with the entry of the classifier, and drops the entry if it is empty then.
template <class Change>
void NameIndex::change(const String& classifier, Change change) {
    const auto at = classifiers_.try_emplace(classifier).first;
    change(at->second);
    if (at->second.isEmpty()) classifiers_.erase(at);
}

template <class Change>
void NameIndex::changeTerm(const String& objName, Change change) {
    const QosOc::ClassifierKey& key = QosOc::classifierKeyFromConfigObjName(objName);
    if (!key.isTerm()) return;
    this->change(key.classifierName, [&](MadeFromClassifier& made) {
        const auto term = made.terms.try_emplace(key.termId).first;
        change(term->second);
        if (term->second.isEmpty()) made.terms.erase(term);
    });
}

bool NameIndex::handleClassMap(const KeyWatch::Keys& keys, bool isPresent) {
    if (keys.size() == 1) return isEnum(keys[0], Qos::MapType::mapQos);
    changeTerm(keys[1].as<String>(), [&](MadeFromTerm& term) { term.hasClassMap = isPresent; });
    return false;
}

bool NameIndex::handleAccessList(const KeyWatch::Keys& keys, bool isPresent) {
    const bool isIpv6 = isEnum(keys[0], Acl::AclType::ipv6);
    if (keys.size() == 1) return isIpv6 || isEnum(keys[0], Acl::AclType::ipv4);
    changeTerm(keys[1].as<String>(), [&](MadeFromTerm& term) {
        (isIpv6 ? term.hasIpv6List : term.hasIpv4List) = isPresent;
    });
    return false;
}

bool NameIndex::handlePolicyMap(const KeyWatch::Keys& keys, bool isPresent) {
    if (keys.size() == 1) return isEnum(keys[0], Qos::MapType::mapQos);
    const auto& pmapName = keys[1].as<String>();
    if (keys.size() == 2) {
        handlePolicyMapName(pmapName, isPresent);
        // The classes of a policy map that was not made from classifiers have no effect.
        return QosOc::classifiersFromPmapName(pmapName) != QosOc::PmapClassifiers();
    }
    changeTerm(keys[2].as<String>(),
               [&](MadeFromTerm& term) { nameIs(term.policyMaps, pmapName, isPresent); });
    return false;
}

void NameIndex::handlePolicyMapName(const String& pmapName, bool isPresent) {
    const QosOc::PmapClassifiers& classifiers = QosOc::classifiersFromPmapName(pmapName);
    if (!classifiers.ipv4ClassifierName.empty())
        change(classifiers.ipv4ClassifierName,
               [&](MadeFromClassifier& made) { nameIs(made.ipv4PolicyMaps, pmapName, isPresent); });
    if (!classifiers.ipv6ClassifierName.empty())
        change(classifiers.ipv6ClassifierName,
               [&](MadeFromClassifier& made) { nameIs(made.ipv6PolicyMaps, pmapName, isPresent); });
}

}  // namespace QosAgent
