#pragma once

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/Trace.h"
#include "platform/Orin/String.h"

namespace QosOc {

/// The names of a policy map's classifiers; either may be empty, and both may be the same.
struct OwnNames {
    const Orin::String& ipv4;
    const Orin::String& ipv6;

    bool contain(const Orin::String& name) const noexcept { return name == ipv4 || name == ipv6; }
};

/// Walks a collection of classifiers. Calls `visit` with each classifier of the policy map, and
/// `pass` with the name of each other classifier.
///
/// `pass` must only trace. While the trace is off, this function looks the two own classifiers up
/// instead, so that the cost does not depend on the number of other classifiers. It visits them in
/// the order of the walk, and only if they are still present, as the walk would.
template <class Classifiers, class Visit, class Pass>
void visitOwn(const Classifiers& classifiers, const OwnNames& own, Visit visit, Pass pass) {
    if (traceEnabled()) {
        for (const auto& member : classifiers)
            if (own.contain(member.key))
                visit(member.value);
            else
                pass(member.key);
        return;
    }
    const auto* ipv4 = classifiers.find(own.ipv4);
    const auto* ipv6 = own.ipv6 == own.ipv4 ? nullptr : classifiers.find(own.ipv6);
    if (ipv4 == nullptr || ipv6 == nullptr) {
        if (const auto* only = ipv4 == nullptr ? ipv6 : ipv4) visit(*only);
        return;
    }
    const bool isIpv6First = classifiers.isBefore(own.ipv6, own.ipv4);
    const auto second = isIpv6First ? *ipv4 : *ipv6;
    visit(isIpv6First ? *ipv6 : *ipv4);
    const auto* held = classifiers.find(second->name());
    if (held != nullptr && *held == second) visit(second);
}

}  // namespace QosOc
