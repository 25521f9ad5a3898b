#pragma once

#include <functional>
#include <utility>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/StateWriter.h"

namespace QosOc {

/// Calls a function for each classifier that comes or goes, with its name, during that very change.
class OnClassifier {
public:
    OnClassifier(const StateDir& state, std::function<void(const Orin::String&)> act)
        : state_(state), act_(std::move(act)) {
        record_.owner = this;
        record_.dispatch = [](Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                              const void* key) noexcept {
            static_cast<OnClassifier*>(record.owner)->act_(*static_cast<const Orin::String*>(key));
        };
        state_->publisher()->subscriberAdd(record_);
    }
    ~OnClassifier() { state_->publisher()->subscriberDel(record_); }
    OnClassifier(const OnClassifier&) = delete;
    OnClassifier& operator=(const OnClassifier&) = delete;

private:
    StateDir state_;
    std::function<void(const Orin::String&)> act_;
    Orin::Subscriber record_;
};

}  // namespace QosOc
