#include <functional>
#include <optional>
#include <utility>

#include "tests/QosOpenConfig/StateTest.h"

namespace QosOc {
namespace {

using Type = Classifier::Type;

/// Acts once, during the first change of an entity.
class OnChange {
public:
    OnChange(const Vex::PublishingNode& entity, std::function<void()> act) : act_(std::move(act)) {
        record_.owner = this;
        record_.dispatch = [](Orin::Publisher& publisher, Orin::Subscriber& record,
                              Orin::AttributeId, const void*) noexcept {
            publisher.subscriberDel(record);
            static_cast<OnChange*>(record.owner)->act_();
        };
        entity.publisher()->subscriberAdd(record_);
    }

private:
    std::function<void()> act_;
    Orin::Subscriber record_;
};

/// Two classifiers with a term of the same id, and a place in which both may be looked up.
/// The same with the trace off and on.
class StatePlaceTest : public StateTest, public ::testing::WithParamInterface<bool> {
protected:
    StatePlaceTest() {
        if (GetParam()) trace_.emplace();
        addClassifierTermAction(root, "voice", Type::IPV4, "10", "gold");
        addClassifierTermAction(root, "video", Type::IPV4, "10", "silver");
    }
    /// The term of "voice" is gone, though the place had it, once somebody takes its classifier
    /// away while `write` is told of.
    void expectForgotten(const std::function<void()>& write) {
        ASSERT_NE(place.term("voice", "10"), nullptr);
        const OnChange change(*root->classifier("voice")->terms(),
                              [this] { root->classifierDel("voice"); });
        write();
        EXPECT_EQ(place.term("voice", "10"), nullptr);
        EXPECT_EQ(state(), "video IPV4 {10 to silver}");
    }

    const StatePlace place{root};

private:
    std::optional<TestSupport::TraceCapture> trace_;
};

INSTANTIATE_TEST_SUITE_P(Traced, StatePlaceTest, ::testing::Bool(),
                         [](const auto& each) { return each.param ? "on" : "off"; });

TEST_P(StatePlaceTest, findsWhatWasAskedForWhateverItFoundBefore) {
    EXPECT_EQ(place.term("voice", "10")->actions->targetGroup, "gold");
    EXPECT_EQ(place.term("video", "10")->actions->targetGroup, "silver");
    EXPECT_EQ(place.classifier("voice")->name(), "voice");
    EXPECT_EQ(place.classifier("voice")->name(), "voice");
    EXPECT_EQ(place.term("voice", "20"), nullptr);
    EXPECT_EQ(place.classifier("none"), nullptr);
}

TEST_P(StatePlaceTest, knowsNoClassifierThatWasDeleted) {
    ASSERT_NE(place.term("voice", "10"), nullptr);
    deleteClassifier(place, "voice");
    EXPECT_EQ(place.classifier("voice"), nullptr);
    EXPECT_EQ(place.term("voice", "10"), nullptr);
}

TEST_P(StatePlaceTest, knowsNoTermThatWasDeleted) {
    ASSERT_NE(place.term("voice", "10"), nullptr);
    deleteClassifierTerm(place, "voice", "10");
    EXPECT_EQ(place.term("voice", "10"), nullptr);
}

TEST_P(StatePlaceTest, forgetsWhatItFoundWhenATermComes) {
    expectForgotten([this] { addClassifierTerm(place, "voice", Type::IPV4, "20"); });
}

TEST_P(StatePlaceTest, forgetsWhatItFoundWhenAFirstTermComes) {
    addClassifier(root, "data", Type::IPV4);
    ASSERT_NE(place.classifier("data"), nullptr);
    const OnChange change(*root->classifier("data"), [this] { root->classifierDel("data"); });
    addClassifierTerm(place, "data", Type::IPV4, "10");
    EXPECT_EQ(place.classifier("data"), nullptr);
}

TEST_P(StatePlaceTest, forgetsWhatItFoundWhenConditionsChange) {
    Orin::Vector<unsigned char> values{46};
    expectForgotten([&] { addClassifierTermCondition(place, "voice", Type::IPV4, "10", values); });
}

TEST_P(StatePlaceTest, forgetsWhatItFoundWhenConditionsGo) {
    expectForgotten([this] { deleteClassifierTermCondition(place, "voice", "10", false); });
}

TEST_P(StatePlaceTest, forgetsWhatItFoundWhenAnActionGoes) {
    expectForgotten([this] { deleteClassifierTermAction(place, "voice", "10"); });
}

TEST_P(StatePlaceTest, forgetsWhatItFoundWhenAnActionChanges) {
    expectForgotten([this] { addClassifierTermAction(place, "voice", Type::IPV4, "10", "lead"); });
}

}  // namespace
}  // namespace QosOc
