#include "agent/http/Site.h"

#include <algorithm>
#include <array>
#include <utility>

#include "agent/http/Host.h"
#include "agent/http/Page.h"
#include "agent/http/StateText.h"
#include "agent/json/JsonWriter.h"

namespace QosAgent::Http {
namespace {

/// The reply to a `print` that was answered.
Reply replyOf(Answer answer) {
    if (answer.isBusy) return busyReply(answer.refused->message);
    if (answer.refused) return textReply(400, answer.refused->message);
    Reply reply;
    reply.type = "application/json";
    for (std::string& line : answer.lines)
        reply.body.append(std::exchange(line, {})) += '\n';
    return reply;
}

/// Whether one of the entity tags in an `If-None-Match` is this one.
bool isAmong(std::string_view tags, std::string_view tag) {
    while (!tags.empty()) {
        const std::size_t comma = std::min(tags.find(','), tags.size());
        std::string_view one = tags.substr(0, comma);
        tags.remove_prefix(std::min(comma + 1, tags.size()));
        one.remove_prefix(std::min(one.find_first_not_of(" \t"), one.size()));
        one = one.substr(0, one.find_last_not_of(" \t") + 1);
        if (one.starts_with("W/")) one.remove_prefix(2);
        if (one == tag || one == "*") return true;
    }
    return false;
}

}  // namespace

struct Site::Route {
    std::string_view path;
    void (Site::*serve)(const ExchangePtr& exchange);
};

Site::Site(Service& service, std::shared_ptr<Inbox> inbox, bool checksHost)
    : service_(service),
      inbox_(std::move(inbox)),
      checksHost_(checksHost),
      events_(service, inbox_) {}

void Site::serve(const ExchangePtr& exchange) {
    static constexpr std::array routes{
        Route{"/", &Site::page},
        Route{"/api/state", &Site::state},
        Route{"/api/openconfig", &Site::openconfig},
        Route{"/api/machines", &Site::machines},
        Route{"/api/differences", &Site::differences},
        Route{"/api/explain", &Site::explain},
        Route{"/api/events", &Site::eventStream},
        Route{"/metrics", &Site::metrics},
        Route{"/healthz", &Site::health},
    };
    if (isRefused(*exchange)) return;
    const auto* route = std::ranges::find(routes, exchange->path(), &Route::path);
    if (route == routes.end())
        exchange->answer(textReply(404, "nothing is at this path"));
    else
        (this->*route->serve)(exchange);
}

/// Answers requests that are refused whatever they ask for.
bool Site::isRefused(Exchange& exchange) const {
    if (exchange.hosts() > 1) {
        exchange.answer(textReply(400, "more than one Host"));
        return true;
    }
    const auto host = exchange.host();
    if (checksHost_ && host && !isThisMachine(*host)) {
        exchange.answer(textReply(421, "this is localhost, and served under no other name"));
        return true;
    }
    if (exchange.method() == "GET" || exchange.method() == "HEAD") return false;
    Reply reply = textReply(405, "only GET and HEAD are possible here");
    reply.headers.emplace_back("Allow", "GET, HEAD");
    exchange.answer(std::move(reply));
    return true;
}

void Site::page(const ExchangePtr& exchange) {
    const Page& page = statusPage();
    Reply reply;
    reply.headers = {{"Content-Security-Policy", page.policy},
                     {"ETag", page.tag},
                     {"Cache-Control", "no-cache"}};
    const auto known = exchange->header("If-None-Match");
    if (known && isAmong(*known, page.tag)) {
        reply.status = 304;
    } else {
        reply.type = "text/html; charset=utf-8";
        reply.body = page.text;
    }
    exchange->answer(std::move(reply));
}

void Site::print(const ExchangePtr& exchange, const std::string& what) {
    std::weak_ptr<Exchange> asking = exchange;
    service_.submit({"{\"print\":" + what + '}', "http"}, [inbox = inbox_, asking](Answer answer) {
        inbox->post([asking, answer = std::move(answer)]() mutable {
            if (const auto held = asking.lock()) held->answer(replyOf(std::move(answer)));
        });
    });
}

void Site::explain(const ExchangePtr& exchange) {
    const auto classifier = exchange->argument("classifier");
    if (!classifier) {
        exchange->answer(textReply(400, "which classifier? /api/explain?classifier=C&term=T"));
        return;
    }
    std::string what;
    JsonWriter writer(what);
    writer.beginObject().key("explain").beginObject().key("classifier").text(*classifier);
    if (const auto term = exchange->argument("term")) writer.key("term").text(*term);
    writer.endObject().endObject();
    print(exchange, what);
}

void Site::eventStream(const ExchangePtr& exchange) {
    Reply reply;
    reply.type = "text/event-stream";
    reply.source = events_.reader(exchange->header("Last-Event-ID").value_or(""));
    exchange->answer(std::move(reply));
}

void Site::withStatistics(const ExchangePtr& exchange,
                          std::function<void(Exchange&, const Statistics&)> use) {
    std::weak_ptr<Exchange> asking = exchange;
    service_.statistics([inbox = inbox_, asking, use = std::move(use)](Statistics statistics) {
        inbox->post([asking, use, statistics = std::move(statistics)] {
            if (const auto held = asking.lock()) use(*held, statistics);
        });
    });
}

void Site::metrics(const ExchangePtr& exchange) {
    withStatistics(exchange, [this](Exchange& asking, const Statistics& statistics) {
        Readings readings{statistics, classifiersOf(events_.state()), 0, readings_};
        readings.terms = events_.state().size() - readings.classifiers;
        readings.door.eventStreams = events_.readers();
        readings.door.waitingEvents = events_.waiting();
        Reply reply;
        reply.type = "text/plain; version=0.0.4; charset=utf-8";
        reply.body = metricsText(readings);
        asking.answer(std::move(reply));
    });
}

void Site::health(const ExchangePtr& exchange) {
    withStatistics(exchange, [](Exchange& asking, const Statistics& statistics) {
        const bool isAway = statistics.store && statistics.store->isAway;
        asking.answer(isAway ? textReply(503, "the store is away") : textReply(200, "ok"));
    });
}

}  // namespace QosAgent::Http
