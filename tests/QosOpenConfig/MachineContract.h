#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "platform/Vex/TypeRecord.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/MachineTrace.h"
#include "tests/QosOpenConfig/StateTest.h"
#include "tests/support/Allocations.h"
#include "tests/support/VtableLayout.h"

/// What every machine has to keep, whatever it is for.
namespace QosOc {

using Ids = std::initializer_list<Orin::AttributeId>;

/// The virtual operations of a machine class, in slot order.
inline std::vector<std::string> machineOperations(const std::string& type) {
    const std::string reactor = "Vex::Reactor<QosOc::" + type + ">::";
    return {"~",
            "delete ~",
            "Orin::Node::lastUserGone",
            "Orin::Node::publisher",
            reactor + "typeData",
            reactor + "vexDoZombieReactors"};
}

/// The children that a machine holds under the name of a collection.
inline std::size_t childCount(const Vex::TypedNode& machine, const char* collection) {
    return Vex::attributeNamed(machine.typeData(), collection)->collection->size(&machine);
}

inline bool hasSubscribers(const Vex::TypedNode& input) {
    return input.publisher()->hasSubscribers();
}

/// Lets each allocation of a creator fail in turn: nothing stays alive but what was written to the
/// state tree, and no input keeps a subscriber.
template <class Create>
void expectLeavesNothingBehind(const std::vector<const Vex::TypedNode*>& inputs, Create create) {
    StateDir root = State::ClassifiersDir::create();
    const auto before = TestSupport::liveCounts();
    const std::size_t failures = TestSupport::failEachAllocation(
        [&] { create(root); },
        [&] {
            root = State::ClassifiersDir::create();
            EXPECT_EQ(TestSupport::liveCounts(), before);
            for (const Vex::TypedNode* input : inputs)
                EXPECT_FALSE(hasSubscribers(*input)) << input->typeData().fullName;
        });
    EXPECT_GT(failures, 0u);
}

}  // namespace QosOc
