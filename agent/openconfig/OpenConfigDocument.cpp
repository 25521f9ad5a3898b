#include "agent/openconfig/OpenConfigDocument.h"

#include <string>
#include <utility>

namespace QosAgent {
namespace {

template <class User>
void addUser(KeyedList<Users<User>>& all, const Orin::String& name, User user) {
    const Users<User>* held = all.find(name);
    Users<User> users = held == nullptr ? Users<User>{name, {}} : *held;
    users.users.set(std::move(user));
    all.set(std::move(users));
}

/// True if that was the last.
template <class User>
bool eraseUser(KeyedList<Users<User>>& all, const Orin::String& name, const Orin::String& user) {
    const Users<User>* held = all.find(name);
    if (held == nullptr) return false;
    Users<User> users = *held;
    users.users.erase(user);
    if (!users.users.empty()) {
        all.set(std::move(users));
        return false;
    }
    all.erase(name);
    return true;
}

/// Texts in the order of their numbers.
Orin::String placeText(std::uint64_t order) {
    std::string text(sizeof order, '\0');
    for (std::size_t i = 0; i < text.size(); ++i)
        text[i] = static_cast<char>(order >> 8 * (text.size() - 1 - i));
    return Orin::String(text);
}

}  // namespace

std::vector<std::uint8_t> ConfiguredTerm::dscpValues() const {
    std::vector<std::uint8_t> values;
    if (conditions.dscp) values.push_back(*conditions.dscp);
    for (const std::uint8_t value : conditions.dscpSet)
        if (value != conditions.dscp) values.push_back(value);
    return values;
}

void OpenConfigDocument::setTerm(ConfiguredClassifier& classifier, ConfiguredTerm term,
                                 std::uint64_t order) {
    const ConfiguredTerm* held = classifier.terms.find(term.id);
    const Orin::String before = held == nullptr ? Orin::String() : held->targetGroup;
    if (before != term.targetGroup) {
        if (!before.empty()) eraseUser(termsOfGroup, before, term.objName);
        if (!term.targetGroup.empty()) addUser(termsOfGroup, term.targetGroup, Named{term.objName});
    }
    classifier.terms.set(std::move(term), order);
}

void OpenConfigDocument::eraseTerm(ConfiguredClassifier& classifier, const Orin::String& id) {
    const ConfiguredTerm* held = classifier.terms.find(id);
    if (held == nullptr) return;
    if (!held->targetGroup.empty()) eraseUser(termsOfGroup, held->targetGroup, held->objName);
    classifier.terms.erase(id);
}

void OpenConfigDocument::eraseClassifier(const Orin::String& name) {
    otherClassifiers.erase(name);
    const ConfiguredClassifier* held = classifiers.find(name);
    if (held == nullptr) return;
    for (const auto& term : held->terms.inOrder())
        if (!term->targetGroup.empty()) eraseUser(termsOfGroup, term->targetGroup, term->objName);
    classifiers.erase(name);
}

void OpenConfigDocument::setInterface(ConfiguredInterface interface, std::uint64_t order) {
    if (const ConfiguredInterface* held = interfaces.find(interface.id))
        detach(ConfiguredInterface(*held));
    interfaces.set(interface, order);
    attach(interface);
}

void OpenConfigDocument::eraseInterface(const Orin::String& id) {
    const ConfiguredInterface* held = interfaces.find(id);
    if (held == nullptr) return;
    detach(ConfiguredInterface(*held));
    interfaces.erase(id);
}

void OpenConfigDocument::attach(const ConfiguredInterface& interface) {
    const AttachedPair& pair = interface.pair;
    if (pair.empty()) return;
    addUser(placesOfPair, pair.pmapName, Named{placeText(interfaces.orderOf(interface.id))});
    if (!attachedPairs.add(pair)) return;
    for (const Orin::String& name : {pair.ipv4ClassifierName, pair.ipv6ClassifierName})
        if (!name.empty()) addUser(pairsOfClassifier, name, pair);
}

void OpenConfigDocument::detach(const ConfiguredInterface& interface) {
    const AttachedPair& pair = interface.pair;
    const Orin::String place = placeText(interfaces.orderOf(interface.id));
    if (pair.empty() || !eraseUser(placesOfPair, pair.pmapName, place)) return;
    attachedPairs.erase(pair.pmapName);
    for (const Orin::String& name : {pair.ipv4ClassifierName, pair.ipv6ClassifierName})
        if (!name.empty()) eraseUser(pairsOfClassifier, name, pair.pmapName);
}

Orin::String OpenConfigDocument::placeOf(const AttachedPair& pair) const {
    const Users<Named>* places = placesOfPair.find(pair.pmapName);
    return places == nullptr ? Orin::String() : places->users.first()->name;
}

std::optional<TermOfClassifier> termOf(const OpenConfigDocument& document,
                                       const Orin::String& classifierName,
                                       const Orin::String& termId) {
    const ConfiguredClassifier* classifier = document.classifiers.find(classifierName);
    if (classifier == nullptr) return {};
    const ConfiguredTerm* term = classifier->terms.find(termId);
    if (term == nullptr) return {};
    return TermOfClassifier{classifier, term};
}

}  // namespace QosAgent
