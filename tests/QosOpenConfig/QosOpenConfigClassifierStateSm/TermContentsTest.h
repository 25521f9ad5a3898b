#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "tests/QosOpenConfig/StateTest.h"

namespace QosOc {

/// A term with conditions and an action, and one that is bare.
class TermContentsTest : public StateTest {
protected:
    TermContentsTest() {
        Orin::Vector<unsigned char> values{46};
        addClassifierTermCondition(root, "voice", Classifier::Type::IPV4, "10", values);
        addClassifierTermAction(root, "voice", Classifier::Type::IPV4, "10", "gold");
        addClassifierTerm(root, "voice", Classifier::Type::IPV4, "20");
        addClassifier(root, "video", Classifier::Type::IPV4);
        heard.take();
    }
    /// Calls `act` with the names of terms that are not there.
    template <class Act>
    void expectNoEffect(Act act) {
        const std::string before = state();
        act("data", "10");
        act("video", "10");
        act("voice", "30");
        EXPECT_EQ(state(), before);
        EXPECT_THAT(heard.take(), ::testing::IsEmpty());
    }
};

}  // namespace QosOc
