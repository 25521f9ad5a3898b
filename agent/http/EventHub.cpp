#include "agent/http/EventHub.h"

#include <sys/random.h>

#include <array>
#include <cstdint>
#include <utility>
#include <vector>

#include "agent/http/EventStream.h"

namespace QosAgent::Http {
namespace {

/// A name that no other run has, in hexadecimal digits.
std::string randomName() {
    std::array<unsigned char, 8> bytes{};
    [[maybe_unused]] const auto got = ::getrandom(bytes.data(), bytes.size(), 0);
    constexpr const char* digits = "0123456789abcdef";
    std::string name;
    for (const unsigned char byte : bytes)
        name.append({digits[byte >> 4], digits[byte & 0xF]});
    return name;
}

}  // namespace

class EventHub::Reader final : public Source {
public:
    Reader(EventHub& hub, std::string_view lastId) : hub_(hub), stream_(hub.log_, lastId) {
        hub_.readers_.insert(this);
    }
    ~Reader() override { hub_.readers_.erase(this); }

    std::size_t read(char* to, std::size_t size) override { return stream_.read(to, size); }
    bool isEnded() const override { return isEnded_; }
    void end() override {
        isEnded_ = true;
        wake();
    }
    void rest(std::function<void()> wake) override { wake_ = std::move(wake); }

    void wake() {
        if (const auto wake = std::exchange(wake_, nullptr)) wake();
    }
    EventStream& stream() { return stream_; }

private:
    EventHub& hub_;
    EventStream stream_;
    std::function<void()> wake_;
    bool isEnded_ = false;
};

EventHub::EventHub(Service& service, const std::shared_ptr<Inbox>& inbox)
    : subscription_(service.subscribe([this, inbox] { inbox->post([this] { takeChanges(); }); })),
      log_(randomName(), subscription_->start()) {}

EventHub::~EventHub() = default;

void EventHub::takeChanges() {
    for (const ChangeSetPtr& changes : subscription_->take())
        log_.add(*changes);
    for (Reader* reader : readers_)
        if (reader->stream().hasNews()) reader->wake();
}

std::unique_ptr<Source> EventHub::reader(std::string_view lastId) {
    return std::make_unique<Reader>(*this, lastId);
}

void EventHub::ping() {
    for (Reader* reader : readers_) {
        reader->stream().ping();
        reader->wake();
    }
}

void EventHub::end() {
    for (Reader* reader : readers_)
        reader->end();
}

std::uint64_t EventHub::waiting() const {
    std::uint64_t waiting = 0;
    for (Reader* reader : readers_)
        waiting += reader->stream().waiting();
    return waiting;
}

}  // namespace QosAgent::Http
