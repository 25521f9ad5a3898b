#pragma once

#include <string>

namespace QosAgent::Http {

/// The status page, one file, made when it is first asked for.
struct Page {
    std::string text;
    std::string tag;     ///< entity tag, with its quotes
    std::string policy;  ///< its Content-Security-Policy: nothing but its own style and script
};

const Page& statusPage();

}  // namespace QosAgent::Http
