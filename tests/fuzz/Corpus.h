#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/fuzz/Entries.h"

namespace QosAgent {

struct CorpusFile {
    std::string name;
    std::string bytes;
};

/// The inputs that the tree keeps for an entry, by name; of those, the ones whose names begin so.
inline std::vector<CorpusFile> corpusOf(const FuzzEntry& entry, std::string_view nameBegin = "") {
    std::vector<CorpusFile> files;
    const auto folder = std::filesystem::path("tests/fuzz/corpus") / entry.name;
    for (const auto& file : std::filesystem::directory_iterator(folder)) {
        const std::string name = file.path().filename();
        if (!name.starts_with(nameBegin)) continue;
        std::ostringstream bytes;
        bytes << std::ifstream(file.path(), std::ios::binary).rdbuf();
        files.push_back({name, bytes.str()});
    }
    std::sort(files.begin(), files.end(),
              [](const auto& left, const auto& right) { return left.name < right.name; });
    return files;
}

}  // namespace QosAgent
