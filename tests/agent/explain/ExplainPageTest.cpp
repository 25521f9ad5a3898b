#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "agent/explain/Finding.h"

namespace QosAgent {
namespace {

/// The words of a text, with one space between them.
std::string wordsOf(const std::string& text) {
    std::istringstream in(text);
    std::string words;
    for (std::string word; in >> word;)
        if (word != ">") words.append(words.empty() ? "" : " ").append(word);
    return words;
}

/// The part of the page about findings.
std::string findingsPart() {
    std::ostringstream page;
    page << std::ifstream("docs/explain.md").rdbuf();
    const std::string text = page.str();
    const std::size_t begin = text.find("\n## Findings\n");
    return text.substr(begin, text.find("\n## ", begin + 1) - begin);
}

/// What stands between the heading of a finding and its example.
std::string wordsUnder(const std::string& part, const std::string& heading) {
    const std::size_t begin = part.find(heading);
    if (begin == std::string::npos) return "nothing";
    const std::size_t end = part.find("\n\n", part.find("\n\nWhat to do: ", begin) + 2);
    return wordsOf(part.substr(begin, end - begin));
}

TEST(ExplainPageTest, saysOfEachFindingWhatTheTableSays) {
    const std::string part = findingsPart();
    for (const Finding& finding : findingTable()) {
        const std::string heading = "\n### " + std::string(finding.code) + "\n";
        std::ostringstream wanted;
        wanted << heading << "Of: " << finding.of << ". " << finding.condition << ' '
               << finding.sentence << " What to do: " << finding.advice;
        EXPECT_EQ(wordsUnder(part, heading), wordsOf(wanted.str()));
    }
}

TEST(ExplainPageTest, hasTheFindingsInTheirOrderAndNoOther) {
    std::istringstream part(findingsPart());
    std::vector<std::string> headings;
    for (std::string line; std::getline(part, line);)
        if (line.starts_with("### ")) headings.push_back(line.substr(4));
    std::vector<std::string> codes;
    for (const Finding& finding : findingTable())
        codes.emplace_back(finding.code);
    EXPECT_EQ(headings, codes);
}

/// The page's own check runs the examples and compares what they print.
TEST(ExplainPageTest, hasAnExampleThatReachesEachFinding) {
    const std::string part = findingsPart();
    for (const Finding& finding : findingTable()) {
        const std::size_t begin = part.find("\n### " + std::string(finding.code) + "\n");
        ASSERT_NE(begin, std::string::npos) << finding.code;
        const std::string section = part.substr(begin, part.find("\n### ", begin + 1) - begin);
        const std::size_t example = section.find("\n```console\n$ qos-agent ");
        ASSERT_NE(example, std::string::npos) << finding.code;
        EXPECT_NE(section.find(std::string(finding.code) + ": ", example), std::string::npos)
            << finding.code;
    }
}

}  // namespace
}  // namespace QosAgent
