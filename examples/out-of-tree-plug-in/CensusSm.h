#pragma once

#include "platform/Qos/Status.h"
#include "platform/Vex/Reactor.h"
#include "platform/Vex/Trace.h"

namespace Census {

/// Traces how many class maps of one map type there are, at first and after each that comes or
/// goes.
class TypeSm final : public Vex::Reactor<TypeSm> {
public:
    static constexpr std::string_view kTypeName = "Census::TypeSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("cmapTypeStatus", 1, &TypeSm::cmapTypeStatus_, cmapTypeStatusDispatch),
        };
    }

    explicit TypeSm(const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus);
    ~TypeSm() override { stop(); }

    void handleInitialized() { handleCmapStatus(); }
    void handleCmapStatus();
    /// Wrote nothing, so there is nothing to take back.
    void doPrepareToDie() {}

    static constexpr Orin::Dispatch cmapTypeStatusDispatch =
        Vex::dispatchTo<TypeSm,
                        Vex::On<Qos::ClassMapTypeStatus::kCmapStatus, &TypeSm::handleCmapStatus>>;

private:
    Vex::Watched<Qos::ClassMapTypeStatus> cmapTypeStatus_;
};

/// Keeps one TypeSm for each map type that has class maps.
class CensusSm final : public Vex::Reactor<CensusSm> {
public:
    static constexpr std::string_view kTypeName = "Census::CensusSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("status", 1, &CensusSm::status_, statusDispatch),
            Vex::own("typeSm", 2, &CensusSm::typeSm_),
        };
    }

    explicit CensusSm(const Orin::Ptr<const Qos::Status>& status);
    ~CensusSm() override { stop(); }

    void handleInitialized();
    void handleCmapTypeStatus(Qos::MapType mapType);

    static constexpr Orin::Dispatch statusDispatch =
        Vex::dispatchTo<CensusSm,
                        Vex::On<Qos::Status::kCmapTypeStatus, &CensusSm::handleCmapTypeStatus>>;

private:
    Vex::Watched<Qos::Status> status_;
    Vex::Children<Qos::MapType, TypeSm, Vex::seedOf("CensusSm.typeSm")> typeSm_;
};

}  // namespace Census
