#pragma once

#include <microhttpd.h>

#include <cstddef>

#include "agent/http/Reply.h"

namespace QosAgent::Http {

/// Hands an answer to the connection. The size of its body is added to `waitingBytes`, which must
/// outlive the connection, until the client has taken it all or is gone.
MHD_Result queue(MHD_Connection* connection, Reply reply, std::size_t& waitingBytes);

}  // namespace QosAgent::Http
