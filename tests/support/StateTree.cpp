#include "tests/support/StateTree.h"

#include <algorithm>
#include <map>
#include <utility>

#include "platform/Vex/NamedEnum.h"

namespace TestSupport {
namespace {

using QosOc::Config::TermConditions;
using QosOc::Config::TermConditionsIpConfig;
using QosOc::State::Classifier;
using QosOc::State::ClassifiersDir;
using QosOc::State::Term;
using QosOc::State::Terms;

std::string text(const Orin::String& string) {
    return std::string(string.view());
}

std::string joined(const std::map<std::string, std::string>& items, const char* separator) {
    std::string all;
    for (const auto& [key, item] : items)
        all += (all.empty() ? "" : separator) + item;
    return all;
}

std::string textOf(const char* family, const TermConditionsIpConfig& conditions) {
    std::string values;
    if (conditions.dscp) values += " " + std::to_string(*conditions.dscp);
    std::string set;
    for (const unsigned value : conditions.dscpSet)
        set += (set.empty() ? "" : ", ") + std::to_string(value);
    if (!set.empty()) values += " [" + set + "]";
    return values.empty() ? "" : " " + (family + values);
}

std::string textOf(const TermConditions& conditions) {
    const std::string families = textOf("ipv4", conditions.ipv4) + textOf("ipv6", conditions.ipv6);
    return " when" + (families.empty() ? " -" : families);
}

std::string textOf(const Terms* terms) {
    if (terms == nullptr) return "";
    std::map<std::string, std::string> byId;
    for (const auto& member : terms->term())
        byId[text(member.key)] = (member.key == member.value.id ? "" : text(member.key) + "=") +
                                 TestSupport::textOf(member.value);
    return " {" + joined(byId, ", ") + "}";
}

std::string textOf(const Classifier& classifier) {
    const auto& state = classifier.state();
    const bool agrees = state.name == classifier.name();
    return text(classifier.name()) + (agrees ? "" : " (named " + text(state.name) + ")") + " " +
           Vex::enumText(state.type) + textOf(classifier.terms());
}

}  // namespace

std::string textOf(const Term& term) {
    std::string all = text(term.id);
    if (term.stateId != term.id) all += " (state " + text(term.stateId) + ")";
    if (term.conditions) all += textOf(*term.conditions);
    if (term.actions)
        all +=
            " to " + (term.actions->targetGroup.empty() ? "''" : text(term.actions->targetGroup));
    return all;
}

std::string textOf(const ClassifiersDir& root) {
    std::map<std::string, std::string> byName;
    for (const auto& member : root.classifier())
        byName[text(member.key)] =
            (member.key == member.value->name() ? "" : text(member.key) + "=") +
            textOf(*member.value);
    return joined(byName, "; ");
}

StateRecorder::StateRecorder(const Orin::Ptr<ClassifiersDir>& root) : root_(root) {
    watch(root_.get(), "", dispatchRoot);
    for (const auto& member : root_->classifier())
        watchClassifier(member.value.get());
}

// A record that is still in a list has a publisher that is still there.
StateRecorder::~StateRecorder() {
    for (Watch& watch : watches_)
        if (watch.record.isLinked()) watch.entity->publisher()->subscriberDel(watch.record);
}

std::vector<std::string> StateRecorder::take() {
    return std::exchange(changes_, {});
}

void StateRecorder::watch(const Vex::PublishingNode* entity, const std::string& classifier,
                          Orin::Dispatch dispatch) {
    const bool isWatched = std::any_of(watches_.begin(), watches_.end(), [entity](const Watch& w) {
        return w.entity == entity && w.record.isLinked();
    });
    if (entity == nullptr || isWatched) return;
    Watch& watch = watches_.emplace_back(Watch{this, entity, classifier, {}});
    watch.record.dispatch = dispatch;
    watch.record.owner = &watch;
    entity->publisher()->subscriberAdd(watch.record);
}

void StateRecorder::watchClassifier(const Classifier* classifier) {
    watch(classifier, text(classifier->name()), dispatchClassifier);
    watch(classifier->terms(), text(classifier->name()), dispatchTerms);
}

void StateRecorder::dispatchRoot(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                                 const void* key) noexcept {
    StateRecorder& self = *static_cast<Watch*>(record.owner)->recorder;
    const auto& name = *static_cast<const Orin::String*>(key);
    const Classifier* classifier = self.root_->classifier(name);
    self.changes_.push_back(text(name) + (classifier == nullptr ? " gone" : ""));
    if (classifier != nullptr) self.watchClassifier(classifier);
}

void StateRecorder::dispatchClassifier(Orin::Publisher&, Orin::Subscriber& record,
                                       Orin::AttributeId attributeId, const void*) noexcept {
    const auto& watch = *static_cast<Watch*>(record.owner);
    const auto& classifier = static_cast<const Classifier&>(*watch.entity);
    if (attributeId == Classifier::kState.id) {
        watch.recorder->changes_.push_back(watch.classifier + "/state " +
                                           Vex::enumText(classifier.state().type));
        return;
    }
    const bool isGone = classifier.terms() == nullptr;
    watch.recorder->changes_.push_back(watch.classifier + "/terms" + (isGone ? " gone" : ""));
    watch.recorder->watchClassifier(&classifier);
}

void StateRecorder::dispatchTerms(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                                  const void* key) noexcept {
    const auto& watch = *static_cast<Watch*>(record.owner);
    const auto& id = *static_cast<const Orin::String*>(key);
    const Term* term = static_cast<const Terms*>(watch.entity)->term().find(id);
    watch.recorder->changes_.push_back(
        watch.classifier + "/" +
        (term == nullptr ? text(id) + " gone" : TestSupport::textOf(*term)));
}

}  // namespace TestSupport
