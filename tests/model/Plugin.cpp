#include "tests/model/Plugin.h"

namespace Model {
namespace {

constexpr const char* kSource =
    "OpenConfigQosClfStateSm/8 QosOpenConfig/QosOpenConfigClassifierStateSm";
constexpr const char* kMounterSource =
    "QosOpenConfigClassifierStateSmMounter/8 QosOpenConfig/QosOpenConfigClassifierStateSmMounter";

constexpr const char* kCreateText = "virtual void QosOc::ClassifierStateSmMounter::createSm()";
constexpr const char* kPolicyMapText =
    "void QosOc::ClassifierStateSm::handlePmapTypeStatus(Qos::MapType)";
constexpr const char* kClassMapText =
    "void QosOc::ClassifierStateSm::handleCmapTypeStatus(Qos::MapType)";
constexpr const char* kAccessListText =
    "void QosOc::ClassifierStateSm::handleAclTypeConfig(Acl::AclType)";

const Point kMounts{
    kMounterSource, 0, "doPluginSpecificMounts",
    "virtual void QosOc::ClassifierStateSmMounter::doPluginSpecificMounts(const Ptr&)"};
const Point kMountsComplete{kMounterSource, 0, "doPluginSpecificMountsComplete",
                            "virtual void QosOc::ClassifierStateSmMounter::"
                            "doPluginSpecificMountsComplete(Strata::MountStatus, const Ptr&)"};
const Point kCreate{kMounterSource, 0, "createSm", kCreateText};
const Point kInstantiate{kMounterSource, 0, "createSm", kCreateText, ": root"};

const Point kInit{kSource, 907, "handleInitialized",
                  "void QosOc::ClassifierStateSm::handleInitialized()"};
const Point kPolicyMapType{kSource, 821, "handlePmapTypeStatus", kPolicyMapText};
const Point kNotQosPolicyMaps{kSource, 824, "handlePmapTypeStatus", kPolicyMapText, ": skipped"};
const Point kClassMapType{kSource, 847, "handleCmapTypeStatus", kClassMapText};
const Point kNotQosClassMaps{kSource, 850, "handleCmapTypeStatus", kClassMapText, ": skipped"};
const Point kAccessListType{kSource, 869, "handleAclTypeConfig", kAccessListText};
const Point kNotIp{kSource, 872, "handleAclTypeConfig", kAccessListText, ": skipped"};
const Point kClassifier{kSource, 891, "handleClassifierConfig",
                        "void QosOc::ClassifierStateSm::handleClassifierConfig(const String&)"};

constexpr const char* kQos = "mapQos";

/// Creates the child of a member that is there; lets the child of one that has gone take its state
/// back, and drops it.
template <class Children, class... Arguments>
void reconcile(Children& children, const std::string& key, const Ref& entity, Context& context,
               Arguments... arguments) {
    const auto child = children.find(key);
    if (entity && child != children.end()) return rule<"root: a child is kept">();
    if (entity) return children.try_emplace(key, context, arguments...).first->second.start();
    if (child == children.end()) return rule<"root: neither there nor known">();
    rule<"root: a child goes">();
    child->second.die();
    children.erase(child);
}

}  // namespace

Plugin::Plugin(const Inputs& inputs, State& state, Trace& trace, Wrong wrong)
    : context_{inputs, state, trace, wrong} {}

void Plugin::mounterLines() {
    mounter_ = context_.nextId();
    Trace& trace = context_.trace;
    trace.line(kMounts, mounter_);
    trace.line(kMountsComplete, mounter_);
    trace.line(kCreate, mounter_);
    trace.line(kInstantiate, mounter_, ": Instantiating QosOc::ClassifierStateSm");
}

void Plugin::start() {
    mounterLines();
    id_ = context_.nextId();
    context_.trace.line(kInit, id_);
    const Inputs& inputs = context_.inputs;
    const bool isLate = context_.wrong == Wrong::policyMapsComeLast;
    const auto policyMapTypes = [&] {
        for (const Member& member : inputs.root(kQosStatus)->members("pmapTypeStatus"))
            handlePolicyMapType(member.key);
    };
    if (!isLate) policyMapTypes();
    for (const Member& member : inputs.root(kQosStatus)->members("cmapTypeStatus"))
        handleClassMapType(member.key);
    for (const Member& member : inputs.root(kAclInput)->members("aclTypeConfig"))
        handleAccessListType(member.key);
    for (const Member& member : inputs.root(kClassifierConfig)->members("classifier"))
        handleClassifier(member.key);
    if (isLate) policyMapTypes();
}

void Plugin::changed(const Thing& entity, std::string_view attribute, const std::string& key) {
    const Inputs& inputs = context_.inputs;
    if (&entity == inputs.root(kQosStatus).get())
        return attribute == "pmapTypeStatus" ? handlePolicyMapType(key) : handleClassMapType(key);
    if (&entity == inputs.root(kAclInput).get()) return handleAccessListType(key);
    if (&entity == inputs.root(kClassifierConfig).get()) return handleClassifier(key);
    for (auto& [type, policyMaps] : policyMaps_)
        policyMaps.changed(entity, attribute, key);
    for (auto& [type, classMaps] : classMaps_)
        classMaps.changed(entity, key);
    for (auto& [type, accessLists] : accessLists_)
        accessLists.changed(entity, attribute, key);
    for (auto& [name, classifier] : classifiers_)
        classifier.changed(entity, attribute, key);
}

void Plugin::handlePolicyMapType(const std::string& mapType) {
    context_.trace.line(kPolicyMapType, id_, ", pmapType = ", mapType);
    if (mapType != kQos)
        return context_.trace.line(kNotQosPolicyMaps, id_, ", pmapType = ", mapType,
                                   " is not mapQos, skipping");
    const Ref status = context_.inputs.root(kQosStatus)->member("pmapTypeStatus", mapType);
    reconcile(policyMaps_, mapType, status, context_, status);
}

void Plugin::handleClassMapType(const std::string& mapType) {
    context_.trace.line(kClassMapType, id_, ", cmapType = ", mapType);
    if (mapType != kQos)
        return context_.trace.line(kNotQosClassMaps, id_, ", cmapType = ", mapType,
                                   " is not mapQos, skipping");
    const Ref status = context_.inputs.root(kQosStatus)->member("cmapTypeStatus", mapType);
    reconcile(classMaps_, mapType, status, context_, status);
}

void Plugin::handleAccessListType(const std::string& aclType) {
    context_.trace.line(kAccessListType, id_);
    if (aclType != "ipv4" && aclType != "ipv6")
        return context_.trace.line(kNotIp, id_, ", ACL should be of the type IPV4 or IPV6");
    const Family family = aclType == "ipv4" ? Family::ipv4 : Family::ipv6;
    const Ref config = context_.inputs.root(kAclInput)->member("aclTypeConfig", aclType);
    reconcile(accessLists_, aclType, config, context_, config, family);
}

void Plugin::handleClassifier(const std::string& name) {
    context_.trace.line(kClassifier, id_, ", classifierName = ", name);
    const Ref classifier = context_.inputs.root(kClassifierConfig)->member("classifier", name);
    reconcile(classifiers_, name, classifier, context_, name, classifier);
}

}  // namespace Model
