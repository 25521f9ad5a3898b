#include "tests/model/Schema.h"

#include <cassert>
#include <map>
#include <string>

namespace Model {
namespace {

using Shape = Type::Shape;

constexpr bool kOptional = true;
constexpr Keyed kOne = Keyed::no;

const Type kNumber{Shape::plain, "0", {}};
const Type kBoolean{Shape::plain, "false", {}};
const Type kText{Shape::plain, "", {}};
const Type kList{Shape::plain, "[]", {}};
const Type kFamily{Shape::plain, "IPV4", {}};

const Type kClassMapStatus{Shape::entity, "", {{"match", &kText, Keyed::entered}}};
const Type kClassMapTypeStatus{
    Shape::entity, "", {{"cmapStatus", &kClassMapStatus, Keyed::entered}}};
const Type kClass{Shape::record, "", {{"action", &kNumber, Keyed::byNumber}}};
const Type kPolicyMapStatus{
    Shape::entity,
    "",
    {{"version", &kNumber, kOne, false, true}, {"classes", &kClass, Keyed::entered}}};
const Type kPolicyMapTypeStatus{
    Shape::entity, "", {{"pmapStatus", &kPolicyMapStatus, Keyed::byName}}};
const Type kStatus{Shape::entity,
                   "",
                   {{"pmapTypeStatus", &kPolicyMapTypeStatus, Keyed::entered},
                    {"cmapTypeStatus", &kClassMapTypeStatus, Keyed::entered}}};

const Type kGroups{Shape::entity, "", {{"tc", &kNumber, Keyed::entered}}};
const Type kQosConfig{
    Shape::entity, "", {{"forwardingGroupNameToTcMap", &kGroups, kOne, kOptional}}};

const Type kIpFilter{Shape::record, "", {{"dscpValue", &kNumber}, {"dscpEnabled", &kBoolean}}};
const Type kIp6Filter{
    Shape::record, "", {{"trafficClass", &kNumber}, {"trafficClassMask", &kNumber}}};
const Type kIpRule{Shape::record, "", {{"filter", &kIpFilter}}};
const Type kIp6Rule{Shape::record, "", {{"filter", &kIp6Filter}}};
const Type kAclSubConfig{Shape::entity,
                         "",
                         {{"ruleIdBySequence", &kNumber, Keyed::byNumber, false, true},
                          {"ipRuleById", &kIpRule, Keyed::entered},
                          {"ip6RuleById", &kIp6Rule, Keyed::entered}}};
const Type kAclConfig{Shape::entity, "", {{"aclSubConfig", &kAclSubConfig, kOne, kOptional}}};
const Type kAclTypeConfig{
    Shape::entity, "", {{"aclConfig", &kAclConfig, Keyed::byName, kOptional}}};
const Type kAclInputConfig{Shape::entity, "", {{"aclTypeConfig", &kAclTypeConfig, Keyed::entered}}};

const Type kFamilyConditions{
    Shape::record, "", {{"dscp", &kNumber, kOne, kOptional}, {"dscpSet", &kList}}};
const Type kConditions{
    Shape::record, "", {{"ipv4", &kFamilyConditions}, {"ipv6", &kFamilyConditions}}};
const Type kActions{Shape::record, "", {{"targetGroup", &kText}}};
const Type kTerm{Shape::record,
                 "",
                 {{"id", &kText, kOne, false, false, true},
                  {"stateId", &kText, kOne, false, false, false, true},
                  {"conditions", &kConditions, kOne, kOptional},
                  {"actions", &kActions, kOne, kOptional}}};
const Type kTerms{Shape::entity, "", {{"term", &kTerm, Keyed::entered}}};

const Type kConfig{
    Shape::record,
    "",
    {{"name", &kText, kOne, false, false, true}, {"type", &kFamily, kOne, kOptional}}};
const Type kConfiguredClassifier{
    Shape::entity, "", {{"config", &kConfig}, {"terms", &kTerms, kOne, kOptional}}};
const Type kConfigDir{Shape::entity, "", {{"classifier", &kConfiguredClassifier, Keyed::entered}}};

const Type kState{
    Shape::record, "", {{"name", &kText, kOne, false, false, true}, {"type", &kFamily}}};
const Type kPublishedClassifier{
    Shape::entity, "", {{"state", &kState}, {"terms", &kTerms, kOne, kOptional}}};
const Type kStateDir{Shape::entity, "", {{"classifier", &kPublishedClassifier, Keyed::entered}}};

}  // namespace

const Mount kQosStatus{"qos/status", &kStatus};
const Mount kQosInput{"qos/input/config/cli", &kQosConfig};
const Mount kAclInput{"acl/config/cli", &kAclInputConfig};
const Mount kClassifierConfig{"qos/openconfig/config/classifiers", &kConfigDir};
const Mount kClassifierState{"qos/openconfig/state/classifiers", &kStateDir};
const std::vector<Mount> kInputs{kQosStatus, kQosInput, kAclInput, kClassifierConfig};

const Attribute& Type::attribute(std::string_view name) const {
    for (const Attribute& each : attributes)
        if (each.name == name) return each;
    assert(false && "no such attribute");
    __builtin_unreachable();
}

unsigned long numberOf(std::string_view enumerator) {
    static const std::map<std::string_view, unsigned long> kNumbers{{"mapCopp", 0},
                                                                    {"mapQos", 1},
                                                                    {"mapPbr", 2},
                                                                    {"ipv4", 0},
                                                                    {"ipv6", 1},
                                                                    {"mac", 2},
                                                                    {"matchDscp", 3},
                                                                    {"matchIpAccessGroup", 0},
                                                                    {"matchPrecedence", 4},
                                                                    {"matchIpv6AccessGroup", 1},
                                                                    {"matchCos", 5},
                                                                    {"matchMacAccessGroup", 2},
                                                                    {"matchVlan", 6}};
    const auto at = kNumbers.find(enumerator);
    return at == kNumbers.end() ? std::stoul(std::string(enumerator)) : at->second;
}

}  // namespace Model
