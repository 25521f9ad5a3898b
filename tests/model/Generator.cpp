#include <algorithm>

#include "tests/model/Names.h"
#include "tests/model/Story.h"

namespace Model {
namespace {

using namespace std::string_literals;
using Texts = std::vector<std::string>;

const Texts kClassifiers{"voice", "video",         "voice2", "Z",    "a:b",         "100%",
                         "x/y~z", "\xC3\xA9",      "q\"\\",  "t\tb", "nul\0after"s, "del\x7f",
                         "%3A",   "class-default", " ",      "a\nb", "openconfig"};
const Texts kTerms{"10", "20", "t:1", "%", "5~/", "nul\0"s, "rest"};
const Texts kGroups{"gold", "silver", "bronze", "Gold", "g:%/~", "tab\t"};

const Texts kOtherMapTypes{"mapCopp", "mapPbr", "7"};
const Texts kAclTypes{"ipv4", "ipv6"};
const Texts kOtherAclTypes{"mac", "9"};
const Texts kMatches{"matchIpAccessGroup",
                     "matchIpv6AccessGroup",
                     "matchIpAccessGroup",
                     "matchIpv6AccessGroup",
                     "matchDscp",
                     "matchVlan",
                     "40"};
const Texts kActions{"4", "4", "4", "1", "4294967295"};
const Texts kSequences{"10", "20", "5", "100"};
const Texts kRuleIds{"1", "2", "18446744073709551615"};

}  // namespace

void Generator::newPool() {
    const auto some = [this](const Texts& from, std::size_t least, std::size_t most) {
        Texts texts = from;
        std::shuffle(texts.begin(), texts.end(), random_);
        texts.resize(least + below(most - least + 1));
        return texts;
    };
    classifiers_ = some(kClassifiers, 1, 3);
    terms_ = some(kTerms, 1, 3);
    groups_ = some(kGroups, 1, 3);
}

std::string Generator::objectName() {
    const std::string &classifier = any(classifiers_), &term = any(terms_);
    switch (below(24)) {
        case 0:
            return "openconfig:" + classifier;
        case 1:
            return madeOf(classifier, term) + ":x";
        case 2:
            return madeOf("", term);
        case 3:
            return "openconfig:%3a:" + term;
        default:
            return madeOf(classifier, term);
    }
}

std::string Generator::keyFor(std::string_view collection) {
    if (collection.ends_with("TypeStatus")) return once(16) ? any(kOtherMapTypes) : "mapQos";
    if (collection == "aclTypeConfig") return any(once(16) ? kOtherAclTypes : kAclTypes);
    if (collection == "cmapStatus" && once(3)) return once(6) ? "class-default" : any(classifiers_);
    if (collection == "aclConfig" && once(12)) return any(classifiers_);
    if (collection == "cmapStatus" || collection == "classes" || collection == "aclConfig")
        return objectName();
    if (collection == "pmapStatus") {
        if (once(12)) return once(2) ? any(classifiers_) : objectName() + ":";
        return madeOf(once(5) ? "" : any(classifiers_), once(4) ? "" : any(classifiers_));
    }
    if (collection == "classifier") return any(classifiers_);
    if (collection == "term") return any(terms_);
    if (collection == "tc") return any(groups_);
    if (collection == "match") return any(kMatches);
    if (collection == "action") return any(kActions);
    return any(collection == "ruleIdBySequence" ? kSequences : kRuleIds);
}

Json Generator::plainValue(const Type& type, std::string_view name) {
    static const Texts kDscps{"46", "10", "10", "63", "255"};
    static const Texts kTrafficClasses{"184", "185", "40", "255"};
    static const Texts kMasks{"252", "255", "253", "254", "240", "3"};
    static const Texts kFamilies{"IPV4", "IPV6"};
    if (type.zero == "IPV4") return Json::of(any(kFamilies));
    if (type.zero == "false") return Json::plain(once(4) ? "false" : "true");
    if (name == "targetGroup") return Json::of(once(6) ? "" : any(groups_));
    if (name == "match") return Json::of(once(4) ? "" : objectName());
    if (type.zero.empty()) return Json::of(any(terms_));
    if (type.zero == "[]") {
        Json list = Json::list();
        for (std::size_t i = below(4); i > 0; --i)
            list.add("", Json::plain(any(kDscps)));
        return list;
    }
    if (name == "ruleIdBySequence") return Json::plain(any(kRuleIds));
    if (name == "trafficClass") return Json::plain(any(kTrafficClasses));
    if (name == "trafficClassMask") return Json::plain(any(kMasks));
    if (name.starts_with("dscp")) return Json::plain(any(kDscps));
    return Json::plain(once(20) ? "4294967295" : std::to_string(below(4)));
}

Json Generator::nullOr(const Attribute& attribute) {
    if (attribute.isOptional && once(8)) return Json::null();
    return valueOf(*attribute.type, attribute.name);
}

Json Generator::membersOf(const Attribute& attribute) {
    Json members = Json::object();
    // Rules come in numbers, so that sequences find theirs.
    const bool areRules = attribute.name.ends_with("ById");
    const std::size_t most = areRules ? 6 : attribute.name == "match" ? 3 : 4;
    for (std::size_t i = below(most); i > 0; --i) {
        const std::string key = keyFor(attribute.name);
        if (members.find(key) == nullptr) members.add(key, nullOr(attribute));
    }
    return members;
}

Json Generator::valueOf(const Type& type, std::string_view name) {
    if (type.shape == Type::Shape::plain) return plainValue(type, name);
    Json value = Json::object();
    for (const Attribute& attribute : type.attributes) {
        if (attribute.isKey || once(4) || (attribute.copiesKey && !once(8))) continue;
        const bool isKeyed = attribute.keyed != Keyed::no;
        value.add(std::string(attribute.name), isKeyed ? membersOf(attribute) : nullOr(attribute));
    }
    std::shuffle(value.members.begin(), value.members.end(), random_);
    return value;
}

Change Generator::pathTo(Change::Verb verb) {
    static const std::vector<const Mount*> kMounts{
        &kQosStatus, &kQosStatus, &kQosStatus,        &kQosStatus,       &kQosInput,
        &kAclInput,  &kAclInput,  &kClassifierConfig, &kClassifierConfig};
    const Mount& mount = *kMounts[below(kMounts.size())];
    Change change{verb, {std::string(mount.path)}, {}};
    const Type* type = mount.type;
    if (change.hasValue() && once(60)) {
        change.value = valueOf(*type, "");
        return change;
    }
    for (;;) {
        const Attribute& attribute = type->attributes[below(type->attributes.size())];
        const bool isKeyed = attribute.keyed != Keyed::no;
        change.path.emplace_back(attribute.name);
        if (isKeyed && change.hasValue() && once(16)) {
            change.value = membersOf(attribute);
            return change;
        }
        if (isKeyed) change.path.push_back(keyFor(attribute.name));
        const bool isPlain = attribute.type->shape == Type::Shape::plain;
        const bool isFixed = !isKeyed && !attribute.isOptional;
        const std::size_t shallow = attribute.name.find("Type") != std::string_view::npos ? 12 : 3;
        if (isPlain || once(shallow)) {
            if (attribute.isKey || (isFixed && !change.hasValue() && !isTouchable(verb, attribute)))
                return pathTo(verb);
            if (change.hasValue()) change.value = nullOr(attribute);
            return change;
        }
        type = attribute.type;
    }
}

bool Generator::isTouchable(Change::Verb verb, const Attribute& attribute) {
    return verb == Change::Verb::touch && attribute.type->shape == Type::Shape::record;
}

Change Generator::change() {
    using Verb = Change::Verb;
    static const std::vector<Verb> kVerbs{Verb::update,  Verb::update,  Verb::update, Verb::update,
                                          Verb::replace, Verb::replace, Verb::remove, Verb::remove,
                                          Verb::touch,   Verb::touch};
    if (once(20)) return {Verb::restart, {}, {}};
    return pathTo(kVerbs[below(kVerbs.size())]);
}

Story Generator::story(std::size_t mostLines) {
    newPool();
    Story story;
    story.isTraced = !once(5);
    std::vector<Mount> mounts = kInputs;
    mounts.push_back(kClassifierState);
    std::shuffle(mounts.begin(), mounts.end(), random_);
    for (const Mount& mount : mounts)
        if (!once(4)) story.document.add(std::string(mount.path), valueOf(*mount.type, ""));
    for (std::size_t i = 1 + below(mostLines); i > 0; --i)
        story.lines.push_back(change());
    for (std::size_t i = below(4); i > 0; --i) {
        Change last = change();
        if (last.verb != Change::Verb::restart) story.afterlife.push_back(std::move(last));
    }
    return story;
}

}  // namespace Model
