#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "platform/Qos/Input/Config.h"
#include "platform/Qos/PolicyMapStatus.h"
#include "platform/QosOc/ClassifierMetaData.h"
#include "platform/QosOc/Config/ClassifiersDir.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/NotifieeConst.h"
#include "platform/Vex/Reactor.h"

namespace QosOc {

struct OwnNames;

/// Creates a term for each class of one policy map, in its two classifiers, and sets the term's
/// target group: that of the traffic class that the class sets.
class PmapStatusSm final : public Vex::Reactor<PmapStatusSm> {
public:
    /// Watches the CLI configuration for another forwarding-group map.
    class VexCliConfig final : public Vex::NotifieeConst<Qos::Input::Config> {
    public:
        VexCliConfig(Notifier notifier, PmapStatusSm& owner);
        void onAttribute(Orin::AttributeId attributeId, const void* key) override;

    private:
        PmapStatusSm& owner_;
    };
    /// Watches the entries of that map.
    class VexVex_CliConfig_ForwardingGroupNameToTcMapIn final
        : public Vex::NotifieeConst<Qos::ForwardingGroupNameToTcMap> {
    public:
        VexVex_CliConfig_ForwardingGroupNameToTcMapIn(Notifier notifier, PmapStatusSm& owner);
        void onAttribute(Orin::AttributeId attributeId, const void* key) override;

    private:
        PmapStatusSm& owner_;
    };
    using TcMap = Orin::Ptr<const Qos::ForwardingGroupNameToTcMap>;

    static constexpr std::string_view kTypeName = "QosOc::PmapStatusSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::watched("pmapStatus", 1, &PmapStatusSm::pmapStatus_, pmapStatusDispatch),
            Vex::given("cliConfig", 2, &PmapStatusSm::cliConfig_),
            Vex::given("classifierConfigDir", 3, &PmapStatusSm::classifierConfigDir_),
            Vex::given("classifierStateDir", 4, &PmapStatusSm::classifierStateDir_),
            Vex::own("ipv4ClassifierName", 5, &PmapStatusSm::ipv4ClassifierName_),
            Vex::own("ipv6ClassifierName", 6, &PmapStatusSm::ipv6ClassifierName_),
            Vex::own("vex_CliConfig_ForwardingGroupNameToTcMapIn", 7,
                     &PmapStatusSm::vex_CliConfig_ForwardingGroupNameToTcMapIn_),
        };
    }

    PmapStatusSm(const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
                 const Orin::Ptr<const Qos::Input::Config>& cliConfig,
                 const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
                 const StateDir& classifierStateDir);
    ~PmapStatusSm() override { stop(); }
    static Orin::Ptr<PmapStatusSm> PmapStatusSmIs(
        const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
        const Orin::Ptr<const Qos::Input::Config>& cliConfig,
        const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
        const StateDir& classifierStateDir);

    /// Watches this map from now on, or none if null. Does not recompute.
    void vex_CliConfig_ForwardingGroupNameToTcMapInIs(const TcMap& map);
    void vex_CliConfig_ForwardingGroupNameToTcMapInDel();

    void handleInitialized();
    void handlePmapStatusVersionUpdate();
    void handleForwardingGroupNameToTcMap();
    /// Gives the classifiers back to the OpenConfig configuration: writes the configured terms and
    /// target groups, and removes nothing.
    void doPrepareToDie();
    /// Writes the terms of all classes and their target groups, and returns a record of them.
    ClassifierMetaData::Ptr updateClassifierTermActions();

    static constexpr Orin::Dispatch pmapStatusDispatch =
        Vex::dispatchTo<PmapStatusSm, Vex::On<Qos::PolicyMapStatus::kVersion,
                                              &PmapStatusSm::handlePmapStatusVersionUpdate>>;

private:
    /// The policy map's name; empty without a policy map.
    const Orin::String& pmapName() const noexcept;
    OwnNames ownNames() const noexcept;
    Orin::String targetGroupOf(const Qos::PolicyMapClass& policyMapClass) const;
    /// Writes the terms of all classes and their target groups; calls `record` with the key and the
    /// target group of each.
    template <class Record>
    void writeTermActions(Record record);
    /// Writes the term of a class and its target group, and returns the target group.
    Orin::String writeTermAction(const StatePlace& place, const ClassifierKey& key,
                                 const Orin::String& cmapName,
                                 const Qos::PolicyMapClass& policyMapClass) const;
    void removeStaleTermActions(const ClassifierMetaData& metaData);
    void removeStaleTermActions(const State::Classifier& classifier, const ClassifierInfo& info);
    void giveBack(const Config::Classifier& configured);

    Vex::Watched<Qos::PolicyMapStatus> pmapStatus_;
    Vex::Nested<VexCliConfig> cliConfig_;
    Orin::Ptr<const Config::ClassifiersDir> classifierConfigDir_;
    StateDir classifierStateDir_;
    Orin::String ipv4ClassifierName_;
    Orin::String ipv6ClassifierName_;
    Vex::Nested<VexVex_CliConfig_ForwardingGroupNameToTcMapIn>
        vex_CliConfig_ForwardingGroupNameToTcMapIn_;
};

Orin::Ptr<PmapStatusSm> pmapStatusSmFactory(
    const Orin::Ptr<const Qos::PolicyMapStatus>& pmapStatus,
    const Orin::Ptr<const Qos::Input::Config>& cliConfig,
    const Orin::Ptr<const Config::ClassifiersDir>& classifierConfigDir,
    const StateDir& classifierStateDir);

}  // namespace QosOc

extern template class Vex::Reactor<QosOc::PmapStatusSm>;
