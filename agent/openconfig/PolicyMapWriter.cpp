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

/// The class with that traffic class set, or with none; its other actions stay.
PolicyMapClass classWith(std::optional<std::uint32_t> trafficClass, const PolicyMapClass* held) {
    PolicyMapClass result;
    if (held != nullptr)
        for (const auto& [action, value] : held->action)
            if (action != PolicyMapClass::kSetTrafficClass) result.action.is(action, value);
    if (trafficClass) result.action.is(PolicyMapClass::kSetTrafficClass, *trafficClass);
    return result;
}

/// A term of one of the documents, with what the other has.
TermChange changeOf(const Difference& difference, const TermOfClassifier& of) {
    return {termOf(difference.earlier(), of.classifier->name, of.term->id),
            termOf(difference.later(), of.classifier->name, of.term->id)};
}

/// Calls `visit` with the terms of the classifiers of a pair, IPv4 first: with all that `document`,
/// one of the two, has if the pair must be compared whole, else with `changed` ones.
template <class Visit>
void eachTermOf(const AttachedPair& pair, const Difference& difference,
                std::vector<TermChange> ClassifierChange::*changed,
                const OpenConfigDocument& document, Visit visit) {
    for (const Orin::String& name : {pair.ipv4ClassifierName, pair.ipv6ClassifierName}) {
        if (difference.isWhole(pair)) {
            const ConfiguredClassifier* classifier = document.classifiers.find(name);
            if (classifier == nullptr) continue;
            for (const auto& term : classifier->terms.inOrder())
                visit(changeOf(difference, {classifier, term.get()}));
        } else if (const ClassifierChange* change = difference.find(name)) {
            for (const TermChange& term : change->*changed)
                visit(term);
        }
    }
}

Place placeOf(const Orin::String& pmapName) {
    return {Places::kPolicyMaps, pmapName};
}

Place classPlaceOf(const PolicyMapStatus& pmap, const TermOfClassifier& of) {
    return placeOf(pmap.pmapName()).member("classes", of.term->objName);
}

Place actionPlaceOf(const PolicyMapStatus& pmap, const TermOfClassifier& of) {
    return classPlaceOf(pmap, of).part("action/4");
}

}  // namespace

PolicyMapWriter::PolicyMapWriter(Orin::Ptr<Qos::Status> status, Ownership& ownership)
    : status_(std::move(status)), ownership_(ownership) {}

void PolicyMapWriter::writeComing(const Difference& difference) {
    const auto* held = status_->pmapTypeStatus().find(MapType::mapQos);
    const auto pmaps = held != nullptr ? *held : PolicyMapTypeStatus::create(MapType::mapQos);
    for (const AttachedPair* pair : difference.comingPairs())
        write(*pmaps, *pair, difference);
    if (pmaps->pmapStatus().empty()) return;
    if (held == nullptr) ownership_.created(Place(Places::kPolicyMapType));
    status_->pmapTypeStatusIs(pmaps);
}

void PolicyMapWriter::write(PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
                            const Difference& difference) {
    if (const auto* held = pmaps.pmapStatus().find(pair.pmapName)) {
        ownership_.describe(placeOf(pair.pmapName),
                            difference.earlier().attachedPairs.contains(pair.pmapName));
        change(*Orin::Ptr<PolicyMapStatus>(*held), pair, difference);
        return;
    }
    const auto pmap = PolicyMapStatus::create(pair.pmapName);
    writeClasses(*pmap, pair, difference);
    pmap->versionIs(kFirstVersion);
    ownership_.created(placeOf(pair.pmapName));
    pmaps.pmapStatusIs(pmap);
}

void PolicyMapWriter::change(PolicyMapStatus& pmap, const AttachedPair& pair,
                             const Difference& difference) {
    const bool isWritten = writeClasses(pmap, pair, difference);
    const bool isRemoved = difference.earlier().attachedPairs.contains(pair.pmapName) &&
                           removeClasses(pmap, pair, difference);
    if (isWritten || isRemoved) raiseVersion(pmap);
}

void PolicyMapWriter::raiseVersion(PolicyMapStatus& pmap) {
    ownership_.changed(placeOf(pmap.pmapName()).part("version"));
    pmap.versionIs(pmap.version() + 1);
}

