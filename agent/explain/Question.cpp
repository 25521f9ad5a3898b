#include "agent/explain/Question.h"

#include "agent/database/Path.h"
#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"

namespace QosAgent {
namespace {

constexpr std::string_view kEmptyName = "an empty name";
constexpr std::string_view kMembers[] = {"classifier", "term"};

std::string nameFault(std::string_view part) {
    if (part.empty()) return std::string(kEmptyName);
    return "'~' in the name " + excerpt(part) + " begins neither '~0' nor '~1'";
}

}  // namespace

std::variant<Question, Fault> questionFrom(const JsonValue& operand) {
    if (!operand.is(JsonKind::object))
        return Fault{operand.offset(), unexpected("an object", operand.kind())};
    Question question;
    for (const JsonMember& member : operand.members()) {
        const bool isTerm = member.key == kMembers[1];
        if (!isTerm && member.key != kMembers[0])
            return Fault{member.keyOffset, "unknown member " + excerpt(member.key) +
                                               suggestion(member.key, kMembers)};
        if (!member.value.is(JsonKind::string))
            return Fault{member.value.offset(), unexpected("a string", member.value.kind())};
        if (member.value.text().empty())
            return Fault{member.value.offset(), std::string(kEmptyName)};
        (isTerm ? question.term.emplace() : question.classifier) = member.value.text();
    }
    if (question.classifier.empty()) return Fault{operand.offset(), "no classifier to explain"};
    return question;
}

std::variant<Question, QuestionFault> questionFrom(std::string_view text) {
    const std::size_t slash = text.find('/');
    const std::string_view classifierPart = text.substr(0, slash);
    auto classifier = keyFromStep(classifierPart);
    if (!classifier || classifier->empty()) return QuestionFault{nameFault(classifierPart)};
    Question question{*std::move(classifier), {}};
    if (slash == std::string_view::npos) return question;
    const std::string_view termPart = text.substr(slash + 1);
    if (termPart.find('/') != std::string_view::npos)
        return QuestionFault{"expected CLASSIFIER or CLASSIFIER/TERM, found " + excerpt(text)};
    question.term = keyFromStep(termPart);
    if (!question.term || question.term->empty()) return QuestionFault{nameFault(termPart)};
    return question;
}

}  // namespace QosAgent
