#include "agent/http/Page.h"

#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

#include "agent/explain/Finding.h"
#include "agent/http/PageParts.h"
#include "agent/json/JsonWriter.h"
#include "agent/output/Dscp.h"

namespace QosAgent::Http {
namespace {

constexpr std::string_view kDataPlace = "@DATA@";

/// What the script has to know and the program knows already: what findings say, and the names of
/// DSCP values.
std::string pageData() {
    std::string text;
    JsonWriter writer(text);
    writer.beginObject().key("findings").beginObject();
    for (const Finding& finding : findingTable()) {
        writer.key(finding.code).beginObject();
        writer.key("sentence").text(finding.sentence).key("advice").text(finding.advice);
        writer.endObject();
    }
    writer.endObject().key("dscp").beginArray();
    for (std::uint8_t value = 0; value < 64; ++value)
        writer.text(dscpText(std::array{value}));
    writer.endArray().endObject();
    // Nothing may end the element in which the data stands.
    for (std::size_t at = 0; (at = text.find('<', at)) != std::string::npos;)
        text.replace(at, 1, "\\u003c");
    return text;
}

/// Equal for equal texts.
std::string tagOf(const std::string& text) {
    return '"' + std::to_string(std::hash<std::string>()(text)) + '"';
}

Page make() {
    Page page;
    page.text = kPageText;
    page.text.replace(page.text.find(kDataPlace), kDataPlace.size(), pageData());
    page.tag = tagOf(page.text);
    page.policy = std::string("default-src 'none'; connect-src 'self'; img-src data:") +
                  "; style-src 'sha256-" + kStyleHash + "'; script-src 'sha256-" + kScriptHash +
                  "'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'";
    return page;
}

}  // namespace

const Page& statusPage() {
    static const Page page = make();
    return page;
}

}  // namespace QosAgent::Http
