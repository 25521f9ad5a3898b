#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Plugin/Loader.h"

namespace Plugin {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

struct Context {
    std::vector<std::string> initialised;
};

class Named : public PluginBase<Context> {
public:
    explicit Named(const char* name) : name_(name) {}
    void init(Context* context) override { context->initialised.emplace_back(name_); }

private:
    const char* name_;
};

class LoaderTest : public ::testing::Test {
protected:
    using Registration = PluginRegistration<Context>;
    std::vector<std::string> initialised() const {
        Context context;
        loader.init(&context);
        return context.initialised;
    }
    std::vector<std::string> registered() {
        std::vector<std::string> names;
        for (const Impl::Registration& registration : loader.registry())
            names.push_back(registration.name);
        return names;
    }

    Loader<Context> loader;
    Named first{"first"};
    Named second{"second"};
};

TEST_F(LoaderTest, initialisesNothingAtFirst) {
    EXPECT_THAT(initialised(), IsEmpty());
}

TEST_F(LoaderTest, initialisesTheLastOneRegisteredFirst) {
    const Registration one("First", loader, first);
    const Registration two("Second", loader, second);
    EXPECT_THAT(initialised(), ElementsAre("second", "first"));
    EXPECT_THAT(registered(), ElementsAre("First", "Second"));
}

TEST_F(LoaderTest, knowsAPluginByNameAndByItsInitCaller) {
    const Registration one("First", loader, first);
    ASSERT_EQ(loader.registry().size(), 1u);
    const Impl::Registration& entry = loader.registry().front();
    EXPECT_EQ(entry.name, "First");
    EXPECT_EQ(entry.version, "");
    EXPECT_EQ(entry.description, "");
    EXPECT_EQ(entry.initCaller, loader.initCallers().front());
}

TEST_F(LoaderTest, forgetsAPluginWhoseRegistrationGoes) {
    auto one = std::make_unique<Registration>("First", loader, first);
    const Registration two("Second", loader, second);
    one.reset();
    EXPECT_THAT(initialised(), ElementsAre("second"));
    EXPECT_THAT(registered(), ElementsAre("Second"));
}

TEST_F(LoaderTest, refusesANameThatIsTaken) {
    const Registration one("First", loader, first);
    EXPECT_THAT([&] { const Registration again("First", loader, second); },
                ::testing::ThrowsMessage<std::invalid_argument>(::testing::HasSubstr("First")));
    EXPECT_THAT(registered(), ElementsAre("First"));
    ASSERT_EQ(loader.initCallers().size(), 1u);
    EXPECT_THAT(initialised(), ElementsAre("first"));
}

TEST_F(LoaderTest, takesANameAgainThatBecameFree) {
    { const Registration one("First", loader, first); }
    const Registration again("First", loader, second);
    EXPECT_THAT(initialised(), ElementsAre("second"));
}

TEST_F(LoaderTest, ignoresTheRemovalOfWhatIsNotRegistered) {
    const Registration one("First", loader, first);
    Impl::LoaderImpl::unregisterPlugin(loader.registry(), &first);
    EXPECT_THAT(registered(), ElementsAre("First"));
}

}  // namespace
}  // namespace Plugin
