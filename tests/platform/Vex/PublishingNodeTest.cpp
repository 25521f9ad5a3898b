#include <gtest/gtest.h>

#include <functional>

#include "platform/Vex/PublishingNode.h"
#include "tests/support/Harbour.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"
#include "tests/support/RecordingSubscriber.h"

namespace Harbour {
namespace {

using TestSupport::Changes;
using TestSupport::RecordingSubscriber;

class PublishingNodeTest : public ::testing::Test {
protected:
    static Vex::Value text(const char* text) { return Orin::String(text); }

    Orin::Ptr<Port> port = Port::create();
    Orin::Ptr<Ship> anna = Ship::create("Anna");
};

/// Calls a function at each change, with the old value of a number.
struct Watcher : Orin::Subscriber {
    explicit Watcher(std::function<void(const void*)> atChange) : act(std::move(atChange)) {
        owner = this;
        dispatch = [](Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                      const void* key) noexcept { static_cast<Watcher&>(record).act(key); };
    }
    std::function<void(const void*)> act;
};

TEST_F(PublishingNodeTest, publishesTheAttributeThatChanged) {
    RecordingSubscriber heard(*port);
    port->isOpenIs(true);
    port->signalIs(Signal::caution);
    EXPECT_EQ(heard.take(), (Changes{{Port::kIsOpen.id, {}}, {Port::kSignal.id, {}}}));
}

TEST_F(PublishingNodeTest, isSilentWhenAnEqualValueIsStored) {
    const auto tide = Tide::create();
    port->isOpenIs(true);
    port->tideIs(tide);
    RecordingSubscriber heard(*port);
    port->isOpenIs(true);
    port->tideIs(tide);
    EXPECT_EQ(heard.take(), Changes{});
}

TEST_F(PublishingNodeTest, storesFirstAndHandsOutTheOldValue) {
    anna->draughtIs(3);
    std::uint16_t old = 0;
    std::uint16_t seen = 0;
    Watcher watcher([&](const void* key) {
        old = *static_cast<const std::uint16_t*>(key);
        seen = anna->draught();
    });
    anna->publisher()->subscriberAdd(watcher);
    anna->draughtIs(4);
    EXPECT_EQ(old, 3);
    EXPECT_EQ(seen, 4);
    anna->publisher()->subscriberDel(watcher);
}

TEST_F(PublishingNodeTest, keepsTheOldEntityUntilAllWereTold) {
    port->tideIs(Tide::create());
    std::size_t alive = 0;
    Watcher watcher([&](const void* key) {
        const auto& old = *static_cast<const Orin::Ptr<Tide>*>(key);
        alive = old->userCount();
    });
    port->publisher()->subscriberAdd(watcher);
    port->tideIs(nullptr);
    EXPECT_EQ(alive, 1u);
    EXPECT_EQ(TestSupport::live<Tide>(), 0u);
    port->publisher()->subscriberDel(watcher);
}

TEST_F(PublishingNodeTest, publishesTheKeyOfAMemberThatEntersChangesAndLeaves) {
    RecordingSubscriber heard(*anna);
    anna->cargoIs({.kind = "coal", .tons = 1});
    anna->cargoIs({.kind = "coal", .tons = 2});
    anna->cargoDel("coal");
    const TestSupport::Change coal{Ship::kCargo.id, text("coal")};
    EXPECT_EQ(heard.take(), (Changes{coal, coal, coal}));
}

TEST_F(PublishingNodeTest, isSilentWhenAnEqualMemberIsStoredOrNoneIsDeleted) {
    anna->cargoIs({.kind = "coal", .tons = 1});
    RecordingSubscriber heard(*anna);
    anna->cargoIs({.kind = "coal", .tons = 1});
    anna->cargoDel("iron");
    EXPECT_EQ(heard.take(), Changes{});
}

TEST_F(PublishingNodeTest, changesTheCollectionBeforeItPublishes) {
    std::vector<bool> present;
    Watcher watcher([&](const void* key) {
        present.push_back(anna->cargo().find(*static_cast<const Orin::String*>(key)) != nullptr);
    });
    anna->publisher()->subscriberAdd(watcher);
    anna->cargoIs({.kind = "coal"});
    anna->cargoDel("coal");
    EXPECT_EQ(present, (std::vector<bool>{true, false}));
    anna->publisher()->subscriberDel(watcher);
}

TEST_F(PublishingNodeTest, publishesAKeyThatOutlivesTheMemberItCameFrom) {
    anna->cargoIs({.kind = "coal"});
    RecordingSubscriber heard(*anna);
    anna->cargoDel((*anna->cargo().begin()).value.kind);
    EXPECT_EQ(heard.take(), (Changes{{Ship::kCargo.id, text("coal")}}));
}

TEST_F(PublishingNodeTest, publishesChangesOfOrderedCollections) {
    RecordingSubscriber heard(*port);
    port->manifestIs({7}, {.kind = "coal"});
    port->manifestDel({7});
    const TestSupport::Change change{Port::kManifest.id, std::uint64_t{7}};
    EXPECT_EQ(heard.take(), (Changes{change, change}));
}

TEST_F(PublishingNodeTest, livesUntilAllSubscribersWereTold) {
    int told = 0;
    Watcher dropping([&](const void*) { port = nullptr; });
    Watcher counting([&](const void*) { ++told; });
    port->publisher()->subscriberAdd(dropping);
    port->publisher()->subscriberAdd(counting);
    port->isOpenIs(true);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(TestSupport::live<Port>(), 0u);
    EXPECT_FALSE(counting.isLinked());
}

TEST_F(PublishingNodeTest, mayChangeAgainWhileItPublishes) {
    Watcher correcting([&](const void*) {
        if (port->signal() == Signal::caution) port->signalIs(Signal::danger);
    });
    port->publisher()->subscriberAdd(correcting);
    RecordingSubscriber heard(*port);
    port->signalIs(Signal::caution);
    EXPECT_EQ(port->signal(), Signal::danger);
    EXPECT_EQ(heard.take().size(), 2u);
    port->publisher()->subscriberDel(correcting);
}

}  // namespace
}  // namespace Harbour
