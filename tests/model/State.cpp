#include "tests/model/State.h"

#include <algorithm>

namespace Model {
namespace {

constexpr const char* kSource =
    "OpenConfigQosClfStateSm/8 QosOpenConfig/QosOpenConfigClassifierStateSm";

Point writer(const std::string& function, const std::string& arguments) {
    return {kSource, 0, function, "void QosOc::" + function + "(const Ptr&, " + arguments + ")"};
}

const Point kAddClassifier = writer("addClassifier", "const String&, QosOc::Classifier::Type");
const Point kDeleteClassifier = writer("deleteClassifier", "const String&");
const Point kAddTerm =
    writer("addClassifierTerm", "const String&, QosOc::Classifier::Type, const String&");
const Point kDeleteTerm = writer("deleteClassifierTerm", "const String&, const String&");
const Point kAddCondition = writer("addClassifierTermCondition",
                                   "const String&, QosOc::Classifier::Type, const String&, "
                                   "Orin::Vector<unsigned char>&");
const Point kNoRules = {kSource, 0, "addClassifierTermCondition", kAddCondition.signature,
                        ", no rules are defined, skipping"};
const Point kDeleteCondition =
    writer("deleteClassifierTermCondition", "const String&, const String&, bool");
const Point kAddAction =
    writer("addClassifierTermAction",
           "const String&, QosOc::Classifier::Type, const String&, const String&");
const Point kDeleteAction = writer("deleteClassifierTermAction", "const String&, const String&");

constexpr const char* kName = ", classifierName = ";
constexpr const char* kType = ", classifierType = ";
constexpr const char* kTermId = ", termId = ";

std::optional<std::array<Conditions, 2>> conditionsFrom(const Thing& term) {
    const Ref& given = term.one("conditions");
    if (!given) return {};
    std::array<Conditions, 2> conditions;
    for (const std::size_t family : {0u, 1u}) {
        const Thing& from = *given->one(family == 0 ? "ipv4" : "ipv6");
        Conditions& to = conditions[family];
        if (const Ref& dscp = from.one("dscp")) to.dscp = numberOf(dscp->text);
        const std::string& list = from.textOf("dscpSet");
        for (std::size_t at = 1; at + 1 < list.size(); at = list.find_first_of(",]", at) + 1)
            to.dscpSet.push_back(static_cast<unsigned>(std::stoul(list.substr(at))));
    }
    return conditions;
}

PublishedTerm termFrom(const Thing& term) {
    PublishedTerm published{term.textOf("id"), term.textOf("stateId"), conditionsFrom(term), {}};
    if (const Ref& actions = term.one("actions"))
        published.targetGroup = actions->textOf("targetGroup");
    return published;
}

Json documentOf(const Conditions& conditions) {
    Json json = Json::object();
    if (conditions.dscp) json.add("dscp", Json::plain(std::to_string(*conditions.dscp)));
    Json& list = json.add("dscpSet", Json::list());
    for (const unsigned value : conditions.dscpSet)
        list.add("", Json::plain(std::to_string(value)));
    return json;
}

Json documentOf(const PublishedTerm& term) {
    Json json = Json::object();
    json.add("stateId", Json::of(term.stateId));
    if (term.conditions) {
        Json& families = json.add("conditions", Json::object());
        families.add("ipv4", documentOf((*term.conditions)[0]));
        families.add("ipv6", documentOf((*term.conditions)[1]));
    }
    if (term.targetGroup)
        json.add("actions", Json::object()).add("targetGroup", Json::of(*term.targetGroup));
    return json;
}

}  // namespace

std::string nameOf(Family family) {
    return family == Family::ipv4 ? "IPV4" : "IPV6";
}

PublishedTerm* PublishedClassifier::term(const std::string& id) {
    if (!terms) return nullptr;
    const auto at = std::find_if(terms->begin(), terms->end(),
                                 [&](const PublishedTerm& term) { return term.id == id; });
    return at == terms->end() ? nullptr : &*at;
}

Published publishedFrom(const Thing& stateDir) {
    Published published;
    for (const Member& member : stateDir.members("classifier")) {
        const bool isIpv4 = member.thing->one("state")->textOf("type") == "IPV4";
        PublishedClassifier classifier{member.key, isIpv4 ? Family::ipv4 : Family::ipv6, {}};
        if (const Ref& terms = member.thing->one("terms")) {
            classifier.terms.emplace();
            for (const Member& term : terms->members("term"))
                classifier.terms->push_back(termFrom(*term.thing));
        }
        published.push_back(std::move(classifier));
    }
    return published;
}

Json documentOf(const Published& published) {
    Json document = Json::object();
    Json& classifiers = document.add("classifier", Json::object());
    for (const PublishedClassifier& classifier : published) {
        Json& json = classifiers.add(classifier.name, Json::object());
        json.add("state", Json::object()).add("type", Json::of(nameOf(classifier.type)));
        if (!classifier.terms) continue;
        Json& terms = json.add("terms", Json::object()).add("term", Json::object());
        for (const PublishedTerm& term : *classifier.terms)
            terms.add(term.id, documentOf(term));
    }
    return document;
}

std::string shown(const PublishedTerm& term) {
    return quoted(term.id) + " " + documentOf(term).written();
}

std::string shown(const Published& published) {
    std::string out;
    for (const PublishedClassifier& classifier : published) {
        out += quoted(classifier.name) + " " + nameOf(classifier.type) + "\n";
        if (!classifier.terms) continue;
        out += "  terms\n";
        for (const PublishedTerm& term : *classifier.terms)
            out += "    " + shown(term) + "\n";
    }
    return out;
}

PublishedClassifier* State::classifier(const std::string& name) {
    const auto at = std::find_if(published.begin(), published.end(),
                                 [&](const auto& each) { return each.name == name; });
    return at == published.end() ? nullptr : &*at;
}

PublishedTerm* State::term(const std::string& name, const std::string& id) {
    PublishedClassifier* const found = classifier(name);
    if (found == nullptr) {
        rule<"writer: the classifier is absent">();
        return nullptr;
    }
    if (!found->terms) {
        rule<"writer: the classifier has no terms">();
        return nullptr;
    }
    PublishedTerm* const term = found->term(id);
    if (term == nullptr) rule<"writer: the term is absent">();
    return term;
}

void State::addClassifier(const std::string& name, Family type) {
    trace_.line(kAddClassifier, kNobody, kName, name, kType, nameOf(type));
    if (PublishedClassifier* const held = classifier(name)) {
        if (held->type != type) rule<"addClassifier: the first writer's type stays">();
        if (wrong_ == Wrong::typeOfLastWriter) held->type = type;
        return;
    }
    rule<"addClassifier: a new classifier">();
    published.push_back({name, type, {}});
}

void State::deleteClassifier(const std::string& name) {
    trace_.line(kDeleteClassifier, kNobody, kName, name);
    const auto erased = std::erase_if(published, [&](const auto& c) { return c.name == name; });
    if (erased == 0) return rule<"deleteClassifier: absent">();
    rule<"deleteClassifier: with its terms">();
    deleted.push_back(name);
}

void State::addTerm(const std::string& name, Family type, const std::string& id) {
    trace_.line(kAddTerm, kNobody, kName, name, kType, nameOf(type), kTermId, id);
    addClassifier(name, type);
    PublishedClassifier& held = *classifier(name);
    if (!held.terms) held.terms.emplace();
    if (PublishedTerm* const term = held.term(id)) {
        if (term->conditions || term->targetGroup) rule<"addClassifierTerm: contents stay">();
        if (wrong_ == Wrong::readdedTermIsBare) *term = {id, id, {}, {}};
        return;
    }
    rule<"addClassifierTerm: a new term">();
    held.terms->push_back({id, id, {}, {}});
}

void State::deleteTerm(const std::string& name, const std::string& id) {
    trace_.line(kDeleteTerm, kNobody, kName, name, kTermId, id);
    PublishedClassifier* const held = classifier(name);
    if (held == nullptr) return rule<"deleteClassifierTerm: no classifier">();
    if (!held->terms) return rule<"deleteClassifierTerm: no terms">();
    const auto erased = std::erase_if(*held->terms, [&](const auto& t) { return t.id == id; });
    if (erased == 0) rule<"deleteClassifierTerm: absent">();
    deleted.push_back(name + '\n' + id);
    if (!held->terms->empty()) return rule<"deleteClassifierTerm: others stay">();
    rule<"deleteClassifierTerm: the terms go with the last">();
    held->terms.reset();
}

void State::addCondition(const std::string& name, Family type, const std::string& id,
                         const std::vector<unsigned>& values) {
    trace_.line(kAddCondition, kNobody, kName, name, kType, nameOf(type), kTermId, id);
    if (values.empty()) {
        trace_.line(kNoRules, kNobody, ", no rules are defined, skipping");
        if (wrong_ == Wrong::noDscpMeansNoConditions)
            if (PublishedTerm* const held = term(name, id)) held->conditions.reset();
        return;
    }
    addTerm(name, type, id);
    PublishedTerm& held = *classifier(name)->term(id);
    std::array<Conditions, 2> conditions;
    if (wrong_ == Wrong::conditionsKeepOtherFamily && held.conditions)
        conditions = *held.conditions;
    Conditions& slot = conditions[type == Family::ipv4 ? 0 : 1];
    slot = {};
    if (values.size() == 1) {
        rule<"addClassifierTermCondition: one value">();
        slot.dscp = values[0];
    } else {
        rule<"addClassifierTermCondition: several values">();
        slot.dscpSet = values;
    }
    if (classifier(name)->type != type)
        rule<"addClassifierTermCondition: the family is not the classifier's">();
    held.conditions = conditions;
}

void State::deleteCondition(const std::string& name, const std::string& id, bool removesContainer) {
    trace_.line(kDeleteCondition, kNobody, kName, name, kTermId, id);
    PublishedTerm* const held = term(name, id);
    if (held == nullptr) return;
    if (removesContainer) {
        rule<"deleteClassifierTermCondition: removed">();
        held->conditions.reset();
    } else {
        rule<"deleteClassifierTermCondition: emptied">();
        held->conditions.emplace();
    }
}

void State::addAction(const std::string& name, Family type, const std::string& id,
                      const std::string& targetGroup) {
    trace_.line(kAddAction, kNobody, kName, name, kType, nameOf(type), kTermId, id,
                ", targetGroup = ", targetGroup);
    addTerm(name, type, id);
    classifier(name)->term(id)->targetGroup = targetGroup;
}

void State::deleteAction(const std::string& name, const std::string& id) {
    trace_.line(kDeleteAction, kNobody, kName, name, kTermId, id);
    PublishedTerm* const held = term(name, id);
    if (held == nullptr) return;
    rule<"deleteClassifierTermAction: the container stays">();
    held->targetGroup = "";
    if (wrong_ == Wrong::clearedActionIsRemoved) held->targetGroup.reset();
}

}  // namespace Model
