#pragma once

#include <optional>
#include <utility>

namespace Vex {

/// A field with at most one reactor (a `NotifieeConst`) inside the machine.
template <class R>
class Nested {
public:
    using Notifier = typename R::Notifier;
    using Given = Notifier;

    Nested() noexcept = default;
    /// Arguments are those of the reactor.
    template <class... A>
    explicit Nested(std::in_place_t, A&&... arguments)
        : reactor_(std::in_place, std::forward<A>(arguments)...) {}

    R* get() noexcept { return reactor_ ? &*reactor_ : nullptr; }
    const R* get() const noexcept { return reactor_ ? &*reactor_ : nullptr; }
    /// Returns the reactor's notifier; null if there is no reactor.
    Notifier notifier() const noexcept { return reactor_ ? reactor_->notifier() : nullptr; }
    friend bool operator==(const Nested& nested, const Notifier& given) noexcept {
        return nested.notifier() == given;
    }

    template <class... A>
    void create(A&&... arguments) {
        reactor_.emplace(std::forward<A>(arguments)...);
    }
    void clear() noexcept { reactor_.reset(); }
    void activeIs(bool active) noexcept {
        if (reactor_) reactor_->hasNotificationActiveIs(active);
    }
    void zombieIs(bool zombie) {
        if (reactor_) reactor_->vexDoZombieReactors(zombie);
    }

private:
    std::optional<R> reactor_;
};

}  // namespace Vex
