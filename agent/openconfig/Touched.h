#pragma once

#include <set>
#include <string_view>
#include <utility>

#include "agent/database/InputChanges.h"
#include "agent/openconfig/OpenConfigDocument.h"

namespace QosAgent {

/// What of the inputs others changed since the configuration was applied last, as far as it
/// concerns what the configuration describes: this must be compared again, whether the
/// configuration changes there or not.
class Touched final : public InputChanges::Listener {
public:
    void inputChanged(InputChanges::Kind kind, std::string_view path) override;
    void clear() { *this = Touched(); }

    /// Too much to tell apart: everything must be compared.
    bool isAll() const { return isAll_; }
    const std::set<Orin::String>& groups() const { return groups_; }
    const std::set<Orin::String>& pairs() const { return pairs_; }
    const std::set<Orin::String>& classifiers() const { return classifiers_; }
    /// By the names of classifier and term.
    using TermName = std::pair<Orin::String, Orin::String>;
    const std::set<TermName>& terms() const { return terms_; }

private:
    void noteTermObject(std::string_view name);
    void noteClassifier(std::string_view rest);

    bool isAll_ = false;
    std::set<Orin::String> groups_, pairs_, classifiers_;
    std::set<TermName> terms_;
};

}  // namespace QosAgent
