#include "agent/database/Interner.h"

#include <utility>

namespace QosAgent {

Orin::String Interner::operator()(std::string_view text) {
    if (const auto at = young_.find(text); at != young_.end()) return *at;
    if (young_.size() >= kGeneration) old_ = std::exchange(young_, {});
    const auto at = old_.find(text);
    return *young_.insert(at == old_.end() ? Orin::String::shared(text) : *at).first;
}

}  // namespace QosAgent
