#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "agent/database/Document.h"
#include "agent/output/Output.h"
#include "agent/streams/Operations.h"
#include "tests/agent/support/ChangeRecorder.h"

namespace QosAgent {

/// A temporary file that an `Output` writes to.
class OutputFile {
public:
    OutputFile() : file_(std::tmpfile(), std::fclose), output_(::fileno(file_.get())) {}
    Output& output() { return output_; }
    /// All that was written so far.
    std::string text() const {
        std::string text(static_cast<std::size_t>(::lseek(fd(), 0, SEEK_END)), '\0');
        EXPECT_EQ(::pread(fd(), text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
        return text;
    }

private:
    int fd() const { return ::fileno(file_.get()); }

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file_;
    Output output_;
};

/// A database without a plug-in, worked on by text.
class TextDatabase : private StreamOutput {
public:
    TextDatabase() : host(database.entityManager()), operations(database, configuration, host) {}

    /// Merges a state document.
    std::optional<Fault> merge(std::string_view text) {
        const JsonResult json = parseJson(text);
        if (const auto* fault = std::get_if<Fault>(&json)) return *fault;
        const JsonValue document = std::get<Json>(json).root();
        if (auto fault = checkDocument(database, document)) return fault;
        mergeDocument(database, document);
        return {};
    }
    /// `COLUMN: MESSAGE` of a refused document; empty when it was merged.
    std::string load(std::string_view text) { return shown(merge(text)); }
    /// The same for a change-stream line.
    std::string apply(std::string_view line) { return shown(applyLine(line)); }
    std::optional<Fault> applyLine(std::string_view line) { return operations.apply(line, *this); }
    std::string update(const std::string& path, const std::string& value) {
        return apply(R"({"update":")" + path + R"(","value":)" + value + "}");
    }
    std::string replace(const std::string& path, const std::string& value) {
        return apply(R"({"replace":")" + path + R"(","value":)" + value + "}");
    }
    std::string remove(const std::string& path) { return apply(R"({"delete":")" + path + "\"}"); }
    std::string touch(const std::string& path) { return apply(R"({"touch":")" + path + "\"}"); }
    /// One subtree as it is printed.
    std::string at(std::string_view mount) const {
        std::string text;
        JsonWriter writer(text);
        writeEntity(writer, *database.subtreeAt(mount)->root);
        return text;
    }
    std::string all() const {
        std::string text;
        JsonWriter writer(text);
        writeDatabase(writer, database);
        return text;
    }
    static std::string shown(const std::optional<Fault>& fault) {
        return fault ? std::to_string(fault->offset + 1) + ": " + fault->message : "";
    }

    Database database;
    Configuration configuration{database};
    PluginHost host;
    OutputFile out;
    Operations operations;
    /// What the last `follow` line asked for.
    std::optional<bool> follows;

private:
    void line(std::string_view text) override { out.output().line(text); }
    void followIs(bool isWanted) override { follows = isWanted; }
};

using Changes = std::vector<std::string>;

}  // namespace QosAgent
