#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace QosAgent {

/// Reports changes of the inputs to listeners, by path. All writers of the inputs must report here:
/// the editor, and the writers of the OpenConfig configuration. A report may precede its write, so
/// a listener should collect paths and read the values when the whole operation is applied.
class InputChanges {
public:
    enum class Kind : std::uint8_t {
        created,  ///< created; its members may be reported as well
        changed,  ///< updated: this value, or one below it
        removed,  ///< removed with all below it
    };
    /// Called for each change. `parsePath` can read `path`, which is valid during the call only.
    class Listener {
    public:
        virtual ~Listener() = default;
        virtual void inputChanged(Kind kind, std::string_view path) = 0;
    };

    /// The listener must stay alive until it is removed. No listener may be added or removed during
    /// a report.
    void listenerAdd(Listener& listener);
    /// No-op if absent.
    void listenerDel(Listener& listener);
    /// Returns true if there are listeners. Writers need to compose paths only then.
    bool hasListeners() const { return !listeners_.empty(); }
    void report(Kind kind, std::string_view path) const {
        for (Listener* listener : listeners_)
            listener->inputChanged(kind, path);
    }

private:
    std::vector<Listener*> listeners_;
};

}  // namespace QosAgent
