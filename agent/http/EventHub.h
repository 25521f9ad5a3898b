#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string_view>

#include "agent/http/EventLog.h"
#include "agent/http/Inbox.h"
#include "agent/http/Reply.h"
#include "agent/service/Service.h"

namespace QosAgent::Http {

/// Takes published changes from the service and wakes those who read them as events. Door's thread
/// only, but for construction.
class EventHub {
public:
    /// The service must outlive the hub.
    EventHub(Service& service, const std::shared_ptr<Inbox>& inbox);
    ~EventHub();
    EventHub(const EventHub&) = delete;
    EventHub& operator=(const EventHub&) = delete;

    /// A reader who had the events up to the one with this id; it may be empty. The hub must
    /// outlive it.
    std::unique_ptr<Source> reader(std::string_view lastId);
    /// Sends a comment to readers who got nothing for a while, to notice that they are gone.
    void ping();
    /// Ends all readers.
    void end();

    std::size_t readers() const { return readers_.size(); }
    std::uint64_t waiting() const;
    /// The state as it is after the last event.
    const StateMap& state() const { return log_.state(); }

private:
    class Reader;

    void takeChanges();

    std::unique_ptr<Subscription> subscription_;
    EventLog log_;
    std::set<Reader*> readers_;
};

}  // namespace QosAgent::Http
