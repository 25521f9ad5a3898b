#include "platform/QosOc/ClassifierMetaData.h"

namespace QosOc {

bool TermActionInfo::isEq(const void* a, const void* b) {
    return *static_cast<const TermActionInfo*>(a) == *static_cast<const TermActionInfo*>(b);
}

ClassifierMetaData::~ClassifierMetaData() = default;

ClassifierInfo& ClassifierMetaData::newClassifierInfo(const Orin::String& classifierName) {
    return *classifierInfo_.is(std::make_unique<ClassifierInfo>(classifierName));
}

}  // namespace QosOc
