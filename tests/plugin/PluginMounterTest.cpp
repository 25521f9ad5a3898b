#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "agent/host/ToggleFolder.h"
#include "platform/Agent/Toggles.h"
#include "tests/plugin/PluginTest.h"
#include "tests/support/TraceCapture.h"

namespace QosAgent {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

class PluginMounterTest : public PluginTest {
protected:
    const PluginLibrary library;
};

TEST_F(PluginMounterTest, isMadeByThePluginsInit) {
    const Mounters mounters(db.database);
    ASSERT_EQ(mounters.size(), 1u);
    EXPECT_EQ(mounters.front().typeData().fullName, "QosOc::ClassifierStateSmMounter");
    EXPECT_EQ(mounters.front().name(), "ClassifierStateSmMounter");
    EXPECT_EQ(mounters.front().mountStatus(), Strata::mountSuccess_);
    EXPECT_EQ(TestSupport::liveCount("QosOc::ClassifierStateSmMounter"), 1u);
}

TEST_F(PluginMounterTest, writesTheStateOfTheInputs) {
    const Mounters mounters(db.database);
    EXPECT_EQ(written(), kWritten);
    EXPECT_EQ(db.remove("qos/status/cmapTypeStatus/mapQos/cmapStatus/cmap"), "");
    EXPECT_EQ(db.update("qos/status/pmapTypeStatus/mapQos/pmapStatus/openconfig:pmap:",
                        R"({"classes":{"openconfig:pmap:20":{"action":{"4":5}}},"version":2})"),
              "");
    EXPECT_EQ(written(),
              "acl IPV4 {10 when ipv4 46}; config IPV6 {10 to silver}; pmap IPV4 {10 to gold, 20 "
              "to gold}");
}

TEST_F(PluginMounterTest, mountsTheFiveSubtrees) {
    const Mounters mounters(db.database);
    const auto group =
        Orin::Ptr<Strata::MountGroup>::adopt(new Strata::MountGroup(db.database.entityManager()));
    mounters.front().doPluginSpecificMounts(group);
    Lines mounts;
    for (const Strata::Mount& mount : group->mounts()) {
        const bool reads = mount.flags().has(Strata::MountFlag::read);
        const bool writes = mount.flags().has(Strata::MountFlag::write);
        mounts.push_back(mount.path() + " " + mount.type() + (reads ? " r" : "") +
                         (writes ? " w" : ""));
    }
    EXPECT_THAT(mounts,
                ElementsAre("qos/status Qos::Status r", "acl/config/cli Acl::Input::Config r",
                            "qos/input/config/cli Qos::Input::Config r",
                            "qos/openconfig/config/classifiers "
                            "QosOc::Config::ClassifiersDir r",
                            "qos/openconfig/state/classifiers "
                            "QosOc::State::ClassifiersDir w"));
}

TEST_F(PluginMounterTest, keepsTheEntitiesOfTheDatabase) {
    const Mounters mounters(db.database);
    EXPECT_EQ(mounters.held("qosStatus"), &root("qos/status"));
    EXPECT_EQ(mounters.held("aclCliConfig"), &root("acl/config/cli"));
    EXPECT_EQ(mounters.held("qosCliConfig"), &root("qos/input/config/cli"));
    EXPECT_EQ(mounters.held("classifierConfigDir"), &root("qos/openconfig/config/classifiers"));
    EXPECT_EQ(mounters.held("classifierStateDir"), &root(kState));
    ASSERT_NE(mounters.held("classifierStateSm"), nullptr);
    EXPECT_EQ(mounters.held("classifierStateSm")->typeData().fullName, "QosOc::ClassifierStateSm");
}

TEST_F(PluginMounterTest, numbersItsAttributesFrom642) {
    const Mounters mounters(db.database);
    Lines attributes;
    for (const auto& attribute : mounters.front().typeData().attributes)
        attributes.push_back(std::to_string(attribute.id) + " " + std::string(attribute.name));
    EXPECT_THAT(attributes, ElementsAre("642 qosStatus", "643 aclCliConfig", "644 qosCliConfig",
                                        "645 classifierConfigDir", "646 classifierStateDir",
                                        "647 classifierStateSm"));
}

TEST_F(PluginMounterTest, takesNullForEntitiesThatAreMissingOrOfAnotherType) {
    const Mounters mounters(db.database);
    const auto other = Orin::Ptr<Strata::EntityManager>::adopt(new Strata::EntityManager);
    other->entityIs("qos/status", Orin::Ptr<Vex::TypedNode>::sharing(&root("acl/config/cli")));
    other->entityIs("acl/config/cli", Orin::Ptr<Vex::TypedNode>::sharing(&root("acl/config/cli")));
    mounters.front().doPluginSpecificMountsComplete(Strata::mountSuccess_, other);
    EXPECT_EQ(mounters.held("qosStatus"), nullptr);
    EXPECT_EQ(mounters.held("aclCliConfig"), &root("acl/config/cli"));
    EXPECT_EQ(mounters.held("qosCliConfig"), nullptr);
    EXPECT_EQ(mounters.held("classifierConfigDir"), nullptr);
    EXPECT_EQ(mounters.held("classifierStateDir"), nullptr);
}

TEST_F(PluginMounterTest, leavesTheSameBytesAndReactsNoMoreOnceItIsGone) {
    std::string bytes;
    {
        const Mounters mounters(db.database);
        bytes = db.at(kState);
    }
    EXPECT_THAT(bytes, HasSubstr(R"("cmap":{"state":{"name":"cmap","type":"IPV6"}})"));
    EXPECT_EQ(db.at(kState), bytes);
    db.remove("qos/status/cmapTypeStatus/mapQos");
    db.remove("acl/config/cli/aclTypeConfig/ipv4");
    db.remove("qos/openconfig/config/classifiers/classifier/config");
    EXPECT_EQ(db.at(kState), bytes);
}

TEST_F(PluginMounterTest, takesUpTheStateOfItsPredecessor) {
    { const Mounters mounters(db.database); }
    const std::string bytes = db.at(kState);
    const auto tree = Orin::Ptr<QosOc::State::ClassifiersDir>::sharing(
        static_cast<QosOc::State::ClassifiersDir*>(&root(kState)));
    TestSupport::StateRecorder heard(tree);
    const Mounters mounters(db.database);
    EXPECT_EQ(db.at(kState), bytes);
    EXPECT_THAT(heard.take(), ::testing::IsEmpty());
    db.remove("qos/status/cmapTypeStatus/mapQos/cmapStatus/cmap");
    EXPECT_THAT(heard.take(), ElementsAre("cmap gone"));
}

TEST_F(PluginMounterTest, tracesEachStepOfItsStart) {
    const TestSupport::TraceCapture capture("QosOpenConfigClassifierStateSmMounter", 8);
    const Mounters mounters(db.database);
    Lines bodies;
    for (const std::string& line : capture.lines()) {
        const auto at = line.find(" QosOc::ClassifierStateSmMounter@0x");
        ASSERT_NE(at, line.npos) << line;
        bodies.push_back(line.substr(line.rfind(' ', at - 1) + 1));
    }
    const std::string own =
        "QosOc::ClassifierStateSmMounter@0xvirtual void "
        "QosOc::ClassifierStateSmMounter::";
    EXPECT_THAT(
        bodies,
        ElementsAre("doPluginSpecificMounts " + own + "doPluginSpecificMounts(const Ptr&)",
                    "doPluginSpecificMountsComplete " + own +
                        "doPluginSpecificMountsComplete(Strata::MountStatus, const Ptr&)",
                    "createSm " + own + "createSm()",
                    "createSm " + own + "createSm(): Instantiating QosOc::ClassifierStateSm"));
}

/// Starts the plug-in under a toggle file, in a process of its own.
class PluginToggleTest : public PluginTest {
protected:
    PluginToggleTest() {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        std::filesystem::create_directories(folder);
        Agent::toggleReaderIs([this](auto toggle, auto file, bool fallback) {
            return ToggleFolder(folder).state(toggle, file, fallback);
        });
    }
    ~PluginToggleTest() override {
        Agent::toggleReaderIs(nullptr);
        std::filesystem::remove_all(folder);
    }
    void toggleIs(const char* json) const { std::ofstream(folder + "/QosOpenConfig.json") << json; }
    /// Ends the process well if all checks of the test have held.
    [[noreturn]] void end() const {
        std::filesystem::remove_all(folder);
        std::_Exit(HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    }

    const std::string folder =
        ::testing::TempDir() + "PluginToggleTest." + std::to_string(::getpid());
    static constexpr const char* kOn = R"({"OCQosClassifierStatePath": true})";
    static constexpr const char* kOff = R"({"OCQosClassifierStatePath": false})";
};

TEST_F(PluginToggleTest, makesNoMachineWhileItIsOff) {
    const auto inChild = [this] {
        toggleIs(kOff);
        const PluginLibrary library;
        const TestSupport::TraceCapture capture;
        const Mounters mounters(db.database);
        EXPECT_EQ(written(), "");
        EXPECT_EQ(mounters.held("classifierStateSm"), nullptr);
        EXPECT_EQ(mounters.held("qosStatus"), &root("qos/status"));
        ASSERT_EQ(capture.lines().size(), 4u);
        EXPECT_THAT(capture.lines()[3],
                    ::testing::EndsWith("createSm(), toggle: OCQosClassifierStatePath is "
                                        "disabled, returning"));
    };
    EXPECT_EXIT((inChild(), end()), ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(PluginToggleTest, isOnWhereNothingIsSaidOfIt) {
    const auto inChild = [this] {
        const PluginLibrary library;
        const Mounters mounters(db.database);
        EXPECT_EQ(written(), kWritten);
    };
    EXPECT_EXIT((inChild(), end()), ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(PluginToggleTest, isReadOnceThoughTheMounterIsMadeAgain) {
    const auto inChild = [this] {
        toggleIs(kOff);
        const PluginLibrary library;
        { const Mounters mounters(db.database); }
        toggleIs(kOn);
        const Mounters mounters(db.database);
        EXPECT_EQ(written(), "");
    };
    EXPECT_EXIT((inChild(), end()), ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(PluginToggleTest, staysOnThoughTheMounterIsMadeAgain) {
    const auto inChild = [this] {
        toggleIs(kOn);
        const PluginLibrary library;
        { const Mounters mounters(db.database); }
        toggleIs(kOff);
        const Mounters mounters(db.database);
        EXPECT_NE(mounters.held("classifierStateSm"), nullptr);
    };
    EXPECT_EXIT((inChild(), end()), ::testing::ExitedWithCode(EXIT_SUCCESS), "");
}

}  // namespace
}  // namespace QosAgent
