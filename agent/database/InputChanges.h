#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace QosAgent {

/// Tells what happened to the members of the inputs, by path. All writers of the inputs report
/// here: the editor, and the writers of the OpenConfig configuration. A report may come before its
/// write: listeners collect paths, and read the values when the whole operation is applied.
class InputChanges {
public:
    enum class Kind : std::uint8_t {
        created,  ///< it was not there before; what it holds may be reported as well
        changed,  ///< it, or something below it, has another value
        removed,  ///< it and all below it
    };
    /// `path` is as `parsePath` reads it, and valid during the call only.
    class Listener {
    public:
        virtual ~Listener() = default;
        virtual void inputChanged(Kind kind, std::string_view path) = 0;
    };

    /// The listener must stay alive until it is removed. No listener may come or go during a
    /// report.
    void listenerAdd(Listener& listener);
    /// Has no effect if it is not there.
    void listenerDel(Listener& listener);
    /// Callers compose a path only if this is true.
    bool hasListeners() const { return !listeners_.empty(); }
    void report(Kind kind, std::string_view path) const {
        for (Listener* listener : listeners_)
            listener->inputChanged(kind, path);
    }

private:
    std::vector<Listener*> listeners_;
};

}  // namespace QosAgent
