#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "platform/Qos/ClassMapStatus.h"
#include "platform/Vex/Reactor.h"

namespace QosOc {

/// Creates the object that one class map means: a term, if the class map was made from one,
/// otherwise the classifier of its name.
class CmapStatusSm final : public Vex::Reactor<CmapStatusSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::CmapStatusSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("cmapStatus", 1, &CmapStatusSm::cmapStatus_, cmapStatusDispatch),
            Vex::given("classifierStateDir", 2, &CmapStatusSm::classifierStateDir_),
        };
    }

    CmapStatusSm(const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus,
                 const StateDir& classifierStateDir);
    ~CmapStatusSm() override { stop(); }
    static Orin::Ptr<CmapStatusSm> CmapStatusSmIs(
        const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus, const StateDir& classifierStateDir);

    void handleInitialized();
    /// Handles a match option that was added, changed or removed. A removed one writes again with
    /// the IPv4 type; this matters only if the classifier or term is missing.
    void handleCmapStatusMatch(Qos::ClassMapMatchOption option);
    /// Removes the term or the classifier.
    void doPrepareToDie();

    static constexpr Orin::Dispatch cmapStatusDispatch =
        Vex::dispatchTo<CmapStatusSm,
                        Vex::On<Qos::ClassMapStatus::kMatch, &CmapStatusSm::handleCmapStatusMatch>>;

private:
    /// The class map's name; empty without a class map.
    const Orin::String& cmapName() const noexcept;

    Vex::Watched<Qos::ClassMapStatus> cmapStatus_;
    StateDir classifierStateDir_;
};

Orin::Ptr<CmapStatusSm> cmapStatusSmFactory(const Orin::Ptr<const Qos::ClassMapStatus>& cmapStatus,
                                            const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::CmapStatusSm>;
