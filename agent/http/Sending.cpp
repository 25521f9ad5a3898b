#include "agent/http/Sending.h"

#include <algorithm>
#include <string>
#include <utility>

namespace QosAgent::Http {
namespace {

/// A piece of a source at most.
constexpr std::size_t kPiece = 32 * 1024;

/// What the library borrows until an answer has been sent.
struct Body {
    Body(std::string sent, std::size_t& counted) : text(std::move(sent)), waitingBytes(counted) {
        waitingBytes += text.size();
    }
    ~Body() { waitingBytes -= text.size(); }
    Body(const Body&) = delete;
    Body& operator=(const Body&) = delete;

    std::string text;
    std::size_t& waitingBytes;
};

/// A source and the connection that it goes to.
struct Flow {
    std::unique_ptr<Source> source;
    MHD_Connection* connection;
};

ssize_t readFlow(void* cls, std::uint64_t /*position*/, char* to, std::size_t size) {
    auto& flow = *static_cast<Flow*>(cls);
    if (flow.source->isEnded()) return MHD_CONTENT_READER_END_OF_STREAM;
    const std::size_t count = flow.source->read(to, size);
    if (count == 0) {
        MHD_Connection* const connection = flow.connection;
        MHD_suspend_connection(connection);
        flow.source->rest([connection] { MHD_resume_connection(connection); });
    }
    return static_cast<ssize_t>(count);
}

MHD_Response* responseOf(MHD_Connection* connection, Reply& reply, std::size_t& waitingBytes) {
    if (reply.source)
        return MHD_create_response_from_callback(
            MHD_SIZE_UNKNOWN, kPiece, readFlow, new Flow{std::move(reply.source), connection},
            [](void* flow) { delete static_cast<Flow*>(flow); });
    auto* body = new Body(std::move(reply.body), waitingBytes);
    return MHD_create_response_from_buffer_with_free_callback_cls(
        body->text.size(), body->text.data(), [](void* done) { delete static_cast<Body*>(done); },
        body);
}

bool has(const Reply& reply, std::string_view name) {
    return std::ranges::any_of(reply.headers,
                               [name](const auto& header) { return header.first == name; });
}

}  // namespace

MHD_Result queue(MHD_Connection* connection, Reply reply, std::size_t& waitingBytes) {
    const bool isEndless = reply.source != nullptr;
    MHD_Response* const response = responseOf(connection, reply, waitingBytes);
    const auto add = [response](const char* name, const std::string& value) {
        MHD_add_response_header(response, name, value.c_str());
    };
    // In HTTP/1.1 the library would end even the answer to HEAD with the mark of a last piece.
    if (isEndless && reply.isHeadOnly)
        MHD_set_response_options(response, MHD_RF_HTTP_VERSION_1_0_ONLY, MHD_RO_END);
    if (reply.status != MHD_HTTP_NOT_MODIFIED) add("Content-Type", reply.type);
    if (!has(reply, "Cache-Control")) add("Cache-Control", "no-store");
    if (!has(reply, "Content-Security-Policy"))
        add("Content-Security-Policy", "default-src 'none'; frame-ancestors 'none'");
    add("X-Content-Type-Options", "nosniff");
    add("Referrer-Policy", "no-referrer");
    add("Cross-Origin-Resource-Policy", "same-origin");
    for (const auto& [name, value] : reply.headers)
        add(name.c_str(), value);
    const MHD_Result result = MHD_queue_response(connection, reply.status, response);
    MHD_destroy_response(response);
    return result;
}

}  // namespace QosAgent::Http
