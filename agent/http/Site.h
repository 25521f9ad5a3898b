#pragma once

#include <functional>
#include <memory>
#include <string>

#include "agent/http/EventHub.h"
#include "agent/http/Exchange.h"
#include "agent/http/Inbox.h"
#include "agent/http/Metrics.h"
#include "agent/service/Service.h"

namespace QosAgent::Http {

/// What is served at which path. Door's thread only, but for construction.
class Site {
public:
    /// The service must outlive the site. `checksHost`: requests that name another host than this
    /// machine are refused.
    Site(Service& service, std::shared_ptr<Inbox> inbox, bool checksHost);

    /// Answers the request, now or later.
    void serve(const ExchangePtr& exchange);
    /// What the connections' owner counts; the rest of the door's readings is the site's.
    DoorReadings& readings() { return readings_; }
    EventHub& events() { return events_; }
    bool hasReaders() const { return events_.readers() > 0; }

private:
    struct Route;

    void page(const ExchangePtr& exchange);
    void state(const ExchangePtr& exchange) { print(exchange, "\"state\""); }
    void openconfig(const ExchangePtr& exchange) { print(exchange, "\"openconfig\""); }
    void machines(const ExchangePtr& exchange) { print(exchange, "\"machines\""); }
    void differences(const ExchangePtr& exchange) { print(exchange, "\"differences\""); }
    void explain(const ExchangePtr& exchange);
    void eventStream(const ExchangePtr& exchange);
    void metrics(const ExchangePtr& exchange);
    void health(const ExchangePtr& exchange);

    bool isRefused(Exchange& exchange) const;
    void print(const ExchangePtr& exchange, const std::string& what);
    /// Calls `use` with the figures on the door's thread, unless the exchange is over by then.
    void withStatistics(const ExchangePtr& exchange,
                        std::function<void(Exchange&, const Statistics&)> use);

    Service& service_;
    std::shared_ptr<Inbox> inbox_;
    bool checksHost_;
    DoorReadings readings_;
    EventHub events_;
};

}  // namespace QosAgent::Http
