#pragma once

#include <dlfcn.h>
#include <gmock/gmock.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Qos/DefaultPluginLoader.h"
#include "platform/QosOc/MounterBase.h"
#include "platform/QosOc/State/ClassifiersDir.h"
#include "platform/Vex/Module.h"
#include "tests/agent/support/TextDatabase.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/StateTree.h"

namespace QosAgent {

using Context = Agent::MounterPlugin::MounterContext;
using Lines = std::vector<std::string>;

inline constexpr const char* kPluginFile = QOS_PLUGIN_FILE;

/// The plug-in's library, open while this exists.
class PluginLibrary {
public:
    PluginLibrary() : library_(::dlopen(kPluginFile, RTLD_NOW | RTLD_LOCAL)) {
        if (library_ == nullptr) throw std::runtime_error(::dlerror());
    }
    ~PluginLibrary() { ::dlclose(library_); }
    PluginLibrary(const PluginLibrary&) = delete;
    PluginLibrary& operator=(const PluginLibrary&) = delete;

private:
    void* library_;
};

/// The mounters that the loaded plug-ins make over a database, alive while this exists.
class Mounters {
public:
    explicit Mounters(const Database& database)
        : context_(Orin::Ptr<Context>::adopt(new Context(database.entityManager()))) {
        Qos::defaultPluginLoader().init(context_.get());
    }
    ~Mounters() { context_->mounterDelAll(); }
    Mounters(const Mounters&) = delete;
    Mounters& operator=(const Mounters&) = delete;

    std::size_t size() const { return context_->mounters().size(); }
    QosOc::MounterBase& front() const {
        return static_cast<QosOc::MounterBase&>(*context_->mounters().front());
    }
    /// What an attribute of the first mounter holds; null where it is null.
    const Vex::TypedNode* held(std::string_view attribute) const {
        const auto* record = Vex::attributeNamed(front().typeData(), attribute);
        return record->read(&front()).as<Vex::NodeRef>().get();
    }

private:
    Orin::Ptr<Context> context_;
};

/// A database filled with one of each kind of input, without a plug-in.
class PluginTest : public ::testing::Test {
protected:
    PluginTest() {
        EXPECT_EQ(db.load(R"({
            "qos/status": {
                "cmapTypeStatus": {"mapQos": {"cmapStatus": {
                    "cmap": {"match": {"matchIpv6AccessGroup": "any"}},
                    "openconfig:acl:10": {"match": {"matchIpAccessGroup": "any"}}}}},
                "pmapTypeStatus": {"mapQos": {"pmapStatus": {
                    "openconfig:pmap:": {"version": 1,
                        "classes": {"openconfig:pmap:10": {"action": {"4": 5}}}}}}}},
            "qos/input/config/cli": {"forwardingGroupNameToTcMap": {"tc": {"gold": 5}}},
            "acl/config/cli": {"aclTypeConfig": {"ipv4": {"aclConfig": {
                "openconfig:acl:10": {"aclSubConfig": {
                    "ipRuleById": {"1": {"filter": {"dscpValue": 46, "dscpEnabled": true}}},
                    "ruleIdBySequence": {"10": 1}}}}}}},
            "qos/openconfig/config/classifiers": {"classifier": {
                "config": {"config": {"type": "IPV6"},
                    "terms": {"term": {"10": {"actions": {"targetGroup": "silver"}}}}}}}})"),
                  "");
    }

    static constexpr const char* kState = "qos/openconfig/state/classifiers";
    /// What the plug-in makes of the inputs.
    static constexpr const char* kWritten =
        "acl IPV4 {10 when ipv4 46}; cmap IPV6; config IPV6 {10 to silver}; pmap IPV4 {10 to gold}";

    std::string written() const {
        return TestSupport::textOf(
            static_cast<const QosOc::State::ClassifiersDir&>(*db.database.subtreeAt(kState)->root));
    }
    Vex::TypedNode& root(std::string_view path) const { return *db.database.subtreeAt(path)->root; }
    /// The registered modules, in the order of their indices.
    static Lines moduleNames() {
        Lines names;
        for (const Vex::Module* module : Vex::modules())
            if (module != nullptr) names.emplace_back(module->name);
        return names;
    }

    TextDatabase db;
};

}  // namespace QosAgent
