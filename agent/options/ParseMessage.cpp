#include "agent/options/ParseMessage.h"

#include <string_view>
#include <vector>

#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"

namespace QosAgent {
namespace {

std::string unknownOption(const CLI::App& app, const std::string& given) {
    std::vector<std::string> names;
    for (const CLI::Option* option : app.get_options())
        for (const std::string& name : option->get_lnames())
            names.push_back("--" + name);
    const std::string name = given.substr(0, given.find('='));
    return "unknown option " + excerpt(name) +
           suggestion(name, std::vector<std::string_view>(names.begin(), names.end()));
}

/// The message for an option with too few or too many values. The library names a flag without its
/// dashes.
std::string wrongCount(const CLI::App& app, const std::string& name) {
    if (!name.starts_with("--")) return excerpt("--" + name) + " takes no value";
    const CLI::Option* option = app.get_option(name);
    if (option->results().size() > 1) return excerpt(name) + " is given more than once";
    const std::string value = option->get_type_name();
    const bool beginsWithVowel = std::string_view("AEIOU").find(value.front()) != std::string::npos;
    return excerpt(name) + (beginsWithVowel ? " needs an " : " needs a ") + value;
}

}  // namespace

std::string messageOf(const CLI::ParseError& refused, const CLI::App& app) {
    // It begins with the option's name.
    const std::string account = refused.what();
    const std::string remaining = app.remaining().empty() ? "" : app.remaining().front();
    if (dynamic_cast<const CLI::ExtrasError*>(&refused) != nullptr)
        return unknownOption(app, remaining);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&refused) != nullptr)
        return wrongCount(app, account.substr(0, account.find_first_of(": ")));
    return account;
}

}  // namespace QosAgent
