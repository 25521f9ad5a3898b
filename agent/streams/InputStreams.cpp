#include "agent/streams/InputStreams.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "agent/json/JsonReader.h"

namespace QosAgent {

InputStreams::InputStreams(std::vector<std::string> names, Loop& loop, Service& service,
                           Handlers handlers)
    : names_(std::move(names)), loop_(loop), service_(service), handlers_(std::move(handlers)) {}

void InputStreams::openNext() {
    close();
    if (next_ == names_.size()) return;
    const std::string& name = names_[next_++];
    file_.emplace(File::toReadLater(name));
    if (file_->error() != 0) return handlers_.failed(name, file_->error());
    lines_.emplace(Limits{}.lineBytes);
    isAtEnd_ = false;
    watch_ = loop_.watch(file_->fd(), true, false, [this] { read(); });
}

void InputStreams::read() {
    const auto room = lines_->room();
    const ssize_t count = ::read(file_->fd(), room.data(), room.size());
    if (count < 0) {
        if (errno != EAGAIN && errno != EINTR) handlers_.failed(names_[next_ - 1], errno);
        return;
    }
    isAtEnd_ = count == 0;
    lines_->filled(static_cast<std::size_t>(count));
    submitNext();
}

void InputStreams::submitNext() {
    if (lines_->next() || (isAtEnd_ && lines_->last())) {
        // Not watched meanwhile: a file that has ended is ready for ever.
        watch_.reset();
        submit();
    } else if (isAtEnd_) {
        openNext();
    } else if (!watch_) {
        watch_ = loop_.watch(file_->fd(), true, false, [this] { read(); });
    }
}

void InputStreams::submit() {
    const std::string& name = names_[next_ - 1];
    Request request{lines_->take(), name};
    request.applied = [this](const Answer& answer) { applied(answer); };
    service_.submit(std::move(request), [this, &name, isKept = file_->isKept(),
                                         number = lines_->number()](const Answer& answer) {
        answered({name, isKept, number, answer});
    });
}

void InputStreams::applied(const Answer& answer) {
    isHalted_ = answer.refused.has_value();
    if (!isHalted_ && file_) submitNext();
}

void InputStreams::answered(const AnsweredLine& line) {
    const bool goesOn = handlers_.answered(line);
    if (!goesOn || line.answer.isBusy)
        close();
    else if (line.answer.refused && std::exchange(isHalted_, false))
        submitNext();
}

void InputStreams::close() {
    watch_.reset();
    lines_.reset();
    file_.reset();
}

}  // namespace QosAgent
