#pragma once

#include <chrono>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>

#include "agent/json/Json.h"
#include "platform/Orin/TextHash.h"

namespace QosAgent {

/// Formats followed changes for people, each as one short line: the time, the classifier, the term,
/// the old and the new value.
///
///     12:31:05.123Z edge: absent -> IPV4
///     12:31:05.124Z edge voice: dscp 46(EF) -> dscp 46(EF), group gold
///
/// Reads nothing but change-stream lines, so that a client of another agent can use it too. Keeps
/// what it has read of the state, to know what was there.
class ChangeText {
public:
    using Time = std::chrono::system_clock::time_point;

    /// Sets the initial state: the state tree as `print` `state` writes it.
    void stateIs(const JsonValue& state);

    /// Returns the text of a change, an `update` or `delete` as `--follow=json` writes it. A line
    /// of any other kind, such as the answer to a `print`, is returned as it is.
    std::string textOf(std::string_view line, Time now);

private:
    struct Classifier {
        std::string type;                          ///< empty: none was published yet
        std::map<std::string, std::string> terms;  ///< what each holds, in words
    };
    /// The place of a change, below the state tree. Names are those of the database.
    struct Place {
        std::string classifier;
        bool isTerms = false;
        std::string term;  ///< empty: the classifier, or all of its terms
    };

    static bool placeOf(std::string_view path, Place& place);
    std::string updated(const Place& place, const JsonValue& value);
    std::string removed(const Place& place);

    std::unordered_map<std::string, Classifier, Orin::TextHash> classifiers_;
};

}  // namespace QosAgent
