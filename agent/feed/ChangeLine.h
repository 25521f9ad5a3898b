#pragma once

#include <memory>
#include <string>

namespace QosAgent {

/// A published change as plain data, shared by all who keep it.
struct ChangeLine {
    std::string path;  ///< whole, with the one at which the state tree is mounted
    std::string text;  ///< a change-stream line, `update` or `delete`, with its line end
    bool isDelete = false;
};
using ChangeLinePtr = std::shared_ptr<const ChangeLine>;

}  // namespace QosAgent
