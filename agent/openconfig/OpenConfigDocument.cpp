#include "agent/openconfig/OpenConfigDocument.h"

namespace QosAgent {

std::vector<std::uint8_t> ConfiguredTerm::dscpValues() const {
    std::vector<std::uint8_t> values;
    if (conditions.dscp) values.push_back(*conditions.dscp);
    for (const std::uint8_t value : conditions.dscpSet)
        if (value != conditions.dscp) values.push_back(value);
    return values;
}

std::optional<TermOfClassifier> termOf(const OpenConfigDocument& document,
                                       const Orin::String& classifierName,
                                       const Orin::String& termId) {
    const ConfiguredClassifier* classifier = document.classifiers.find(classifierName);
    if (classifier == nullptr) return {};
    const ConfiguredTerm* term = classifier->terms.find(termId);
    if (term == nullptr) return {};
    return TermOfClassifier{classifier, term};
}

}  // namespace QosAgent
