#include "tests/model/Trace.h"

namespace Model {

Point::Point(std::string source, unsigned sourceLine, std::string name, std::string text,
             std::string more)
    : lead(std::move(source) + ':'),
      line(sourceLine),
      function(' ' + std::move(name) + ' '),
      signature(std::move(text)),
      counter("trace: " + signature + more) {}

std::string inserted(std::string_view text) {
    constexpr std::string_view kControls = "\a\b\t\n\v\f\r\\";
    constexpr std::string_view kLetters = "abtnvfr\\";
    std::string out;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (const auto at = kControls.find(c); at != std::string_view::npos) {
            out.append("\\").append(1, kLetters[at]);
        } else if (byte < 0x20 || byte == 0x7f) {
            out += '\\';
            for (const int shift : {6, 3, 0})
                out += static_cast<char>('0' + ((byte >> shift) & 7));
        } else {
            out += c;
        }
    }
    return out;
}

}  // namespace Model
