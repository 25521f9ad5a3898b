#include "tests/model/Change.h"

namespace Model {
namespace {

std::string escaped(const std::string& key) {
    std::string out;
    for (const char c : key) {
        if (c == '~')
            out += "~0";
        else if (c == '/')
            out += "~1";
        else
            out += c;
    }
    return out;
}

std::string joined(const std::vector<std::string>& path) {
    std::string out = path.front();
    for (std::size_t i = 1; i < path.size(); ++i)
        out += '/' + escaped(path[i]);
    return out;
}

const char* nameOf(Change::Verb verb) {
    constexpr const char* kNames[] = {"update", "replace", "delete", "touch", "restart"};
    return kNames[static_cast<int>(verb)];
}

}  // namespace

std::string Change::line() const {
    Json line = Json::object();
    const bool isRestart = verb == Verb::restart;
    line.add(nameOf(verb), Json::of(isRestart ? "ClassifierStateSmPlugin" : joined(path)));
    if (hasValue()) line.add("value", value);
    return line.written();
}

}  // namespace Model
