#include <malloc.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <optional>

#include "platform/OvSlab/Tracker.h"
#include "tests/plugin/PluginTest.h"
#include "tests/support/Allocations.h"
#include "tests/support/TraceCapture.h"

namespace QosAgent {
namespace {

using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using Loader = Plugin::Loader<Context>;

Loader& loader() {
    return Qos::defaultPluginLoader();
}

Lines registeredPlugins() {
    Lines plugins;
    for (const auto& registered : loader().registry())
        plugins.push_back(registered.name + ", version '" + registered.version +
                          "', description '" + registered.description + "'");
    return plugins;
}

/// The files that are mapped into the process, each as often as it has a mapping.
Lines mappedFiles() {
    std::ifstream maps("/proc/self/maps");
    Lines files;
    for (std::string line; std::getline(maps, line);)
        if (const auto at = line.find('/'); at != line.npos) files.push_back(line.substr(at));
    return files;
}

bool isMapped() {
    const Lines files = mappedFiles();
    return std::any_of(files.begin(), files.end(), [](const std::string& file) {
        return file.find("libQosOpenConfig.so") != file.npos;
    });
}

std::ptrdiff_t openDescriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::distance(begin(descriptors), end(descriptors));
}

/// What the C library has handed out, to itself as well. Always 0 under the address sanitizer,
/// which keeps a little of each unload itself.
std::size_t heapBytes() {
    return ::mallinfo2().uordblks;
}

std::size_t trackerCount() {
    std::size_t count = 0;
    for (const auto* tracker = OvSlab::Tracker::first(); tracker; tracker = tracker->next())
        ++count;
    return count;
}

class PluginLibraryTest : public PluginTest {};

TEST_F(PluginLibraryTest, isNotThereUntilItIsOpened) {
    EXPECT_FALSE(isMapped());
    EXPECT_THAT(registeredPlugins(), IsEmpty());
    EXPECT_TRUE(loader().initCallers().empty());
}

TEST_F(PluginLibraryTest, registersOnePlugin) {
    const PluginLibrary library;
    EXPECT_THAT(registeredPlugins(),
                ElementsAreArray({"ClassifierStateSmPlugin, version '', description ''"}));
    ASSERT_EQ(loader().initCallers().size(), 1u);
    EXPECT_EQ(loader().registry().front().initCaller, loader().initCallers().front());
}

/// Does nothing: another plug-in of the agent.
class OtherPlugin : public PluginBase<Context> {
public:
    void init(Context*) override {}
};

TEST_F(PluginLibraryTest, putsItsPluginInFrontOfTheOthers) {
    OtherPlugin other;
    const Plugin::PluginRegistration<Context> earlier("Other", loader(), other);
    const PluginLibrary library;
    ASSERT_EQ(loader().initCallers().size(), 2u);
    EXPECT_EQ(loader().registry().back().name, "ClassifierStateSmPlugin");
    EXPECT_EQ(loader().registry().back().initCaller, loader().initCallers().front());
}

TEST_F(PluginLibraryTest, registersTheModulesOfItsTwoSourcesInOrder) {
    Lines expected = moduleNames();
    expected.insert(expected.end(),
                    {"QosOpenConfigClassifierStateSm", "QosOpenConfigClassifierStateSmMounter"});
    const PluginLibrary library;
    EXPECT_EQ(moduleNames(), expected);
}

TEST_F(PluginLibraryTest, registersEveryMachineTheRegistryAndTheMounter) {
    const PluginLibrary library;
    const auto typesIn = [](std::string_view name) {
        Lines types;
        for (const Vex::Module* module : Vex::modules())
            if (module != nullptr && module->name == name)
                for (const Vex::TypeRecord* type : module->types)
                    types.emplace_back(type->fullName);
        return types;
    };
    EXPECT_THAT(
        typesIn("QosOpenConfigClassifierStateSm"),
        ::testing::UnorderedElementsAre(
            "QosOc::ClassifierStateSm", "QosOc::ClassifiersWithPmap", "QosOc::CmapTypeStatusSm",
            "QosOc::CmapStatusSm", "QosOc::PmapTypeStatusSm", "QosOc::PmapStatusSm",
            "QosOc::AclTypeStateSm", "QosOc::AclStateSm", "QosOc::AclSubStateSm",
            "QosOc::ClassifierConfigSm", "QosOc::ClassifierTermsSm"));
    EXPECT_THAT(typesIn("QosOpenConfigClassifierStateSmMounter"),
                ElementsAreArray({"QosOc::ClassifierStateSmMounter"}));
}

/// Opens the library where its plug-in cannot be registered, and shows how far it came.
[[noreturn]] void openWithItsNameTaken() noexcept {
    std::set_terminate([] {
        for (const Vex::Module* module : Vex::modules())
            std::fprintf(stderr, "<%.*s>", static_cast<int>(module->name.size()),
                         module->name.data());
        std::_Exit(3);
    });
    static OtherPlugin other;
    static const Plugin::PluginRegistration<Context> earlier("ClassifierStateSmPlugin", loader(),
                                                             other);
    const PluginLibrary library;
    std::_Exit(0);
}

TEST_F(PluginLibraryTest, registersItsModulesBeforeItsPlugin) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(openWithItsNameTaken(), ::testing::ExitedWithCode(3),
                "<QosOpenConfigClassifierStateSm><QosOpenConfigClassifierStateSmMounter>");
}

