#pragma once

#include "platform/QosOc/Config/ClassifierConfig.h"
#include "platform/Vex/Entity.h"

namespace QosOc {

/// The registry of classifiers that policy maps use, with the number of uses. Publishes nothing.
class ClassifiersWithPmap final : public Vex::Entity<ClassifiersWithPmap> {
public:
    static constexpr std::string_view kTypeName = "QosOc::ClassifiersWithPmap";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{Vex::own("classifier", 1, &ClassifiersWithPmap::classifier_)};
    }
    /// The key's type is set. The count is unsigned and wraps like one.
    using CountByClassifier = Vex::HashMap2018<Config::ClassifierConfig, unsigned,
                                               Vex::seedOf("ClassifiersWithPmap.classifier")>;

    ~ClassifiersWithPmap() override;
    static Orin::Ptr<ClassifiersWithPmap> ClassifiersWithPmapIs();

    const CountByClassifier& classifier() const noexcept { return classifier_; }
    /// Returns true if a policy map uses the classifier.
    bool isInUse(const Config::ClassifierConfig& key) const noexcept {
        const unsigned* count = classifier_.find(key);
        return count != nullptr && *count != 0;
    }
    /// Inserts the key with the count, or replaces its count.
    void classifierIs(const Config::ClassifierConfig& key, unsigned count);
    /// Removes the key and returns its count; 0 if absent.
    unsigned classifierDel(const Config::ClassifierConfig& key);
    void classifierDelAll();

private:
    CountByClassifier classifier_;
};

Orin::Ptr<ClassifiersWithPmap> classifiersWithPmapFactory();

}  // namespace QosOc
