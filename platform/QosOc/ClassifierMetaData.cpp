#include "platform/QosOc/ClassifierMetaData.h"

namespace QosOc {

bool TermActionInfo::isEq(const void* a, const void* b) {
    return *static_cast<const TermActionInfo*>(a) == *static_cast<const TermActionInfo*>(b);
}

void ClassifierInfo::termActionInfoIs(const TermActionInfo& info) {
    if (TermActionInfo* held = termActionInfo_.find(info.termId))
        *held = info;
    else
        termActionInfo_.enter(info.termId, info);
}

ClassifierInfo& ClassifierMetaData::classifierInfoIs(const Orin::String& classifierName) {
    if (auto* held = classifierInfo_.find(classifierName)) return **held;
    const auto made = Orin::Ptr<ClassifierInfo>::adopt(new ClassifierInfo);
    return *classifierInfo_.enter(classifierName, made).value;
}

const ClassifierInfo* ClassifierMetaData::classifierInfo(
    const Orin::String& classifierName) const noexcept {
    const auto* held = classifierInfo_.find(classifierName);
    return held == nullptr ? nullptr : held->get();
}

}  // namespace QosOc
