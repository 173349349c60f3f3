#include "taskdsl/task/fragment_kind.h"

#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

namespace morquill::taskdsl {

namespace {

constexpr std::array<std::string_view, 13> kindNames{
    "unknown", "document", "task_body", "process", "preprocess", "control", "mod",
    "when",    "meta",     "param",     "args",    "batch",      "text"};

struct SpellingRow {
    std::string_view spelling;
    FragmentKind kind;
};
constexpr std::array<SpellingRow, 20> spellings{{
    {"document", FragmentKind::document},  {"doc", FragmentKind::document},
    {"task", FragmentKind::task_body},     {"task_body", FragmentKind::task_body},
    {"taskbody", FragmentKind::task_body}, {"process", FragmentKind::process},
    {"command", FragmentKind::process},    {"commands", FragmentKind::process},
    {"cmd", FragmentKind::process},        {"preprocess", FragmentKind::preprocess},
    {"control", FragmentKind::control},    {"mod", FragmentKind::mod},
    {"when", FragmentKind::when},          {"meta", FragmentKind::meta},
    {"param", FragmentKind::param},        {"args", FragmentKind::args},
    {"batch", FragmentKind::batch},        {"text", FragmentKind::text},
    {"body", FragmentKind::text},          {"extrainput", FragmentKind::text},
}};

bool runsCommands(FragmentKind kind) noexcept {
    return kind == FragmentKind::process || kind == FragmentKind::preprocess;
}

} // namespace

std::string_view fragmentKindName(FragmentKind kind) noexcept {
    const auto index = static_cast<std::size_t>(kind);
    return index < kindNames.size() ? kindNames[index] : kindNames.front();
}

FragmentKind parseFragmentKind(std::string_view text) {
    auto spelling = toLower(trim(text));
    std::replace(spelling.begin(), spelling.end(), '-', '_');
    const auto row = std::find_if(spellings.begin(), spellings.end(),
                                  [&spelling](const SpellingRow& r) { return r.spelling == spelling; });
    return row == spellings.end() ? FragmentKind::unknown : row->kind;
}

bool kindFits(FragmentKind kind, FragmentExpansionScope scope) noexcept {
    return kind == FragmentKind::unknown || kind == scope || (runsCommands(kind) && runsCommands(scope));
}

} // namespace morquill::taskdsl
