#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include "platform/Vex/Child.h"
#include "platform/Vex/Children.h"
#include "platform/Vex/Derive.h"
#include "platform/Vex/Reactor.h"
#include "tests/support/Harbour.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"

namespace Harbour {

using ShipPtr = Orin::Ptr<const Ship>;

/// Has something done once, when the next one is made and when the next one takes its state back.
class DiverSm final : public Vex::Reactor<DiverSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::DiverSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() { return std::tuple{Vex::given("ship", 1, &DiverSm::ship_)}; }
    explicit DiverSm(const ShipPtr& ship) : ship_(ship) { start(); }
    ~DiverSm() override { stop(); }
    void handleInitialized() { act(whenMade); }
    void doPrepareToDie() { act(whenDying); }

    static inline std::function<void()> whenMade;
    static inline std::function<void()> whenDying;

private:
    static void act(std::function<void()>& what) {
        if (const auto once = std::exchange(what, {})) once();
    }

    ShipPtr ship_;
};
inline constinit const Vex::TypeRecord DiverSm::kTypeRecord = Vex::recordOf<DiverSm>();

/// Children that come and go while one of them does.
class ChildrenReentrancyTest : public ::testing::Test {
protected:
    const DiverSm* make(const ShipPtr& ship) {
        return divers.createOrKeep("ship", &Ship::name, ship).get();
    }
    std::size_t live() const { return TestSupport::live<DiverSm>(); }

    const ShipPtr anna = Ship::create("Anna");
    const ShipPtr berta = Ship::create("Berta");
    Vex::Children<Orin::String, DiverSm, 5> divers;
};

}  // namespace Harbour
