#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/CmapStatusSm.h"
#include "platform/Qos/ClassMapTypeStatus.h"

namespace QosOc {

/// Keeps one CmapStatusSm for each class map of a map type.
class CmapTypeStatusSm final : public Vex::Reactor<CmapTypeStatusSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::CmapTypeStatusSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("cmapTypeStatus", 1, &CmapTypeStatusSm::cmapTypeStatus_,
                         cmapTypeStatusDispatch),
            Vex::given("classifierStateDir", 2, &CmapTypeStatusSm::classifierStateDir_),
            Vex::own("cmapStatusSm", 3, &CmapTypeStatusSm::cmapStatusSm_),
        };
    }

    CmapTypeStatusSm(const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
                     const StateDir& classifierStateDir);
    ~CmapTypeStatusSm() override { stop(); }
    static Orin::Ptr<CmapTypeStatusSm> CmapTypeStatusSmIs(
        const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
        const StateDir& classifierStateDir);

    const Orin::Ptr<CmapStatusSm>& cmapStatusSmIs(
        const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus, const StateDir& classifierStateDir);
    Orin::Ptr<CmapStatusSm> cmapStatusSmDel(const Orin::String& cmapName);
    void cmapStatusSmDelAll();

    void handleInitialized();
    void handleCmapStatus(const Orin::String& cmapName);
    /// Removes the state of the class maps that are still in the input. Children whose class map
    /// was removed before stay, and so does their state.
    void doPrepareToDie();

    static constexpr Orin::Dispatch cmapTypeStatusDispatch =
        Vex::dispatchTo<CmapTypeStatusSm, Vex::On<Qos::ClassMapTypeStatus::kCmapStatus,
                                                  &CmapTypeStatusSm::handleCmapStatus>>;

private:
    Vex::Watched<Qos::ClassMapTypeStatus> cmapTypeStatus_;
    StateDir classifierStateDir_;
    Vex::Children<Orin::String, CmapStatusSm, Vex::seedOf("CmapTypeStatusSm.cmapStatusSm")>
        cmapStatusSm_;
};

Orin::Ptr<CmapTypeStatusSm> cmapTypeStatusSmFactory(
    const Orin::Ptr<const Qos::ClassMapTypeStatus>& cmapTypeStatus,
    const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::CmapTypeStatusSm>;
