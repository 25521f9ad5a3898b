#pragma once

#include <grpcpp/grpcpp.h>
#include <grpcpp/support/byte_buffer.h>

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include "agent/gnmi/Refusal.h"
#include "agent/gnmi/Stream.h"

namespace QosAgent::Gnmi {

inline grpc::Status statusOf(const Refusal& refusal) {
    return {static_cast<grpc::StatusCode>(refusal.code), refusal.message};
}

inline const Refusal kStopping{Code::unavailable, "the agent is stopping"};

/// A message without its copy: the slices of the buffer lie one behind the other only by chance.
template <class Message>
bool parse(const grpc::ByteBuffer& buffer, Message& message) {
    grpc::Slice slice;
    if (buffer.Valid() && buffer.TrySingleSlice(&slice).ok())
        return message.ParseFromArray(slice.begin(), static_cast<int>(slice.size()));
    if (buffer.Valid() && !buffer.DumpToSingleSlice(&slice).ok()) return false;
    return message.ParseFromArray(slice.begin(), static_cast<int>(slice.size()));
}

/// A buffer that shares the bytes.
grpc::ByteBuffer bufferOf(Bytes bytes);

/// A call that can be ended from outside.
class Call {
public:
    virtual ~Call() = default;
    /// Ends the call with this status, unless it has ended. Any thread.
    virtual void abort(const Refusal& refusal) = 0;
};

/// The calls that are under way. Any thread.
class Calls {
public:
    static constexpr std::size_t kMostOfConnection = 100;

    /// Counts a call of the connection with this peer. Returns why the call must be refused:
    /// the connection has too many, or the server stops. `end` must be called in any case.
    std::optional<Refusal> begin(const std::string& peer);
    void end(const std::string& peer);
    void add(const std::shared_ptr<Call>& call);
    void remove(const std::shared_ptr<Call>& call);
    /// Ends all calls, and lets none begin.
    void stop();
    /// Returns when no call is under way any more.
    void waitForEnd();

private:
    std::mutex mutex_;
    std::condition_variable none_;
    bool isStopping_ = false;
    std::size_t count_ = 0;
    std::map<std::string, std::size_t> ofConnection_;
    std::set<std::shared_ptr<Call>> calls_;
};

}  // namespace QosAgent::Gnmi
