#pragma once

#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/agent/support/TextDatabase.h"

/// What must hold whatever bytes come from outside.
namespace QosAgent {

/// Something does not hold.
class BrokenProperty : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

/// Throws `BrokenProperty` with these words unless it holds.
void require(bool holds, const std::string& words);

/// The text is one line that no terminal takes for several: it has no control character.
void requireLine(std::string_view line);
/// The fault has a place within the text, and makes one line.
void requireFault(const Fault& fault, std::string_view text);

/// What reads a text into a database, or refuses it.
using Load = std::function<std::optional<Fault>(std::string_view text)>;

/// The text is accepted, or refused by one line with its place and the database as it was. True if
/// it was accepted.
bool requireAllOrNothing(const TextDatabase& db, std::string_view text, const Load& load);

/// The database, printed in either style, reads back as the same.
void requireReadsBack(const TextDatabase& db);

}  // namespace QosAgent