bool PolicyMapWriter::writeClasses(PolicyMapStatus& pmap, const AttachedPair& pair,
                                   const Difference& difference) {
    const OpenConfigDocument& later = difference.later();
    const bool isPairNew = !difference.earlier().attachedPairs.contains(pair.pmapName);
    bool isChanged = false;
    eachTermOf(pair, difference, &ClassifierChange::laterTerms, later, [&](const TermChange& term) {
        isChanged |= writeClass(pmap, *term.later, trafficClassOf(later, *term.later->term),
                                isPairNew ? std::nullopt : term.earlier);
    });
    return isChanged;
}

bool PolicyMapWriter::writeClass(PolicyMapStatus& pmap, const TermOfClassifier& of,
                                 std::optional<std::uint32_t> trafficClass,
                                 const std::optional<TermOfClassifier>& earlier) {
    const Orin::String& name = of.term->objName;
    const PolicyMapClass* held = pmap.classes().find(name);
    if (held == nullptr) {
        ownership_.created(classPlaceOf(pmap, of));
        pmap.classIs(name, classWith(trafficClass, nullptr));
        return true;
    }
    ownership_.describe(classPlaceOf(pmap, of), earlier.has_value());
    const bool wasSet = earlier && !earlier->term->targetGroup.empty();
    if (const std::uint32_t* set = held->action.find(PolicyMapClass::kSetTrafficClass)) {
        if (trafficClass)
            ownership_.describe(actionPlaceOf(pmap, of), wasSet);
        else if (!wasSet || !ownership_.leave(actionPlaceOf(pmap, of)))
            trafficClass = *set;  // others set it
    }
    const PolicyMapClass wanted = classWith(trafficClass, held);
    if (*held == wanted) return false;
    ownership_.changed(classPlaceOf(pmap, of));
    pmap.classIs(name, wanted);
    return true;
}

bool PolicyMapWriter::removeClasses(PolicyMapStatus& pmap, const AttachedPair& pair,
                                    const Difference& difference) {
    const bool isPairGone = !difference.later().attachedPairs.contains(pair.pmapName);
    bool isChanged = false;
    eachTermOf(pair, difference, &ClassifierChange::earlierTerms, difference.earlier(),
               [&](const TermChange& term) {
                   if (isPairGone || !term.later) isChanged |= removeClass(pmap, *term.earlier);
               });
    return isChanged;
}

bool PolicyMapWriter::removeClass(PolicyMapStatus& pmap, const TermOfClassifier& of) {
    const Orin::String& name = of.term->objName;
    const PolicyMapClass* held = pmap.classes().find(name);
    if (held == nullptr) return false;
    if (ownership_.leave(classPlaceOf(pmap, of))) {
        pmap.classDel(name);
        return true;
    }
    const bool isSet = held->action.find(PolicyMapClass::kSetTrafficClass) != nullptr;
    const bool wasSet = !of.term->targetGroup.empty();
    if (!isSet || !wasSet || !ownership_.leave(actionPlaceOf(pmap, of))) return false;
    const PolicyMapClass rest = classWith({}, held);
    pmap.classIs(name, rest);
    return true;
}

void PolicyMapWriter::removeGoing(const Difference& difference) {
    const auto* held = status_->pmapTypeStatus().find(MapType::mapQos);
    if (held == nullptr) return;
    const Orin::Ptr<PolicyMapTypeStatus> pmaps = *held;
    for (const AttachedPair* pair : difference.goingPairs())
        remove(*pmaps, *pair, difference);
}

void PolicyMapWriter::remove(PolicyMapTypeStatus& pmaps, const AttachedPair& pair,
                             const Difference& difference) {
    const auto* held = pmaps.pmapStatus().find(pair.pmapName);
    if (held == nullptr) return;
    const Orin::Ptr<PolicyMapStatus> pmap = *held;
    if (ownership_.leave(placeOf(pair.pmapName)))
        pmaps.pmapStatusDel(pair.pmapName);
    else if (removeClasses(*pmap, pair, difference))
        raiseVersion(*pmap);
}

}  // namespace QosAgent
