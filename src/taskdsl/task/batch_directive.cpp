// %batch: lanes, collected files and clustering. Strict: every problem ends the parse.

#include "taskdsl/base/shell_words.h"
#include "taskdsl/task/directive_reader.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

using Words = std::vector<std::string>;

/// What the entries of one block have set so far; the task takes it over at the end of the block.
struct BatchBlock {
    std::optional<std::int32_t> lanes;
    std::vector<BatchCollect> collect;
    BatchCluster cluster;
};

std::string joinFrom(const Words& words, std::size_t first) {
    return join(Words(words.begin() + static_cast<std::ptrdiff_t>(first), words.end()), " ");
}

void readLane(const DirectiveReader& reader, const Words& words, BatchBlock& block) {
    if (block.lanes) {
        reader.failHere("has duplicate %batch lane entries");
    }
    if (words.size() == 2) {
        block.lanes = readPositiveInt(words[1]);
    }
    if (!block.lanes) {
        reader.failHere("has invalid %batch lane entry; expected 'lane <positive-integer>'");
    }
}

void readCollect(const DirectiveReader& reader, const Words& words, BatchBlock& block) {
    BatchCollect entry;
    std::size_t next = 1;
    if (next < words.size() &&
        (equalsNoCase(words[next], "required") || equalsNoCase(words[next], "--required"))) {
        entry.required = true;
        ++next;
    }
    if (next >= words.size()) {
        reader.failHere(
            "has invalid %batch collect entry; expected 'collect [required] <pattern> [as <destination>]'");
    }
    entry.pattern = trim(words[next++]);
    if (entry.pattern.empty()) {
        reader.failHere("has empty %batch collect source pattern");
    }
    if (next < words.size()) {
        const std::string& link = words[next++];
        if (!equalsNoCase(link, "as") && !equalsNoCase(link, "to")) {
            reader.failHere(
                "has invalid %batch collect entry; use 'as' or 'to' before the destination pattern");
        }
        entry.destination = trim(joinFrom(words, next));
        if (entry.destination.empty()) {
            reader.failHere("has invalid %batch collect destination; expected a path after '" + link + "'");
        }
    }
    block.collect.push_back(std::move(entry));
}

struct ClusterOption {
    std::string_view canonical;
    std::array<std::string_view, 4> spellings;
    double BatchCluster::*value;
    bool (*inRange)(double);
    std::string_view requirement; ///< the message for a value out of range
};

// NaN is not a finite number and never gets here.
constexpr std::array<ClusterOption, 5> clusterOptions{{
    {"geo",
     {"geo", "geometry", "geo-thresh", "geometry-threshold"},
     &BatchCluster::geometryThreshold,
     [](double v) { return v > 0; },
     "geo to be positive"},
    {"energy",
     {"energy", "ener", "energy-threshold", "ener-thresh"},
     &BatchCluster::energyThreshold,
     [](double v) { return v > 0; },
     "energy to be positive or off"},
    {"temperature",
     {"temperature", "temp", "", ""},
     &BatchCluster::temperature,
     [](double v) { return v > 0; },
     "temperature to be positive"},
    {"min",
     {"min", "weight", "boltz-thresh", ""},
     &BatchCluster::minWeight,
     [](double v) { return v >= 0 && v < 1; },
     "min to be in [0, 1)"},
    {"accum",
     {"accum", "boltz-accum", "", ""},
     &BatchCluster::accumulation,
     [](double v) { return v > 0 && v <= 1; },
     "accum to be in (0, 1]"},
}};

void readClusterMetric(const DirectiveReader& reader, std::string_view word, BatchCluster& cluster) {
    const std::string metric = toLower(word);
    if (metric == "rmsd") {
        cluster.metric = ClusterMetric::rmsd;
    } else if (metric != "dist" && metric != "distance" && metric != "fingerprint") {
        reader.failHere("has invalid %batch cluster metric '" + metric + "'; expected 'dist' or 'rmsd'");
    }
}

