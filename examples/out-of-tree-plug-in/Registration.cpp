#include "CensusSm.h"
#include "platform/Qos/DefaultPluginLoader.h"
#include "platform/QosOc/MounterBase.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/Module.h"

// What happens when the agent loads the library: it learns the types and the plug-in, and the
// plug-in's mounter starts the machines once it has what it asked for.
namespace Census {
namespace {

class Mounter final : public QosOc::MounterBase {
public:
    static constexpr std::string_view kTypeName = "Census::Mounter";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kStatus{"status", 1};
    static constexpr Vex::Attribute<> kCensusSm{"censusSm", 2};
    static constexpr auto fields() {
        return std::tuple{
            Vex::published(kStatus, &Mounter::status_),
            Vex::published(kCensusSm, &Mounter::censusSm_).owned(),
        };
    }
    static Orin::Ptr<Mounter> create() { return Orin::Ptr<Mounter>::adopt(new Mounter); }

    Mounter() : QosOc::MounterBase("ClassMapCensus") {}
    const Vex::TypeRecord& typeData() const override { return kTypeRecord; }

    void doPluginSpecificMounts(const Orin::Ptr<Strata::MountGroup>& mountGroup) override {
        mountGroup->doMount(Strata::Mount(kStatusPath, Qos::Status::kTypeName));
    }
    void doPluginSpecificMountsComplete(
        Strata::MountStatus, const Orin::Ptr<Strata::EntityManager>& entityManager) override {
        status_ = Vex::entityCast<const Qos::Status>(entityManager->getEntity(kStatusPath));
    }
    void createSm() override {
        if (status_) censusSm_ = CensusSm::create(status_);
    }

private:
    static constexpr std::string_view kStatusPath = "qos/status";

    Orin::Ptr<const Qos::Status> status_;
    Orin::Ptr<CensusSm> censusSm_;
};

constinit const Vex::TypeRecord Mounter::kTypeRecord = Vex::recordOf<Mounter>();

constexpr const Vex::TypeRecord* kTypes[] = {
    &CensusSm::kTypeRecord,
    &TypeSm::kTypeRecord,
    &Mounter::kTypeRecord,
};
constexpr Vex::Module kModule{"ClassMapCensus", kTypes};
const Vex::ModuleRegistration moduleRegistration(kModule);

Agent::MounterPlugin::Plugin<Mounter> plugin;
const Plugin::PluginRegistration<Agent::MounterPlugin::MounterContext> pluginRegistration(
    "ClassMapCensus", Qos::defaultPluginLoader(), plugin);

}  // namespace
}  // namespace Census
