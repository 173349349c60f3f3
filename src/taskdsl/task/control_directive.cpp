// %control: resources and scheduling flags. A doubtful line warns and leaves the task as it was.

#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/base/shell_words.h"
#include "taskdsl/task/directive_reader.h"

#include "support/number.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>

namespace morquill::taskdsl {

namespace {

enum class KeyTest { prefix, word };

/// One line of the block, taken apart by the row that matched it.
struct ControlLine {
    DirectiveReader& reader;
    TaskInfo& task;
    std::string_view key;  ///< as written in the row
    std::string_view text; ///< the whole line
    std::string_view rest; ///< the text after the key's letters, trimmed
};

/// Returns whether the line declares a control of the task.
using ControlHandler = bool (*)(const ControlLine&);

struct ControlRow {
    std::string_view key;
    KeyTest test;
    ControlHandler read;
};

/// The second of the fields that single blanks separate: two blanks in a row make it empty.
std::optional<std::string_view> secondField(std::string_view text) noexcept {
    const auto blank = text.find(' ');
    if (blank == std::string_view::npos) {
        return std::nullopt;
    }
    const auto rest = text.substr(blank + 1);
    return rest.substr(0, rest.find(' '));
}

void warnLegacyName(const ControlLine& line, std::string_view modern) {
    line.reader.warn("uses legacy %control " + std::string(line.key) + "; use %control " +
                     std::string(modern) + ".");
}

void warnInvalid(const ControlLine& line, std::string_view value) {
    line.reader.warn("has invalid %control " + std::string(line.key) + " value '" + std::string(value) +
                     "'; ignoring it.");
}

void warnExtraTokens(const ControlLine& line, std::string_view canonicalKey) {
    line.reader.warn("has extra tokens after %control " + std::string(canonicalKey) +
                     " value; ignoring them.");
}

/// Reads an integer of at least `least` into a field of the task.
template <std::int32_t TaskInfo::*field, std::int32_t least>
bool readInteger(const ControlLine& line) {
    const auto text = secondField(line.text);
    if (!text) {
        return false;
    }
    const auto value = readLeadingInt(*text);
    if (!value || *value < least) {
        warnInvalid(line, *text);
        return false;
    }
    line.task.*field = *value;
    return true;
}

// The sign of the first two is checked where a header value may take their place.
constexpr std::int32_t anyInteger = std::numeric_limits<std::int32_t>::min();
constexpr ControlHandler readTotalCores = readInteger<&TaskInfo::totalCores, anyInteger>;
constexpr ControlHandler readTotalMemory = readInteger<&TaskInfo::totalMemory, anyInteger>;
constexpr ControlHandler readGpus = readInteger<&TaskInfo::gpuCount, 0>;
constexpr ControlHandler readGpuMemory = readInteger<&TaskInfo::gpuMemory, 0>;

bool readLegacyGpus(const ControlLine& line) {
    warnLegacyName(line, "gpus");
    return readGpus(line);
}

bool readGpuType(const ControlLine& line) {
    const auto blank = line.text.find(' ');
    if (blank == std::string_view::npos) {
        return false;
    }
    line.task.gpuType = trim(line.text.substr(blank));
    return true;
}

bool readLegacyGpuType(const ControlLine& line) {
    warnLegacyName(line, "gpu_type");
    return readGpuType(line);
}

bool readLegacyGpuMemory(const ControlLine& line) {
    warnLegacyName(line, "gpu_mem");
    return readGpuMemory(line);
}

bool readFinalGeom(const ControlLine& line) {
    // A value that the canonical writer quoted comes back whole, its escapes decoded.
    if (auto value = decodeCanonicalScalar(line.rest); value && !value->empty()) {
        line.task.finalGeom = *value;
        return true;
    }
    const auto words = splitShellWords(line.rest);
    if (words.empty() || words[0].empty()) {
        line.reader.warn("has empty %control finalgeom value; ignoring it.");
        return false;
    }
    line.task.finalGeom = words[0];
    if (words.size() > 1) {
        warnExtraTokens(line, "finalgeom");
    }
    return true;
}

bool readGuessConverter(const ControlLine& line) {
    const auto words = splitShellWords(line.rest);
    if (words.empty()) {
        line.reader.warn("has empty %control guess_converter value; ignoring it.");
        return true;
    }
    const std::string word = toLower(words[0]);
    if (isOneOfNoCase(word, {"multiwfn", "multi-wfn", "mwfn"})) {
        line.task.guessConverter = "multiwfn";
    } else if (word == "mokit") {
        line.task.guessConverter = word;
    } else if (isOneOfNoCase(word, {"none", "false", "off", "no", "0"})) {
        line.task.guessConverter.clear();
    } else {
        line.reader.warn("has unsupported %control guess_converter '" + word +
                         "'; supported values are mokit and multiwfn; ignoring it.");
    }
    if (words.size() > 1) {
        warnExtraTokens(line, "guess_converter");
    }
    return true;
}

bool readLegacyGuessConverter(const ControlLine& line) {
    warnLegacyName(line, "guess_converter");
    return readGuessConverter(line);
}

bool readGuess(const ControlLine& line) {
    if (line.rest.empty()) {
        return false;
    }
    line.task.guessEnabled = true;
    line.task.guessSourceTask = equalsNoCase(line.rest, "true") ? std::string_view{} : line.rest;
    return true;
}

/// An empty rest and any word other than a plain "no" mean true.
bool isLenientlyTrue(std::string_view rest) {
    return !isOneOfNoCase(rest, {"false", "no", "off", "0", "n"});
}

bool readWaitFreq(const ControlLine& line) {
    line.task.waitFreq = isLenientlyTrue(line.rest);
    return true;
}

bool readAlert(const ControlLine& line) {
    line.task.alert = isLenientlyTrue(line.rest);
    return true;
}

bool readExternalInput(const ControlLine& line) {
    line.task.externalInput = isLenientlyTrue(line.rest);
    return true;
}

bool readLocalFirst(const ControlLine& line) {
    if (line.rest.empty() || isOneOfNoCase(line.rest, {"true", "1", "on", "y", "yes"})) {
        line.task.localFirst = true;
        return true;
    }
    if (isOneOfNoCase(line.rest, {"false", "0", "no", "off", "n"})) {
        line.task.localFirst = false;
        return true;
    }
    warnInvalid(line, line.rest);
    return false;
}

bool readVerbosity(const ControlLine& line) {
    const auto field = secondField(line.text).value_or("");
    line.task.verbosity = field == "p" || field == "t" ? field : std::string_view();
    return true;
}

bool readGeom(const ControlLine& line) {
    if (line.rest.empty() || equalsNoCase(line.rest, "check")) {
        line.task.gaussianGeomControl = toLower(line.rest);
        return true;
    }
    line.reader.warn("has unsupported %control geom value '" + std::string(line.rest) +
                     "'; only 'check' is currently supported; ignoring it.");
    line.task.gaussianGeomControl.clear();
    return false;
}

bool refuseRunIf(const ControlLine& line) {
    line.reader.fail("uses removed '%control " + std::string(line.key) +
                     "' syntax; move the condition into a standalone '%when' block.");
}

// The first row that matches decides. `prefix`: the line begins with the key, whatever follows.
constexpr std::array<ControlRow, 20> controlTable{{
    {"totcore", KeyTest::prefix, readTotalCores},
    {"totmem", KeyTest::prefix, readTotalMemory},
    {"gpus", KeyTest::word, readGpus},
    {"totgpu", KeyTest::word, readLegacyGpus},
    {"gpu_type", KeyTest::word, readGpuType},
    {"gputype", KeyTest::word, readLegacyGpuType},
    {"gpu_mem", KeyTest::word, readGpuMemory},
    {"gpumem", KeyTest::word, readLegacyGpuMemory},
    {"finalgeom", KeyTest::word, readFinalGeom},
    {"guess_converter", KeyTest::word, readGuessConverter},
    {"guessconverter", KeyTest::word, readLegacyGuessConverter},
    {"guess", KeyTest::word, readGuess},
    {"waitfreq", KeyTest::prefix, readWaitFreq},
    {"alert", KeyTest::prefix, readAlert},
    {"localfirst", KeyTest::word, readLocalFirst},
    {"externalinp", KeyTest::prefix, readExternalInput},
    {"verbosity", KeyTest::prefix, readVerbosity},
    {"geom", KeyTest::prefix, readGeom},
    {"runifdef", KeyTest::prefix, refuseRunIf},
    {"runif", KeyTest::prefix, refuseRunIf},
}};

bool matches(const ControlRow& row, std::string_view text) noexcept {
    return row.test == KeyTest::prefix ? text.starts_with(row.key) : matchWord(text, row.key);
}

} // namespace

void readControlDirective(DirectiveReader& reader) {
    while (const auto text = reader.nextFilledLine()) {
        const auto* row = std::find_if(controlTable.begin(), controlTable.end(),
                                       [&text](const ControlRow& r) { return matches(r, *text); });
        if (row == controlTable.end()) {
            continue;
        }
        const ControlLine line{reader, reader.task, row->key, *text, trim(text->substr(row->key.size()))};
        if (row->read(line)) {
            reader.task.controlDeclared = true;
        }
    }
}

} // namespace morquill::taskdsl
