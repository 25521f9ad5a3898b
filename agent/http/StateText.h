#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "agent/feed/StateMap.h"

namespace QosAgent::Http {

/// Writes a state as `print` `state` does, classifier by classifier, so that a reader who takes it
/// slowly costs no copy of it.
class StateText {
public:
    explicit StateText(StateMap state);

    /// Appends the next piece. Returns false if that was the last.
    bool next(std::string& out);
    std::size_t classifiers() const { return names_.size(); }

private:
    struct Name {
        std::string_view text;
        const StateMap::Entry* first;  ///< of the classifier's entries
    };

    void write(const Name& name, std::string& out) const;

    StateMap state_;
    std::vector<Name> names_;  ///< in byte order
    std::size_t at_ = 0;
};

/// How many classifiers the state holds. Takes time for each classifier, not for each term.
std::size_t classifiersOf(const StateMap& state);

}  // namespace QosAgent::Http
