#pragma once

#include <memory>
#include <utility>

#include "platform/Orin/Export.h"
#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"
#include "platform/Orin/String.h"
#include "platform/OvSlab/Slab.h"
#include "platform/Vex/RecordedMap.h"

namespace QosOc {

/// The action that a policy map gives to one term.
struct PLATFORM_API TermActionInfo {
    Orin::String termId;
    Orin::String classifierName;
    Orin::String targetGroup;  ///< empty: none

    TermActionInfo() noexcept = default;
    TermActionInfo(Orin::String term, Orin::String classifier, Orin::String group) noexcept
        : termId(std::move(term)),
          classifierName(std::move(classifier)),
          targetGroup(std::move(group)) {}

    /// Compares two `TermActionInfo`s.
    static bool isEq(const void* a, const void* b);
    friend bool operator==(const TermActionInfo&, const TermActionInfo&) = default;
};

/// What a policy map says of one classifier.
class PLATFORM_API ClassifierInfo : public OvSlab::Slabbed<ClassifierInfo> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierInfo";

    explicit ClassifierInfo(const Orin::String& name) : name_(name) {}

    const Orin::String& name() const noexcept { return name_; }
    /// Records the action under its term id; replaces an earlier one.
    void termActionInfoIs(TermActionInfo info) { termActionInfo_.is(std::move(info)); }
    /// Returns the action recorded for a term; null if there is none.
    const TermActionInfo* termActionInfo(const Orin::String& termId) const noexcept {
        return termActionInfo_.find(termId);
    }

private:
    Orin::String name_;
    Vex::RecordedMap<TermActionInfo, &TermActionInfo::termId> termActionInfo_;
};

/// What a policy map says of classifiers: the record of one computation.
class PLATFORM_API ClassifierMetaData : public Orin::Node,
                                        public OvSlab::Slabbed<ClassifierMetaData> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifierMetaData";
    using Ptr = Orin::Ptr<ClassifierMetaData>;

    ClassifierMetaData() noexcept = default;
    ~ClassifierMetaData() override;

    /// Returns the information about the classifier, created if absent. It stays where it is.
    ClassifierInfo& classifierInfoIs(const Orin::String& classifierName) {
        auto* held = classifierInfo_.find(classifierName);
        return held == nullptr ? newClassifierInfo(classifierName) : **held;
    }
    /// Returns the information about the classifier; null if there is none.
    const ClassifierInfo* classifierInfo(const Orin::String& classifierName) const noexcept {
        const auto* held = classifierInfo_.find(classifierName);
        return held == nullptr ? nullptr : held->get();
    }

private:
    using Info = std::unique_ptr<ClassifierInfo>;
    static const Orin::String& nameOf(const Info& info) noexcept { return info->name(); }
    ClassifierInfo& newClassifierInfo(const Orin::String& classifierName);

    Vex::RecordedMap<Info, &ClassifierMetaData::nameOf> classifierInfo_;
};

}  // namespace QosOc
