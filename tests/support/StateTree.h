#pragma once

#include <list>
#include <string>
#include <vector>

#include "platform/QosOc/State/ClassifiersDir.h"

/// The state tree in a form that tests compare: everything that it holds, in few words.
namespace TestSupport {

/// A term: `10`, `10 when ipv4 46`, `10 when ipv6 [10, 12] to gold`, `10 when - to ''` (conditions
/// and actions that are there and empty). One whose `stateId` is not its id: `10 (state 20)`.
std::string textOf(const QosOc::State::Term& term);

/// Every classifier, in ascending order of their names, and its terms in that of their ids:
/// `video IPV6; voice IPV4 {10 to gold, 20}`. An empty terms container is `{}`; a classifier whose
/// state does not repeat its name is `voice (named video) IPV4`.
std::string textOf(const QosOc::State::ClassifiersDir& root);

/// Hears every change that is published anywhere in a state tree, in order. Keeps nothing alive but
/// the root.
///
///     voice                      the classifier came, or was published again
///     voice/state IPV4           its state changed, and reads so now
///     voice/terms                its terms container came
///     voice/10 when ipv4 46      the term came or changed, and reads so now
///     voice/10 gone, voice/terms gone, voice gone
class StateRecorder {
public:
    explicit StateRecorder(const Orin::Ptr<QosOc::State::ClassifiersDir>& root);
    ~StateRecorder();
    StateRecorder(const StateRecorder&) = delete;
    StateRecorder& operator=(const StateRecorder&) = delete;

    /// The changes since the last call.
    std::vector<std::string> take();

private:
    /// The subscription to one entity of the tree.
    struct Watch {
        StateRecorder* recorder;
        const Vex::PublishingNode* entity;
        std::string classifier;  ///< empty: the root
        Orin::Subscriber record;
    };

    static void dispatchRoot(Orin::Publisher& publisher, Orin::Subscriber& record,
                             Orin::AttributeId attributeId, const void* key) noexcept;
    static void dispatchClassifier(Orin::Publisher& publisher, Orin::Subscriber& record,
                                   Orin::AttributeId attributeId, const void* key) noexcept;
    static void dispatchTerms(Orin::Publisher& publisher, Orin::Subscriber& record,
                              Orin::AttributeId attributeId, const void* key) noexcept;

    void watch(const Vex::PublishingNode* entity, const std::string& classifier,
               Orin::Dispatch dispatch);
    void watchClassifier(const QosOc::State::Classifier* classifier);

    Orin::Ptr<QosOc::State::ClassifiersDir> root_;
    std::list<Watch> watches_;
    std::vector<std::string> changes_;
};

}  // namespace TestSupport