/// Reads one `key=value` word. `given` holds the options seen so far, by their place in the table.
void readClusterOption(const DirectiveReader& reader, const std::string& word, BatchCluster& cluster,
                       std::array<bool, clusterOptions.size()>& given) {
    const auto equals = word.find('=');
    const std::string key = toLower(trim(std::string_view(word).substr(0, equals)));
    const std::string value(equals == std::string::npos ? std::string_view{}
                                                        : trim(std::string_view(word).substr(equals + 1)));
    if (key.empty() || value.empty()) {
        reader.failHere("has invalid %batch cluster option '" + word + "'; expected key=value");
    }
    const auto* option =
        std::find_if(clusterOptions.begin(), clusterOptions.end(), [&key](const ClusterOption& o) {
            return std::find(o.spellings.begin(), o.spellings.end(), key) != o.spellings.end();
        });
    if (option == clusterOptions.end()) {
        reader.failHere("has unknown %batch cluster option '" + key + "'");
    }
    const std::string canonical(option->canonical);
    bool& seen = given[static_cast<std::size_t>(option - clusterOptions.begin())];
    if (std::exchange(seen, true)) {
        reader.failHere("has duplicate %batch cluster option '" + canonical + "'");
    }
    if (canonical == "energy" && equalsNoCase(value, "off")) {
        cluster.energyOff = true;
        return;
    }
    const auto number = readDouble(value);
    if (!number || !std::isfinite(*number)) {
        reader.failHere("has invalid numeric value '" + value + "' for %batch cluster option '" + canonical +
                        "'");
    }
    if (!option->inRange(*number)) {
        reader.failHere("requires cluster " + std::string(option->requirement));
    }
    cluster.*option->value = *number;
    cluster.hasMinWeight = cluster.hasMinWeight || canonical == "min";
    cluster.hasAccumulation = cluster.hasAccumulation || canonical == "accum";
}

void readCluster(const DirectiveReader& reader, const Words& words, BatchBlock& block) {
    if (block.cluster.present) {
        reader.failHere("has duplicate %batch cluster entries");
    }
    BatchCluster cluster;
    cluster.present = true;
    std::size_t next = 1;
    if (next < words.size() && words[next].find('=') == std::string::npos) {
        readClusterMetric(reader, words[next++], cluster);
    }
    std::array<bool, clusterOptions.size()> given{};
    for (; next < words.size(); ++next) {
        readClusterOption(reader, words[next], cluster, given);
    }
    if (cluster.energyOff) {
        if (cluster.metric != ClusterMetric::rmsd) {
            reader.failHere("only permits cluster energy=off with the rmsd metric");
        }
        if (cluster.hasMinWeight || cluster.hasAccumulation) {
            reader.failHere("cannot combine cluster energy=off with Boltzmann filtering");
        }
    }
    block.cluster = cluster;
}

struct BatchRow {
    std::string_view key;
    void (*read)(const DirectiveReader&, const Words&, BatchBlock&);
};

constexpr std::array<BatchRow, 4> batchTable{{
    {"lane", readLane},
    {"lanes", readLane},
    {"collect", readCollect},
    {"cluster", readCluster},
}};

} // namespace

void readBatchDirective(DirectiveReader& reader) {
    TaskInfo& task = reader.task;
    BatchBlock block;
    if (!reader.value.empty()) {
        block.lanes = readPositiveInt(reader.value);
        if (!block.lanes) {
            reader.fail("has invalid %batch value '" + std::string(reader.value) +
                        "'; expected a positive integer");
        }
    } else {
        while (const auto line = reader.nextFilledLine()) {
            const auto words = splitShellWords(*line);
            if (words.empty()) {
                continue;
            }
            const std::string key = toLower(words[0]);
            const auto* row = std::find_if(batchTable.begin(), batchTable.end(),
                                           [&key](const BatchRow& r) { return r.key == key; });
            if (row == batchTable.end()) {
                reader.failHere("has unknown %batch block key '" + key +
                                "'; expected 'lane', 'collect', or 'cluster'");
            }
            row->read(reader, words, block);
        }
        if (!block.lanes) {
            reader.fail("has a %batch block without 'lane <positive-integer>'");
        }
    }
    task.batchLanes = *block.lanes;
    task.batchCollect =
        block.collect.empty() ? Shared<std::vector<BatchCollect>>() : std::move(block.collect);
    task.batchCluster = block.cluster.present ? Shared<BatchCluster>(block.cluster) : Shared<BatchCluster>();
}

} // namespace morquill::taskdsl
