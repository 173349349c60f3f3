#include "taskdsl/task/fragment_kind.h"

#include "support/word_table.h"

#include <algorithm>
#include <string>

namespace morquill::taskdsl {

namespace {

/// `unknown` has a name but no spelling.
constexpr auto kindWords = wordTable<FragmentKind>({
    {"unknown", FragmentKind::unknown},
    {"document", FragmentKind::document},
    {"doc", FragmentKind::document},
    {"task_body", FragmentKind::task_body},
    {"task", FragmentKind::task_body},
    {"taskbody", FragmentKind::task_body},
    {"process", FragmentKind::process},
    {"command", FragmentKind::process},
    {"commands", FragmentKind::process},
    {"cmd", FragmentKind::process},
    {"preprocess", FragmentKind::preprocess},
    {"control", FragmentKind::control},
    {"mod", FragmentKind::mod},
    {"when", FragmentKind::when},
    {"meta", FragmentKind::meta},
    {"param", FragmentKind::param},
    {"args", FragmentKind::args},
    {"batch", FragmentKind::batch},
    {"text", FragmentKind::text},
    {"body", FragmentKind::text},
    {"extrainput", FragmentKind::text},
});

bool runsCommands(FragmentKind kind) noexcept {
    return kind == FragmentKind::process || kind == FragmentKind::preprocess;
}

} // namespace

std::string_view fragmentKindName(FragmentKind kind) noexcept {
    return kindWords.nameOf(kind);
}

FragmentKind parseFragmentKind(std::string_view text) {
    std::string spelling(trim(text));
    std::replace(spelling.begin(), spelling.end(), '-', '_');
    return kindWords.find(spelling).value_or(FragmentKind::unknown);
}

bool kindFits(FragmentKind kind, FragmentExpansionScope scope) noexcept {
    return kind == FragmentKind::unknown || kind == scope || (runsCommands(kind) && runsCommands(scope));
}

} // namespace morquill::taskdsl
