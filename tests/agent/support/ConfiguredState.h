#pragma once

#include <map>
#include <string>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "agent/openconfig/StatePrinter.h"
#include "tests/agent/support/TextDatabase.h"
#include "tests/support/StateTree.h"

namespace QosAgent {

/// A database that OpenConfig documents configure, with the machines at work on it.
class ConfiguredState : public TextDatabase {
public:
    ConfiguredState()
        : machines_(QosOc::ClassifierStateSm::ClassifierStateSmIs(
              root<const Qos::Status>("qos/status"),
              root<const Acl::Input::Config>("acl/config/cli"),
              root<const Qos::Input::Config>("qos/input/config/cli"),
              root<const QosOc::Config::ClassifiersDir>("qos/openconfig/config/classifiers"),
              state())) {}

    Orin::Ptr<QosOc::State::ClassifiersDir> state() const {
        return root<QosOc::State::ClassifiersDir>("qos/openconfig/state/classifiers");
    }
    /// `COLUMN: MESSAGE` of a refused document; empty when it was applied.
    std::string configure(const std::string& document) {
        JsonResult json = parseJson(document);
        if (const auto* fault = std::get_if<Fault>(&json)) return shown(*fault);
        const JsonValue root = std::get<Json>(json).root();
        const auto applied = configuration.apply(std::get<Json>(std::move(json)), root);
        const auto* fault = std::get_if<Fault>(&applied);
        return fault == nullptr ? "" : shown(*fault);
    }
    /// The published terms by `CLASSIFIER/TERM`, as people read them.
    std::map<std::string, std::string> terms() const {
        std::map<std::string, std::string> terms;
        for (const auto& classifier : state()->classifier()) {
            if (classifier.value->terms() == nullptr) continue;
            for (const auto& term : classifier.value->terms()->term())
                terms[keyOf(classifier.key, term.key)] = shownOf(TestSupport::textOf(term.value));
        }
        return terms;
    }
    /// The state tree as a document of the model.
    std::string openConfigState() const {
        std::string text;
        JsonWriter writer(text, JsonWriter::Style::indented);
        writeOpenConfigState(writer, *state());
        return text;
    }
    static std::string keyOf(std::string_view classifier, std::string_view term) {
        return std::string(classifier) + '/' + std::string(term);
    }
    /// What of a term's text a reader of the model sees: containers that are empty are not there.
    static std::string shownOf(std::string text) {
        for (const char* empty : {" when -", " to ''"})
            if (const auto at = text.find(empty); at != std::string::npos)
                text.erase(at, std::string_view(empty).size());
        return text;
    }

private:
    template <class Root>
    Orin::Ptr<Root> root(std::string_view path) const {
        return Vex::entityCast<std::remove_const_t<Root>>(database.subtreeAt(path)->root);
    }

    Orin::Ptr<QosOc::ClassifierStateSm> machines_;
};

}  // namespace QosAgent
