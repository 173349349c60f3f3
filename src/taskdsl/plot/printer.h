#pragma once

#include "support/line_builder.h"
#include "taskdsl/plot/model.h"

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// What the parts of the plot printer share. Internal to the printer.
namespace morquill::taskdsl::plot {

/// An expression in printed form.
struct PrintedValue {
    std::string text;
    ExprRef reads;    ///< what the text alone reads as; empty when it is not an expression
    bool odd = false; ///< a walk through the statement may stop inside the text
};

/// The text of a plot as it grows, line by line. Words and expressions are printed bare where they read back,
/// otherwise in quotes or parentheses; what reads back in no form is noted.
class Printer {
  public:
    Printer(PlotKind kind, std::string_view indent) : kind_(kind), out_(indent) { out_.reserve(typicalSize); }

    /// The lines from here on are indented by one level more, or one less.
    void deeper() noexcept { out_.deeper(); }
    void shallower() noexcept { out_.shallower(); }

    /// Begins a line.
    Printer& line(std::string_view text);
    Printer& word(std::string_view text);
    Printer& wordIf(bool condition, std::string_view text) { return condition ? word(text) : *this; }
    Printer& quoted(std::string_view text);
    /// ` <keyword> <quoted text>`, unless the text is empty.
    Printer& quotedOption(std::string_view keyword, std::string_view text);
    void end() { out_.close(); }

    void quotedLine(std::string_view keyword, std::string_view text);
    void lineIf(bool condition, std::string_view text);

    /// A word that `settle` may quote.
    Printer& name(std::string_view text);
    /// ` <keyword> <name>`, unless the text is empty.
    Printer& nameOption(std::string_view keyword, std::string_view text);
    /// An expression that `settle` may put in parentheses. With `colonOpensBody` it must not end in a colon.
    Printer& expression(const PrintedValue& value, std::initializer_list<std::string_view> keywords,
                        bool colonOpensBody = false);

    /// The expression in print; what it loses is noted.
    [[nodiscard]] PrintedValue valueOf(const ExprRef& expression);
    /// The number in print; what it loses is noted.
    [[nodiscard]] std::string number(double value);

    /// Writes one statement and makes sure that it reads back: `write` prints it, `expected` makes the
    /// data that it must read as where it is the only statement. Only names and expressions that may be
    /// misread are tried.
    template <class Write, class Expected>
    void settle(const Write& write, const Expected& expected) {
        const std::size_t begin = out_.size();
        if (const Pieces doubtful = attempt(begin, write, 0); doubtful != 0) {
            settleDoubtful(begin, doubtful, write, expected());
        }
    }

    /// `<keyword> <word> ...`; `expected` makes the data that a list of words must read as.
    template <class Expected>
    void words(std::string_view keyword, const std::vector<std::string>& list, const Expected& expected) {
        const auto readsBack = [&](const std::vector<std::string>& read, const std::string& text) {
            return !faultOf(std::string(keyword) + text, expected(read));
        };
        std::string text;
        bool doubtful = false;
        for (std::size_t i = 0; i < list.size(); ++i) {
            if (isPlainWord(list[i])) {
                text += " " + list[i];
                continue;
            }
            doubtful = true;
            const bool last = i + 1 == list.size();
            const auto read = last ? std::vector{list[i]} : std::vector{list[i], std::string("x")};
            text += " " + (readsBack(read, " " + list[i] + (last ? "" : " x")) ? list[i] : inQuotes(list[i]));
        }
        if (doubtful && !readsBack(list, text)) {
            text.clear();
            for (const auto& entry : list) {
                text += " " + (isPlainWord(entry) ? entry : inQuotes(entry));
            }
        }
        out_.line(keyword, text);
    }

    /// Notes why the plot does not read back.
    void lose(std::string reason);
    /// The reasons, each once.
    [[nodiscard]] const std::vector<std::string>& losses() const noexcept { return losses_; }

    /// The first fault of the lines, read as the body of a plot of this kind; nothing when they
    /// read as `expected`.
    [[nodiscard]] std::optional<std::string> faultOf(std::string_view lines, const PlotData& expected) const;

    /// True for a word that means itself wherever a plot prints one.
    [[nodiscard]] static bool isPlainWord(std::string_view word) noexcept;

    /// What has been printed so far.
    [[nodiscard]] std::string_view text() const noexcept { return out_.text(); }
    [[nodiscard]] std::string take() { return out_.take(); }

  private:
    /// Names and expressions of a line, a bit each, in their order.
    using Pieces = unsigned;

    /// Writes the line anew, the pieces in `guarded` quoted or in parentheses; returns the pieces that
    /// may be misread.
    template <class Write>
    Pieces attempt(std::size_t begin, const Write& write, Pieces guarded) {
        out_.cutTo(begin);
        guarded_ = guarded;
        piece_ = 1;
        doubtful_ = 0;
        write();
        return doubtful_;
    }

    template <class Write>
    void settleDoubtful(std::size_t begin, Pieces doubtful, const Write& write, const PlotData& expected) {
        const auto faultWith = [&](Pieces guarded) {
            (void)attempt(begin, write, guarded);
            return faultOf(out_.textFrom(begin), expected);
        };
        Pieces needed = 0;
        for (Pieces piece = 1; piece != 0 && piece <= doubtful; piece <<= 1U) {
            if ((doubtful & piece) != 0 && faultWith(doubtful & ~piece)) {
                needed |= piece;
            }
        }
        if (faultWith(needed) && faultWith(doubtful)) {
            const auto fault = faultWith(0);
            if (fault && losses_.empty()) {
                lose(*fault);
            }
        }
    }

    /// Prints the next piece of the line in one of its forms.
    Printer& piece(bool doubtful, std::string_view plain, std::string (*guard)(std::string_view));

    static std::string inQuotes(std::string_view text);

    static constexpr std::size_t typicalSize = 1024; ///< of a plot in print, in bytes

    PlotKind kind_;
    LineBuilder out_;
    std::vector<std::string> losses_;
    Pieces guarded_ = 0;
    Pieces piece_ = 1;
    Pieces doubtful_ = 0;
};

} // namespace morquill::taskdsl::plot
