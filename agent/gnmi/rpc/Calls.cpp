#include "agent/gnmi/rpc/Calls.h"

#include <utility>

namespace QosAgent::Gnmi {

grpc::ByteBuffer bufferOf(Bytes bytes) {
    auto* owner = new Bytes(std::move(bytes));
    // gRPC does not write to the bytes of a slice.
    void* begin = const_cast<char*>((*owner)->data());
    const auto destroy = [](void* data) { delete static_cast<Bytes*>(data); };
    const grpc::Slice slice(begin, (*owner)->size(), destroy, owner);
    return grpc::ByteBuffer(&slice, 1);
}

std::optional<Refusal> Calls::begin(const std::string& peer) {
    const std::lock_guard lock(mutex_);
    ++count_;
    const std::size_t ofConnection = ++ofConnection_[peer];
    if (isStopping_) return kStopping;
    // All clients of a Unix socket have one name; there the transport's own limit holds.
    if (ofConnection > kMostOfConnection && !peer.starts_with("unix"))
        return Refusal{Code::resourceExhausted, "more than 100 calls at once on one connection"};
    return std::nullopt;
}

void Calls::end(const std::string& peer) {
    const std::lock_guard lock(mutex_);
    const auto at = ofConnection_.find(peer);
    if (--at->second == 0) ofConnection_.erase(at);
    if (--count_ == 0) none_.notify_all();
}

void Calls::waitForEnd() {
    std::unique_lock lock(mutex_);
    none_.wait(lock, [this] { return count_ == 0; });
}

void Calls::add(const std::shared_ptr<Call>& call) {
    {
        const std::lock_guard lock(mutex_);
        if (!isStopping_) {
            calls_.insert(call);
            return;
        }
    }
    call->abort(kStopping);
}

void Calls::remove(const std::shared_ptr<Call>& call) {
    const std::lock_guard lock(mutex_);
    calls_.erase(call);
}

void Calls::stop() {
    std::set<std::shared_ptr<Call>> calls;
    {
        const std::lock_guard lock(mutex_);
        isStopping_ = true;
        calls.swap(calls_);
    }
    for (const auto& call : calls)
        call->abort(kStopping);
}

}  // namespace QosAgent::Gnmi
