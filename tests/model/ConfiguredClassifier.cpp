#include "tests/model/ConfiguredClassifier.h"

namespace Model {
namespace {

constexpr const char* kSource =
    "OpenConfigQosClfStateSm/8 QosOpenConfig/QosOpenConfigClassifierStateSm";

constexpr const char* kUpdateAction =
    "void QosOc::ClassifierTermsSm::updateClassifierTermActionStatePath(const String&, const "
    "String&)";

const Point kInit{kSource, 0, "handleInitialized",
                  "void QosOc::ClassifierConfigSm::handleInitialized()"};
const Point kTerms{kSource, 0, "handleClassifierTerms",
                   "void QosOc::ClassifierConfigSm::handleClassifierTerms()"};
const Point kDie{kSource, 0, "doPrepareToDie", "void QosOc::ClassifierConfigSm::doPrepareToDie()"};
const Point kTermsInit{kSource, 0, "handleInitialized",
                       "void QosOc::ClassifierTermsSm::handleInitialized()"};
const Point kTerm{kSource, 0, "handleClassifierTerm",
                  "void QosOc::ClassifierTermsSm::handleClassifierTerm(const String&)"};
const Point kAction{kSource, 0, "updateClassifierTermActionStatePath", kUpdateAction};
const Point kSkip{kSource, 0, "updateClassifierTermActionStatePath", kUpdateAction, ": skipped"};
const Point kTermsDie{kSource, 0, "doPrepareToDie",
                      "void QosOc::ClassifierTermsSm::doPrepareToDie()"};

constexpr const char* kName = ", classifierName = ";
constexpr const char* kType = ", classifierType = ";

}  // namespace

void ConfiguredClassifier::start() {
    id_ = context_.nextId();
    context_.trace.line(kInit, id_, kName, name_);
    handleTerms();
}

void ConfiguredClassifier::changed(const Thing& entity, std::string_view attribute,
                                   const std::string& key) {
    if (terms_ && &entity == terms_->terms.get()) return handleTerm(key);
    if (&entity != classifier_.get()) return;
    if (attribute == "terms") return handleTerms();
    rule<"configured classifier: its config is not watched">();
    if (context_.wrong == Wrong::changedTypeIsSeenAtOnce) handleTerms();
}

void ConfiguredClassifier::handleTerms() {
    context_.trace.line(kTerms, id_, kName, name_);
    const Ref& terms = classifier_->one("terms");
    if (!terms) {
        if (terms_) return dieTerms();
        return rule<"configured terms: neither there nor known">();
    }
    const Ref& given = classifier_->one("config")->one("type");
    if (!given) rule<"configured classifier: no type is IPv4">();
    const Family type = given && given->text == "IPV6" ? Family::ipv6 : Family::ipv4;
    if (terms_ && terms_->terms == terms && terms_->type == type)
        return rule<"configured terms: kept">();
    if (terms_ && terms_->terms == terms) rule<"configured terms: made anew for another type">();
    if (terms_ && terms_->terms != terms) rule<"configured terms: replaced, not cleaned up">();
    terms_ = Terms{context_.nextId(), terms, type};
    context_.trace.line(kTermsInit, terms_->id, kName, name_, kType, nameOf(type));
    for (const Member& term : terms->members("term"))
        handleTerm(term.key);
}

void ConfiguredClassifier::handleTerm(const std::string& id) {
    context_.trace.line(kTerm, terms_->id, kName, name_, kType, nameOf(terms_->type),
                        ", termId = ", id);
    const Ref term = terms_->terms->member("term", id);
    const Ref actions = term ? term->one("actions") : nullptr;
    if (term && !actions) rule<"configured term: no actions">();
    updateAction(id, actions ? actions->textOf("targetGroup") : std::string());
}

void ConfiguredClassifier::updateAction(const std::string& id, const std::string& targetGroup) {
    const std::string type = nameOf(terms_->type);
    context_.trace.line(kAction, terms_->id, kName, name_, kType, type, ", termId = ", id,
                        ", targetGroup = ", targetGroup);
    const bool isUsed = context_.registry.contains({name_, terms_->type});
    if (isUsed && context_.wrong != Wrong::configurationIgnoresPolicyMaps)
        return context_.trace.line(kSkip, terms_->id, " classifier : ", name_, " (", type,
                                   ") is a part of pmap(s), skipping");
    if (targetGroup.empty())
        context_.state.deleteAction(name_, id);
    else
        context_.state.addAction(name_, terms_->type, id, targetGroup);
}

void ConfiguredClassifier::dieTerms() {
    context_.trace.line(kTermsDie, terms_->id, kName, name_, kType, nameOf(terms_->type));
    for (const Member& term : terms_->terms->members("term"))
        updateAction(term.key, "");
    terms_.reset();
}

void ConfiguredClassifier::die() {
    context_.trace.line(kDie, id_, kName, name_);
    if (terms_) dieTerms();
}

}  // namespace Model
