#include "agent/http/Exchange.h"

#include <strings.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace QosAgent::Http {
namespace {

/// No request here needs any content; so much is read and passed over.
constexpr std::size_t kMostContent = 64 * 1024;
constexpr std::string_view kScheme = "http://";

struct Search {
    std::string_view name;
    std::optional<std::string> value;
    unsigned found = 0;
};

MHD_Result visit(void* cls, MHD_ValueKind kind, const char* key, std::size_t keySize,
                 const char* value, std::size_t valueSize) {
    auto& search = *static_cast<Search*>(cls);
    const std::string_view name(key, keySize);
    const bool isHeader = kind == MHD_HEADER_KIND;
    const bool isIt = isHeader ? name.size() == search.name.size() &&
                                     ::strncasecmp(key, search.name.data(), keySize) == 0
                               : name == search.name;
    if (!isIt) return MHD_YES;
    if (search.found++ == 0)
        search.value = value == nullptr ? std::string() : std::string(value, valueSize);
    return MHD_YES;
}

Search find(MHD_Connection* connection, MHD_ValueKind kind, std::string_view name) {
    Search search{name, {}, 0};
    MHD_get_connection_values_n(connection, kind, visit, &search);
    return search;
}

}  // namespace

Exchange::Exchange(MHD_Connection* connection, std::string_view method, std::string_view target)
    : connection_(connection), method_(method) {
    if (target.starts_with(kScheme)) {
        target.remove_prefix(kScheme.size());
        const std::size_t end = std::min(target.find('/'), target.size());
        authority_ = target.substr(0, end);
        target.remove_prefix(end);
        if (target.empty()) target = "/";
    }
    path_ = target;
}

std::optional<std::string> Exchange::host() const {
    if (!authority_.empty()) return authority_;
    return find(connection_, MHD_HEADER_KIND, "Host").value;
}

unsigned Exchange::hosts() const {
    return find(connection_, MHD_HEADER_KIND, "Host").found;
}

std::optional<std::string> Exchange::header(const char* name) const {
    Search found = find(connection_, MHD_HEADER_KIND, name);
    return found.found == 1 ? std::move(found.value) : std::nullopt;
}

std::optional<std::string> Exchange::argument(std::string_view name) const {
    return find(connection_, MHD_GET_ARGUMENT_KIND, name).value;
}

bool Exchange::announcesTooMuch() const {
    const auto size = header("Content-Length");
    return size && std::strtoull(size->c_str(), nullptr, 10) > kMostContent;
}

bool Exchange::takeContent(std::size_t size) {
    contentSize_ += size;
    return contentSize_ <= kMostContent;
}

void Exchange::answer(Reply reply) {
    if (reply_) return;
    reply_ = std::move(reply);
    if (std::exchange(isSuspended_, false)) MHD_resume_connection(connection_);
}

std::optional<Reply> Exchange::takeReply() {
    return std::exchange(reply_, std::nullopt);
}

void Exchange::suspend() {
    isSuspended_ = true;
    MHD_suspend_connection(connection_);
}

}  // namespace QosAgent::Http
