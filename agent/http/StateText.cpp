#include "agent/http/StateText.h"

#include <algorithm>
#include <utility>

#include "agent/json/JsonWriter.h"

namespace QosAgent::Http {
namespace {

constexpr std::string_view kRoot = "classifier/";

/// `classifier/C/`: where all entries of a classifier begin.
std::string_view prefixOf(std::string_view path) {
    return path.substr(0, path.find('/', kRoot.size()) + 1);
}

/// The first entry of the next classifier; null if there is none.
const StateMap::Entry* nextClassifier(const StateMap& state, const StateMap::Entry& entry) {
    std::string behind(prefixOf(entry.path));
    ++behind.back();
    return state.firstFrom(behind);
}

struct Term {
    std::string_view id;
    std::string_view json;
};

}  // namespace

StateText::StateText(StateMap state) : state_(std::move(state)) {
    for (const auto* entry = state_.firstFrom(""); entry != nullptr;
         entry = nextClassifier(state_, *entry))
        names_.push_back({entry->value->classifier, entry});
    std::ranges::sort(names_, {}, &Name::text);
}

bool StateText::next(std::string& out) {
    out += at_ == 0 ? '{' : ',';
    if (names_.empty()) {
        out += '}';
        return false;
    }
    if (at_ == 0) out += "\"classifier\":{";
    write(names_[at_++], out);
    if (at_ < names_.size()) return true;
    out += "}}";
    return false;
}

void StateText::write(const Name& name, std::string& out) const {
    const std::string_view prefix = prefixOf(name.first->path);
    std::string_view state;
    std::vector<Term> terms;
    appendQuoted(out, name.text);
    out += ":{";
    for (const auto* entry = name.first; entry != nullptr && entry->path.starts_with(prefix);
         entry = state_.firstAfter(entry->path)) {
        const StateValue& value = *entry->value;
        if (value.term)
            terms.push_back({value.term->id, value.json});
        else
            state = value.json;
    }
    if (!state.empty()) out.append("\"state\":").append(state);
    std::ranges::sort(terms, {}, &Term::id);
    const char* before = state.empty() ? "\"terms\":{\"term\":{" : ",\"terms\":{\"term\":{";
    for (const Term& term : terms) {
        appendQuoted(out.append(before), term.id);
        out.append(":").append(term.json);
        before = ",";
    }
    out += terms.empty() ? "}" : "}}}";
}

std::size_t classifiersOf(const StateMap& state) {
    std::size_t count = 0;
    for (const auto* entry = state.firstFrom(""); entry != nullptr;
         entry = nextClassifier(state, *entry))
        ++count;
    return count;
}

}  // namespace QosAgent::Http
