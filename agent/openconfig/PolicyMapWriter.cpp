#include "agent/openconfig/PolicyMapWriter.h"

#include <utility>

namespace QosAgent {
namespace {

using Qos::MapType;
using Qos::PolicyMapClass;
using Qos::PolicyMapStatus;
using Qos::PolicyMapTypeStatus;

constexpr std::uint32_t kFirstVersion = 1;

std::optional<std::uint32_t> trafficClassOf(const OpenConfigDocument& document,
                                            const ConfiguredTerm& term) {
    if (term.targetGroup.empty()) return {};
    return document.groups.find(term.targetGroup)->trafficClass;
}

/// The class with that traffic class set, or none; other actions, of others, stay.
PolicyMapClass classWith(std::optional<std::uint32_t> trafficClass, const PolicyMapClass* held) {
    PolicyMapClass result;
    if (held != nullptr)
        for (const auto& [action, value] : held->action)
            if (action != PolicyMapClass::kSetTrafficClass) result.action.is(action, value);
    if (trafficClass) result.action.is(PolicyMapClass::kSetTrafficClass, *trafficClass);
    return result;
}

}  // namespace

PolicyMapWriter::PolicyMapWriter(Orin::Ptr<Qos::Status> status, Found& found)
    : status_(std::move(status)), found_(found) {}

void PolicyMapWriter::writeComing(const Difference& difference) {
    const auto* held = status_->pmapTypeStatus().find(MapType::mapQos);
    const auto pmaps = held != nullptr ? *held : PolicyMapTypeStatus::create(MapType::mapQos);
    for (const AttachedPair& pair : difference.later.attachedPairs)
        write(*pmaps, pair, difference);
    if (!pmaps->pmapStatus().empty()) status_->pmapTypeStatusIs(pmaps);
}

void PolicyMapWriter::write(PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
                            const Difference& difference) {
    if (const auto* held = pmaps.pmapStatus().find(pair.pmapName)) {
        if (!difference.earlier.attachedPairs.contains(pair.pmapName))
            found_.note(pmaps, pair.pmapName);
        change(*Orin::Ptr<PolicyMapStatus>(*held), pair, difference);
        return;
    }
    const auto pmap = PolicyMapStatus::create(pair.pmapName);
    writeClasses(*pmap, pair, difference);
    pmap->versionIs(kFirstVersion);
    pmaps.pmapStatusIs(pmap);
}

void PolicyMapWriter::change(PolicyMapStatus& pmap, const AttachedPair& pair,
                             const Difference& difference) {
    const bool isWritten = writeClasses(pmap, pair, difference);
    const bool isRemoved = difference.earlier.attachedPairs.contains(pair.pmapName) &&
                           removeClasses(pmap, pair, difference);
    if (isWritten || isRemoved) pmap.versionIs(pmap.version() + 1);
}

bool PolicyMapWriter::writeClasses(PolicyMapStatus& pmap, const AttachedPair& pair,
                                   const Difference& difference) {
    const OpenConfigDocument& earlier = difference.earlier;
    const OpenConfigDocument& later = difference.later;
    const bool isPairNew = !earlier.attachedPairs.contains(pair.pmapName);
    bool isChanged = false;
    eachTermOf(later, pair, [&](const TermOfClassifier& of) {
        const Orin::String& name = of.term->objName;
        const PolicyMapClass* held = pmap.classes().find(name);
        if (held != nullptr && (isPairNew || !counterpart(earlier, of))) found_.note(pmap, name);
        const PolicyMapClass wanted = classWith(trafficClassOf(later, *of.term), held);
        if (held != nullptr && *held == wanted) return;
        pmap.classIs(name, wanted);
        isChanged = true;
    });
    return isChanged;
}

bool PolicyMapWriter::removeClasses(PolicyMapStatus& pmap, const AttachedPair& pair,
                                    const Difference& difference) {
    const OpenConfigDocument& later = difference.later;
    const bool isPairGone = !later.attachedPairs.contains(pair.pmapName);
    bool isChanged = false;
    eachTermOf(difference.earlier, pair, [&](const TermOfClassifier& of) {
        const Orin::String& name = of.term->objName;
        if (!isPairGone && counterpart(later, of)) return;
        if (found_.release(pmap, name) || pmap.classes().find(name) == nullptr) return;
        pmap.classDel(name);
        isChanged = true;
    });
    return isChanged;
}

void PolicyMapWriter::removeGoing(const Difference& difference) {
    const auto* held = status_->pmapTypeStatus().find(MapType::mapQos);
    if (held == nullptr) return;
    const Orin::Ptr<PolicyMapTypeStatus> pmaps = *held;
    for (const AttachedPair& pair : difference.earlier.attachedPairs)
        if (!difference.later.attachedPairs.contains(pair.pmapName))
            remove(*pmaps, pair, difference);
}

void PolicyMapWriter::remove(PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
                             const Difference& difference) {
    if (!found_.release(pmaps, pair.pmapName)) {
        pmaps.pmapStatusDel(pair.pmapName);
        return;
    }
    const auto* held = pmaps.pmapStatus().find(pair.pmapName);
    if (held == nullptr) return;
    const Orin::Ptr<PolicyMapStatus> pmap = *held;
    if (removeClasses(*pmap, pair, difference)) pmap->versionIs(pmap->version() + 1);
}

}  // namespace QosAgent
