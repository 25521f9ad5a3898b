#include "agent/feed/PolicyMapNames.h"

#include "platform/QosOc/Naming.h"

namespace QosAgent {

bool PolicyMapNames::containsOfPair(std::string_view ipv4Classifier,
                                    std::string_view ipv6Classifier) const {
    return contains(QosOc::pmapName(ipv4Classifier, ipv6Classifier));
}

void PolicyMapNames::insert(std::string name) {
    if (contains(name)) return;
    names_.set(std::make_shared<const Name>(Name{std::move(name)}));
    ++version_;
}

void PolicyMapNames::erase(std::string_view name) {
    if (!contains(name)) return;
    names_.erase(name);
    ++version_;
}

}  // namespace QosAgent
