#include "agent/openconfig/ClassMapWriter.h"

#include <utility>

namespace QosAgent {
namespace {

using Qos::ClassMapMatchOption;
using Qos::ClassMapStatus;
using Qos::ClassMapTypeStatus;
using Qos::MapType;

ClassMapMatchOption matchOptionOf(const TermOfClassifier& of) {
    return of.classifier->family() == QosOc::Classifier::Type::IPV6
               ? ClassMapMatchOption::matchIpv6AccessGroup
               : ClassMapMatchOption::matchIpAccessGroup;
}

Place placeOf(const TermOfClassifier& of) {
    return {Places::kClassMaps, of.term->objName};
}

Place matchPlaceOf(const TermOfClassifier& of) {
    return placeOf(of).part(matchOptionOf(of) == ClassMapMatchOption::matchIpv6AccessGroup
                                ? "match/matchIpv6AccessGroup"
                                : "match/matchIpAccessGroup");
}

}  // namespace

ClassMapWriter::ClassMapWriter(Orin::Ptr<Qos::Status> status, Ownership& ownership)
    : status_(std::move(status)), ownership_(ownership) {}

void ClassMapWriter::writeComing(const Difference& difference) {
    const auto* held = status_->cmapTypeStatus().find(MapType::mapQos);
    const auto classMaps = held != nullptr ? *held : ClassMapTypeStatus::create(MapType::mapQos);
    difference.eachLaterTerm(
        [&](const TermChange& term) { write(*classMaps, *term.later, term.earlier); });
    if (classMaps->cmapStatus().empty()) return;
    if (held == nullptr) ownership_.created(Place(Places::kClassMapType));
    status_->cmapTypeStatusIs(classMaps);
}

void ClassMapWriter::write(ClassMapTypeStatus& classMaps, const TermOfClassifier& later,
                           const std::optional<TermOfClassifier>& earlier) {
    const Orin::String& name = later.term->objName;
    if (const auto* held = classMaps.cmapStatus().find(name)) {
        ownership_.describe(placeOf(later), earlier.has_value());
        change(*Orin::Ptr<ClassMapStatus>(*held), later, earlier);
        return;
    }
    const auto classMap = ClassMapStatus::create(name);
    classMap->matchIs(matchOptionOf(later), name);
    ownership_.created(placeOf(later));
    classMaps.cmapStatusIs(classMap);
}

void ClassMapWriter::change(ClassMapStatus& classMap, const TermOfClassifier& later,
                            const std::optional<TermOfClassifier>& earlier) {
    const ClassMapMatchOption option = matchOptionOf(later);
    const bool wasDescribed = earlier && matchOptionOf(*earlier) == option;
    const Orin::String* held = classMap.match().find(option);
    if (held != nullptr) ownership_.describe(matchPlaceOf(later), wasDescribed);
    if (held == nullptr || *held != later.term->objName) ownership_.changed(matchPlaceOf(later));
    // The new match comes first: the class map never stands without one.
    classMap.matchIs(option, later.term->objName);
    if (earlier && !wasDescribed && ownership_.leave(matchPlaceOf(*earlier)))
        classMap.matchDel(matchOptionOf(*earlier));
}

void ClassMapWriter::removeGoing(const Difference& difference) {
    const auto* held = status_->cmapTypeStatus().find(MapType::mapQos);
    if (held == nullptr) return;
    const Orin::Ptr<ClassMapTypeStatus> classMaps = *held;
    difference.eachEarlierTerm([&](const TermChange& term) {
        if (!term.later) remove(*classMaps, *term.earlier);
    });
}

void ClassMapWriter::remove(ClassMapTypeStatus& classMaps, const TermOfClassifier& earlier) {
    const Orin::String& name = earlier.term->objName;
    const auto* held = classMaps.cmapStatus().find(name);
    if (held == nullptr) return;
    const Orin::Ptr<ClassMapStatus> classMap = *held;
    if (ownership_.leave(placeOf(earlier)))
        classMaps.cmapStatusDel(name);
    else if (ownership_.leave(matchPlaceOf(earlier)))
        classMap->matchDel(matchOptionOf(earlier));
}

}  // namespace QosAgent
