#pragma once

#include "platform/Orin/Export.h"
#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Vex/HashMap2018.h"

namespace QosOc {

/// The action that a policy map gives to one term.
struct PLATFORM_API TermActionInfo {
    Orin::String termId;
    Orin::String classifierName;
    Orin::String targetGroup;  ///< empty: none

    /// Compares two `TermActionInfo`s.
    static bool isEq(const void* a, const void* b);
    friend bool operator==(const TermActionInfo&, const TermActionInfo&) = default;
};

/// What a policy map says of one classifier.
class PLATFORM_API ClassifierInfo : public Orin::Node, public OvSlab::Slabbed<ClassifierInfo> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierInfo";

    /// Records the action under its term id, in place of an earlier one.
    void termActionInfoIs(const TermActionInfo& info);
    /// The action recorded for a term; null if there is none.
    const TermActionInfo* termActionInfo(const Orin::String& termId) const noexcept {
        return termActionInfo_.find(termId);
    }

private:
    Vex::HashMap2018<Orin::String, TermActionInfo, Vex::seedOf("ClassifierInfo.termActionInfo")>
        termActionInfo_;
};

/// What a policy map says of classifiers: the record of one computation.
class PLATFORM_API ClassifierMetaData : public Orin::Node,
                                        public OvSlab::Slabbed<ClassifierMetaData> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierMetaData";
    using Ptr = Orin::Ptr<ClassifierMetaData>;

    /// The information about the classifier, created if absent.
    ClassifierInfo& classifierInfoIs(const Orin::String& classifierName);
    /// The information about the classifier; null if there is none.
    const ClassifierInfo* classifierInfo(const Orin::String& classifierName) const noexcept;

private:
    Vex::HashMap2018<Orin::String, Orin::Ptr<ClassifierInfo>,
                     Vex::seedOf("ClassifierMetaData.classifierInfo")>
        classifierInfo_;
};

}  // namespace QosOc
