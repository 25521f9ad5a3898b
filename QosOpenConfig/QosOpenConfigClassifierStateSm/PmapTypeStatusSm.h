#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifiersWithPmap.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/PmapStatusSm.h"
#include "platform/Qos/PolicyMapTypeStatus.h"

namespace QosOc {

/// Keeps one PmapStatusSm for each policy map of a map type, and counts the classifiers that the
/// policy maps use.
class PmapTypeStatusSm final : public Vex::Reactor<PmapTypeStatusSm> {
public:
    static constexpr std::string_view kTypeName = "QosOc::PmapTypeStatusSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("pmapTypeStatus", 1, &PmapTypeStatusSm::pmapTypeStatus_,
                         pmapTypeStatusDispatch),
            Vex::given("cliConfig", 2, &PmapTypeStatusSm::cliConfig_),
            Vex::given("classifierConfigDir", 3, &PmapTypeStatusSm::classifierConfigDir_),
            Vex::given("classifiersWithPmap", 4, &PmapTypeStatusSm::classifiersWithPmap_),
            Vex::given("classifierStateDir", 5, &PmapTypeStatusSm::classifierStateDir_),
            Vex::own("pmapStatusSm", 6, &PmapTypeStatusSm::pmapStatusSm_),
        };
    }

    PmapTypeStatusSm(const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
                     const Orin::Ptr<const Qos::Input::Config>& cliConfig,
                     const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
                     const Orin::Ptr<ClassifiersWithPmap>& classifiersWithPmap,
                     const StateDir& classifierStateDir);
    ~PmapTypeStatusSm() override { stop(); }
    static Orin::Ptr<PmapTypeStatusSm> PmapTypeStatusSmIs(
        const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
        const Orin::Ptr<const Qos::Input::Config>& cliConfig,
        const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
        const Orin::Ptr<ClassifiersWithPmap>& classifiersWithPmap,
        const StateDir& classifierStateDir);

    const Orin::Ptr<PmapStatusSm>& pmapStatusSmIs(
        const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
        const Orin::Ptr<const Qos::Input::Config>& cliConfig,
        const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
        const StateDir& classifierStateDir);
    Orin::Ptr<PmapStatusSm> pmapStatusSmDel(const Orin::String& pmapName);
    void pmapStatusSmDelAll();

    void handleInitialized();
    /// Adds one use for each notification of a present policy map, and removes one for each
    /// notification of an absent one.
    void handlePmapStatus(const Orin::String& pmapName);
    void updateClassifiersWithPmap(const Orin::String& classifierName,
                                   Classifier::Type classifierType, bool add);
    /// Removes one use for each policy map of the input, and tears down their machines.
    void doPrepareToDie();

    static constexpr Orin::Dispatch pmapTypeStatusDispatch =
        Vex::dispatchTo<PmapTypeStatusSm, Vex::On<Qos::PolicyMapTypeStatus::kPmapStatus,
                                                  &PmapTypeStatusSm::handlePmapStatus>>;

private:
    Vex::Watched<Qos::PolicyMapTypeStatus> pmapTypeStatus_;
    Orin::Ptr<const Qos::Input::Config> cliConfig_;
    Orin::Ptr<const Config::ClassifiersDir> classifierConfigDir_;
    Orin::Ptr<ClassifiersWithPmap> classifiersWithPmap_;
    StateDir classifierStateDir_;
    Vex::Children<Orin::String, PmapStatusSm, Vex::seedOf("PmapTypeStatusSm.pmapStatusSm")>
        pmapStatusSm_;
};

Orin::Ptr<PmapTypeStatusSm> pmapTypeStatusSmFactory(
    const Orin::Ptr<const Qos::PolicyMapTypeStatus>& pmapTypeStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const Orin::Ptr<ClassifiersWithPmap>& classifiersWithPmap, const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::PmapTypeStatusSm>;
