#pragma once

#include "agent/openconfig/OpenConfigDocument.h"

namespace QosAgent {

/// Two documents, one of which takes the place of the other.
struct Difference {
    const OpenConfigDocument& earlier;
    const OpenConfigDocument& later;
};

/// The same term in another document; nothing if it has none.
inline std::optional<TermOfClassifier> counterpart(const OpenConfigDocument& document,
                                                   const TermOfClassifier& of) {
    return termOf(document, of.classifier->name, of.term->id);
}

/// Calls `visit` with each term of a document, in its order.
template <class Visit>
void eachTerm(const OpenConfigDocument& document, Visit visit) {
    for (const ConfiguredClassifier& classifier : document.classifiers)
        for (const ConfiguredTerm& term : classifier.terms)
            visit(TermOfClassifier{&classifier, &term});
}

/// Calls `visit` with each term of the classifiers of a pair, IPv4 first.
template <class Visit>
void eachTermOf(const OpenConfigDocument& document, const AttachedPair& pair, Visit visit) {
    for (const Orin::String& name : {pair.ipv4ClassifierName, pair.ipv6ClassifierName}) {
        const ConfiguredClassifier* classifier = document.classifiers.find(name);
        if (classifier == nullptr) continue;
        for (const ConfiguredTerm& term : classifier->terms)
            visit(TermOfClassifier{classifier, &term});
    }
}

}  // namespace QosAgent
