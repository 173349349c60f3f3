#include "taskdsl/generate/yaml_section.h"

#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"
#include "taskdsl/base/line_fault.h"

#include <yaml-cpp/yaml.h>

#include <utility>

namespace morquill::taskdsl {

namespace {

/// Walks the nodes of one section. An alias makes two names for one node, so a small text can stand for a
/// huge or even an endless tree: what is taken out of it is counted.
class SectionWalk {
  public:
    SectionWalk(ValueMap& settingsOut, Collections& collectionsOut)
        : settings(settingsOut), collections(collectionsOut) {}

    void readRoot(const YAML::Node& root) {
        if (!root.IsDefined() || root.IsNull()) {
            return;
        }
        if (!root.IsMap()) {
            throw DiagnosticError("structured prelude must be a YAML mapping");
        }
        for (const auto& pair : root) {
            auto key = pair.first.as<std::string>();
            if (pair.second.IsSequence()) {
                auto items = readItems(pair.second);
                collections.insert_or_assign(std::move(key), std::move(items));
            } else {
                flatten(pair.second, key, settings, 0);
            }
        }
    }

  private:
    std::vector<ValueMap> readItems(const YAML::Node& sequence) {
        std::vector<ValueMap> items;
        std::size_t position = 0;
        for (const auto& node : sequence) {
            ++position;
            ValueMap item;
            if (node.IsScalar()) {
                take(item, "value", node.Scalar());
            } else if (node.IsMap()) {
                flatten(node, "", item, 0);
            } else {
                continue;
            }
            item.insert_or_assign("index", std::to_string(position));
            items.push_back(std::move(item));
        }
        return items;
    }

    void flatten(const YAML::Node& node, const std::string& key, ValueMap& values, std::size_t depth) {
        if (node.IsScalar()) {
            take(values, key, node.Scalar());
            return;
        }
        if (!node.IsMap()) {
            return;
        }
        if (depth == limits::yamlDepth) {
            throw YAML::RepresentationException(YAML::Mark::null_mark(),
                                                "mappings are nested more than " +
                                                    std::to_string(limits::yamlDepth) + " deep");
        }
        for (const auto& pair : node) {
            const auto name = pair.first.as<std::string>();
            count(key.size() + name.size());
            flatten(pair.second, key.empty() ? name : key + "." + name, values, depth + 1);
        }
    }

    void take(ValueMap& values, const std::string& key, const std::string& value) {
        count(value.size());
        values.insert_or_assign(key, value);
    }

    void count(std::size_t bytes) {
        ++entries;
        text += bytes;
        if (entries > limits::yamlEntries || text > limits::yamlText) {
            throw YAML::RepresentationException(YAML::Mark::null_mark(),
                                                "the section stands for more than " +
                                                    std::to_string(limits::yamlEntries) + " values or " +
                                                    std::to_string(limits::yamlText >> 20) + " MiB of text");
        }
    }

    ValueMap& settings;
    Collections& collections;
    std::size_t entries = 0;
    std::size_t text = 0;
};

/// The library's own message, with the line as it is counted in the file.
std::string reasonOf(const YAML::Exception& error, std::size_t firstLine) {
    if (error.mark.is_null()) {
        return error.msg;
    }
    return "yaml-cpp: error at line " +
           std::to_string(static_cast<std::size_t>(error.mark.line) + firstLine) + ", column " +
           std::to_string(error.mark.column + 1) + ": " + error.msg;
}

} // namespace

void readYamlSection(const std::string& text, const std::string& path, std::size_t firstLine,
                     ValueMap& settings, Collections& collections) {
    try {
        SectionWalk(settings, collections).readRoot(YAML::Load(text));
    } catch (const YAML::Exception& error) {
        throw DiagnosticError("failed to parse YAML prelude in '" + shownPath(path) +
                              "': " + reasonOf(error, firstLine));
    }
}

} // namespace morquill::taskdsl
