#include "project/rename/template_stub.h"

#include "console/library_file.h"
#include "project/cases/target.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/line_kind.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/include_line.h"
#include "taskdsl/generate/include_path.h"

namespace morquill::project {

std::optional<std::string> stubTemplate(const std::string& text, const std::string& path) {
    std::optional<std::string> found;
    for (const auto line : splitLines(skipByteOrderMark(text))) {
        const auto clean = taskdsl::cleanLine(line);
        if (clean.empty()) {
            continue;
        }
        if (found || taskdsl::kindOfCleanLine(clean) != taskdsl::LineKind::include) {
            return std::nullopt;
        }
        try {
            const auto include = taskdsl::parseIncludeLine(clean);
            found = taskdsl::resolveIncludePath(searchName(include), path, console::findLibraryFile);
        } catch (const taskdsl::DiagnosticError&) {
            return std::nullopt;
        }
        if (!found->ends_with(templateExtension) || !lookUpRegularFile(*found)) {
            return std::nullopt;
        }
    }
    return found ? std::optional(normalisedPath(*found)) : std::nullopt;
}

} // namespace morquill::project
