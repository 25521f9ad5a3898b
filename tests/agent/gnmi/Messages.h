#pragma once

#include <google/protobuf/text_format.h>

#include <stdexcept>
#include <string>

namespace QosAgent::Gnmi {

/// A message from its text form.
template <class Message>
Message message(const std::string& text) {
    Message message;
    if (!google::protobuf::TextFormat::ParseFromString(text, &message))
        throw std::invalid_argument(text);
    return message;
}

/// The text form of a path: `elem { name: "a" }` for each of its elements.
inline std::string elements(std::string_view path) {
    std::string text;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::size_t slash = path.find('/');
        std::string_view element = path.substr(0, slash);
        path.remove_prefix(std::min(slash, path.size()));
        const std::size_t bracket = element.find('[');
        text.append("elem { name: \"").append(element.substr(0, bracket)).append("\" ");
        if (bracket != std::string_view::npos) {
            const std::size_t equals = element.find('=');
            text.append("key { key: \"").append(element.substr(bracket + 1, equals - bracket - 1));
            text.append("\" value: \"")
                .append(element.substr(equals + 1, element.size() - equals - 2));
            text.append("\" } ");
        }
        text += "} ";
    }
    return text;
}

}  // namespace QosAgent::Gnmi
