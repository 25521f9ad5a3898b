#include "CensusSm.h"

#include "platform/Vex/Derive.h"

namespace Census {
namespace {

Vex::TraceHandle kTrace{"ClassMapCensus", false};
const Vex::TraceRegistration traceRegistration(kTrace);

constexpr Vex::TracePoint kCount{"CensusSm.cpp", __LINE__, "handleCmapStatus", "class maps of "};

}  // namespace

constinit const Vex::TypeRecord TypeSm::kTypeRecord = Vex::recordOf<TypeSm>();
constinit const Vex::TypeRecord CensusSm::kTypeRecord = Vex::recordOf<CensusSm>();

TypeSm::TypeSm(const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus)
    : cmapTypeStatus_(cmapTypeStatus) {
    start();
}

void TypeSm::handleCmapStatus() {
    Vex::trace(kTrace, kCount, cmapTypeStatus_->mapType(), ": ",
               static_cast<std::uint32_t>(cmapTypeStatus_->cmapStatus().size()));
}

CensusSm::CensusSm(const Orin::Ptr<const Qos::Status>& status) : status_(status) {
    start();
}

void CensusSm::handleInitialized() {
    for (const auto& member : status_->cmapTypeStatus())
        handleCmapTypeStatus(member.key);
}

void CensusSm::handleCmapTypeStatus(Qos::MapType mapType) {
    typeSm_.reconcile(mapType, status_->cmapTypeStatus(), [&](const auto& cmapTypeStatus) {
        typeSm_.createOrKeep("cmapTypeStatus", &Qos::ClassMapTypeStatus::mapType,
                             Orin::Ptr<const Qos::ClassMapTypeStatus>(cmapTypeStatus));
    });
}

}  // namespace Census