TEST_F(PluginLibraryTest, takesAllBackWhenItIsClosed) {
    const Lines modules = moduleNames();
    const std::size_t trackers = trackerCount();
    {
        const PluginLibrary library;
        const Mounters mounters(db.database);
        EXPECT_TRUE(isMapped());
        EXPECT_NE(Vex::typeNamed("QosOc::ClassifierStateSm"), nullptr);
    }
    EXPECT_FALSE(isMapped());
    EXPECT_THAT(registeredPlugins(), IsEmpty());
    EXPECT_TRUE(loader().initCallers().empty());
    EXPECT_EQ(trackerCount(), trackers);
    EXPECT_EQ(Vex::typeNamed("QosOc::ClassifierStateSm"), nullptr);
    EXPECT_EQ(Vex::typeNamed("QosOc::ClassifierStateSmMounter"), nullptr);
    EXPECT_EQ(moduleNames(), modules);
}

TEST_F(PluginLibraryTest, leavesNothingBehindHoweverOftenItIsReloaded) {
    const auto useOnce = [this] {
        const PluginLibrary library;
        const Mounters mounters(db.database);
        EXPECT_EQ(mounters.size(), 1u);
        EXPECT_EQ(written(), kWritten);
    };
    constexpr std::size_t kTimes = 1000;
    useOnce();
    const auto counts = TestSupport::liveCounts();
    const std::size_t modules = Vex::modules().size();
    const std::size_t trackers = trackerCount();
    const Lines files = mappedFiles();
    const std::ptrdiff_t descriptors = openDescriptors();
    const std::ptrdiff_t blocks = TestSupport::outstandingBlocks();
    const std::size_t bytes = heapBytes();
    for (std::size_t i = 0; i < kTimes; ++i)
        useOnce();
    EXPECT_FALSE(isMapped());
    EXPECT_LT(heapBytes(), bytes + 64 * kTimes) << "no time may keep 64 bytes";
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(mappedFiles(), files);
    EXPECT_EQ(TestSupport::liveCounts(), counts);
    EXPECT_EQ(Vex::modules().size(), modules);
    EXPECT_EQ(trackerCount(), trackers);
    EXPECT_EQ(TestSupport::outstandingBlocks(), blocks);
    EXPECT_THAT(registeredPlugins(), IsEmpty());
}

TEST_F(PluginLibraryTest, isThereOnceHoweverOftenItIsOpened) {
    {
        const PluginLibrary library;
        const Lines files = mappedFiles();
        const Lines modules = moduleNames();
        {
            const PluginLibrary again;
            EXPECT_EQ(registeredPlugins().size(), 1u);
            EXPECT_EQ(loader().initCallers().size(), 1u);
            EXPECT_EQ(mappedFiles(), files);
            EXPECT_EQ(moduleNames(), modules);
        }
        const Mounters mounters(db.database);
        EXPECT_EQ(mounters.size(), 1u);
        EXPECT_EQ(written(), kWritten);
    }
    EXPECT_FALSE(isMapped());
}

TEST_F(PluginLibraryTest, leavesGapsThatLaterModulesAreFoundBehind) {
    static constexpr Vex::Module kLater{"Later", {}};
    std::optional<Vex::ModuleRegistration> later;
    {
        const PluginLibrary library;
        later.emplace(kLater);
    }
    const auto modules = Vex::modules();
    ASSERT_EQ(modules.back(), &kLater);
    EXPECT_EQ(std::count(modules.begin(), modules.end(), nullptr), 2);
    EXPECT_EQ(Vex::typeNamed("QosOc::ClassifierStateSm"), nullptr);
    EXPECT_EQ(Vex::typeNamed("no type"), nullptr);
    const PluginLibrary library;
    const Mounters mounters(db.database);
    EXPECT_EQ(written(), kWritten);
    EXPECT_EQ(db.apply(R"({"print":"machines"})"), "");
}

TEST_F(PluginLibraryTest, leavesNoTraceHandleBehind) {
    { const PluginLibrary library; }
    const TestSupport::TraceCapture capture;
    EXPECT_THAT(capture.lines(), IsEmpty()) << "settings reach no handle that is gone";
}

TEST_F(PluginLibraryTest, tracesUnderSettingsThatWereMadeBeforeItWasOpened) {
    const TestSupport::TraceCapture capture("QosOpenConfigClassifierStateSmMounter", 8);
    const PluginLibrary library;
    const Mounters mounters(db.database);
    ASSERT_EQ(capture.lines().size(), 4u);
    for (const std::string& line : capture.lines())
        EXPECT_TRUE(line.starts_with("QosOpenConfigClassifierStateSmMounter/8 ")) << line;
}

TEST_F(PluginLibraryTest, tracesNothingBelowItsLevel) {
    const TestSupport::TraceCapture capture("*", 7);
    const PluginLibrary library;
    const Mounters mounters(db.database);
    EXPECT_THAT(capture.lines(), IsEmpty());
}

}  // namespace
}  // namespace QosAgent
