#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

#include "agent/configuration/ConfigurationTree.h"
#include "agent/store/Record.h"

/// The OpenConfig configuration as records: one for the root, and one for each entry of a list that
/// the configuration keeps apart, with all that it holds but such lists. A record's path has the
/// names without prefixes and the keys of the lists: `qos/classifiers/classifier/edge`.
namespace QosAgent {

/// Appends the edits that make the records of one configuration those of another. Looks only at
/// what the two do not share.
void writeDifference(const ConfigurationTree& before, const ConfigurationTree& after,
                     std::vector<RecordEdit>& edits);

/// Puts a configuration together from its records.
class ConfigurationLoader {
public:
    ConfigurationLoader();
    ~ConfigurationLoader();

    /// To be called for each record, in the order of `Store::read`. Returns why the record
    /// is refused; empty if it is not.
    std::string add(std::string_view path, std::string_view record);
    /// The configuration; one without a root if there was no record.
    ConfigurationTree take();

private:
    struct Part;
    struct Assembly;

    std::unordered_map<std::string, std::unique_ptr<Part>> parts_;
};

}  // namespace QosAgent
