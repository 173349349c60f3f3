#include "taskdsl/generate/fragment_header.h"

#include "support/text.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/include_line.h"

#include <set>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view fragmentKeyword = "&FRAGMENT";

/// The whole header on one line, without its keyword.
TakenLines<std::string> gatherHeader(const std::vector<SourceLine>& lines, std::size_t start,
                                     const SharedText& path) {
    const SourceLine& first = lines[start];
    const auto header = gatherParentheses(lines, start);
    switch (header.end) {
    case GatherEnd::unterminated:
        throw lineFault(first, path, "unterminated &FRAGMENT parameter list");
    case GatherEnd::unmatched:
        throw lineFault(first, path, "unmatched ')' in &FRAGMENT header");
    case GatherEnd::balanced:
        break;
    }
    return {std::string(trim(std::string_view(header.text).substr(fragmentKeyword.size()))), header.last + 1};
}

void readParameters(FragmentDefinition& fragment, std::string_view text) {
    std::set<std::string> names;
    for (const auto part : splitArguments(text)) {
        const auto equals = part.find('=');
        FragmentParameter parameter;
        parameter.name = trim(part.substr(0, equals));
        if (!isFragmentName(parameter.name)) {
            throw DiagnosticError("invalid fragment parameter name '" + parameter.name + "'");
        }
        if (!names.insert(parameter.name).second) {
            throw DiagnosticError("duplicate fragment parameter '" + parameter.name + "'");
        }
        parameter.required = equals == std::string_view::npos;
        if (!parameter.required) {
            parameter.defaultValue = unquote(part.substr(equals + 1));
        }
        fragment.parameters.push_back(std::move(parameter));
    }
}

} // namespace

TakenLines<FragmentDefinition> parseFragmentHeader(const std::vector<SourceLine>& lines, std::size_t start,
                                                   const SharedText& path, FragmentNaming naming) {
    const SourceLine& first = lines[start];
    if (first.kind() != LineKind::fragment) {
        throw DiagnosticError("expected &FRAGMENT declaration");
    }
    FragmentDefinition fragment;
    fragment.path = path;
    fragment.span = spanOfLine(path, first.lineNumber, first.text());
    const auto header = gatherHeader(lines, start, path);
    std::string_view rest = header.value;

    fragment.kindText = rest.substr(0, rest.find_first_of(" \t("));
    fragment.kind = parseFragmentKind(fragment.kindText);
    if (fragment.kind == FragmentKind::unknown) {
        throw DiagnosticError("unknown fragment kind '" + fragment.kindText + "'");
    }
    rest.remove_prefix(fragment.kindText.size());

    const auto open = rest.find('(');
    if (open != std::string_view::npos && rest.back() != ')') {
        throw DiagnosticError("unterminated fragment parameter list");
    }
    fragment.name = trim(rest.substr(0, open));
    if (fragment.name.empty() && naming == FragmentNaming::required) {
        throw DiagnosticError("library fragments must have a name");
    }
    if (!fragment.name.empty() && !isFragmentName(fragment.name)) {
        throw DiagnosticError("invalid fragment name '" + fragment.name + "'");
    }
    if (open != std::string_view::npos) {
        readParameters(fragment, rest.substr(open + 1, rest.size() - open - 2));
    }
    return {std::move(fragment), header.next};
}

} // namespace morquill::taskdsl
