#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifiersWithPmap.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Module.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"
#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/QosOc/Config/ClassifiersDir.h"
#include "platform/Vex/Module.h"
#include "tests/QosOpenConfig/QosOpenConfigClassifierStateSm/MachineTrace.h"
#include "tests/support/Allocations.h"
#include "tests/support/LiveCounts.h"
#include "tests/support/Printers.h"
#include "tests/support/RecordingSubscriber.h"
#include "tests/support/StateTree.h"

namespace QosOc {

using TestSupport::live;

/// The fixture of the machines' tests: a state tree to write, a registry and a configuration.
class MachineTest : public ::testing::Test {
protected:
    /// The state tree in words; see `StateTree.h`.
    std::string written() const { return TestSupport::textOf(*state); }
    /// The registry: uses by classifier, such as `voice (IPV4)`.
    std::map<std::string, unsigned> uses() const {
        std::map<std::string, unsigned> counts;
        for (const auto& member : registry->classifier())
            counts[std::string(member.key.name.view()) + " (" + Vex::enumText(*member.key.type) +
                   ")"] = member.value;
        return counts;
    }

    /// Configures a classifier with a terms container.
    Config::Classifier& configured(const Orin::String& name,
                                   std::optional<Classifier::Type> type = Classifier::Type::IPV4) {
        const auto classifier = Config::Classifier::create(name);
        classifier->configIs({name, type});
        classifier->termsIs(Config::Terms::create());
        configDir->classifierIs(classifier);
        return *classifier;
    }
    static Config::Term configuredTerm(const Orin::String& id, const char* targetGroup) {
        Config::Term term(id);
        term.actions = Config::TermActions{targetGroup};
        return term;
    }

    Vex::TraceRegistration traceRegistration{traceHandle};
    StateDir state = State::ClassifiersDir::create();
    Orin::Ptr<Config::ClassifiersDir> configDir = Config::ClassifiersDir::create();
    Orin::Ptr<ClassifiersWithPmap> registry = ClassifiersWithPmap::ClassifiersWithPmapIs();
};

}  // namespace QosOc
