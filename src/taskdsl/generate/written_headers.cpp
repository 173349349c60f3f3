#include "taskdsl/generate/written_headers.h"

#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/generate/foreach.h"
#include "taskdsl/task/directive_reader.h"

#include <algorithm>
#include <array>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::array<std::string_view, 4> heredocDirectives{"body", "extrainput", "extrainputs", "keywords"};
constexpr std::array<std::string_view, 2> commandDirectives{"preprocess", "process"};

template <std::size_t n>
bool isOneOf(const std::array<std::string_view, n>& words, std::string_view word) noexcept {
    return std::find(words.begin(), words.end(), word) != words.end();
}

/// Walks the raw lines; what decides is whether a line belongs to something that takes lines as they are.
class HeaderScan {
  public:
    explicit HeaderScan(std::string_view text) : lines(splitLines(text)) {}

    std::vector<WrittenHeader> run() {
        for (; index < lines.size(); ++index) {
            readLine();
        }
        return std::move(headers);
    }

  private:
    void readLine() {
        const auto text = cleanLine(lines[index]);
        if (text.empty() || isLoopLine(text)) {
            return; // loop lines are gone before commands are read: one that is continued goes on behind them
        }
        if (continued) {
            continued = isContinuedCommand(text);
        } else if (beginsBlock(text, "@plot") || beginsBlock(text, "@derive")) {
            inTask = false;
            inCommands = false;
            skipTo("@end", cleanLine);
        } else if (const auto name = taskHeaderName(text); !name.empty()) {
            headers.push_back({name, index + 1});
            inTask = true;
            inCommands = false;
        } else if (const auto directive = directiveName(text); !directive.empty() && inTask) {
            readDirective(directive);
        } else {
            continued = inCommands && !isIncludeLine(text) && isContinuedCommand(text);
        }
    }

    static bool isLoopLine(std::string_view text) { return text == "@end" || parseForeachHeader(text).valid; }

    void readDirective(std::string_view directive) {
        const auto keyword = directive.substr(0, directive.find(' '));
        const auto value = trim(directive.substr(keyword.size()));
        inCommands = isOneOf(commandDirectives, keyword);
        if (isOneOf(heredocDirectives, keyword) && value.starts_with("<<")) {
            skipTo(heredocTerminator(value), trim);
        }
    }

    /// Moves to the next line of which `strip` leaves `end`, or behind the last line.
    void skipTo(std::string_view end, std::string_view (*strip)(std::string_view) noexcept) {
        do {
            ++index;
        } while (index < lines.size() && strip(lines[index]) != end);
    }

    std::vector<std::string_view> lines;
    std::vector<WrittenHeader> headers;
    std::size_t index = 0;
    bool inTask = false;
    bool inCommands = false; ///< behind %process or %preprocess
    bool continued = false;  ///< the last command ended in a backslash
};

} // namespace

std::vector<WrittenHeader> listWrittenHeaders(std::string_view text) {
    return HeaderScan(skipByteOrderMark(text)).run();
}

} // namespace morquill::taskdsl
