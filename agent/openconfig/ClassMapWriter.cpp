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

Found::Key keyOf(ClassMapMatchOption option) {
    return static_cast<std::uint32_t>(option);
}

}  // namespace

ClassMapWriter::ClassMapWriter(Orin::Ptr<Qos::Status> status, Found& found)
    : status_(std::move(status)), found_(found) {}

void ClassMapWriter::writeComing(const Difference& difference) {
    const auto* held = status_->cmapTypeStatus().find(MapType::mapQos);
    const auto classMaps = held != nullptr ? *held : ClassMapTypeStatus::create(MapType::mapQos);
    eachTerm(difference.later, [&](const TermOfClassifier& later) {
        write(*classMaps, later, counterpart(difference.earlier, later));
    });
    if (!classMaps->cmapStatus().empty()) status_->cmapTypeStatusIs(classMaps);
}

void ClassMapWriter::write(ClassMapTypeStatus& classMaps, const TermOfClassifier& later,
                           const std::optional<TermOfClassifier>& earlier) {
    const Orin::String& name = later.term->objName;
    if (const auto* held = classMaps.cmapStatus().find(name)) {
        if (!earlier) found_.note(classMaps, name);
        change(*Orin::Ptr<ClassMapStatus>(*held), later, earlier);
        return;
    }
    const auto classMap = ClassMapStatus::create(name);
    classMap->matchIs(matchOptionOf(later), name);
    classMaps.cmapStatusIs(classMap);
}

void ClassMapWriter::change(ClassMapStatus& classMap, const TermOfClassifier& later,
                            const std::optional<TermOfClassifier>& earlier) {
    const ClassMapMatchOption option = matchOptionOf(later);
    const bool isDescribed = earlier && matchOptionOf(*earlier) == option;
    if (!isDescribed && classMap.match().find(option) != nullptr)
        found_.note(classMap, keyOf(option));
    // The new match comes first: the class map never stands without one.
    classMap.matchIs(option, later.term->objName);
    if (earlier && !isDescribed && !found_.release(classMap, keyOf(matchOptionOf(*earlier))))
        classMap.matchDel(matchOptionOf(*earlier));
}

void ClassMapWriter::removeGoing(const Difference& difference) {
    const auto* held = status_->cmapTypeStatus().find(MapType::mapQos);
    if (held == nullptr) return;
    const Orin::Ptr<ClassMapTypeStatus> classMaps = *held;
    eachTerm(difference.earlier, [&](const TermOfClassifier& earlier) {
        if (!counterpart(difference.later, earlier)) remove(*classMaps, earlier);
    });
}

void ClassMapWriter::remove(ClassMapTypeStatus& classMaps, const TermOfClassifier& earlier) {
    const Orin::String& name = earlier.term->objName;
    if (!found_.release(classMaps, name)) {
        classMaps.cmapStatusDel(name);
        return;
    }
    const auto* held = classMaps.cmapStatus().find(name);
    if (held != nullptr && !found_.release(**held, keyOf(matchOptionOf(earlier))))
        Orin::Ptr<ClassMapStatus>(*held)->matchDel(matchOptionOf(earlier));
}

}  // namespace QosAgent
