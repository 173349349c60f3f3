#include "templates/selector.h"

#include "frontend/console.h"
#include "templates/selector_dialogues.h"
#include "templates/terminal.h"

#include <utility>

#include <unistd.h>

namespace morquill::templates {

namespace {

/// The screen as the user sees it: what was printed and typed since it was last cleared, so that it can be
/// shown again after somebody else has used the terminal.
class Screen {
  public:
    Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    /// However the selector is left, the cursor is there afterwards.
    ~Screen() {
        if (cursor_ == hideCursor) {
            frontend::writeOut(showCursor);
        }
        frontend::flushOut();
    }

    void print(std::string_view text) {
        if (text == hideCursor || text == showCursor) {
            cursor_ = text;
        } else {
            content_ += text;
        }
        frontend::writeOut(text);
    }
    void clear() {
        clearScreen();
        content_.clear();
    }
    [[nodiscard]] std::int32_t awaitKey() {
        frontend::flushOut();
        return readKey(STDIN_FILENO, [this] { redraw(); });
    }
    [[nodiscard]] std::optional<std::string> awaitLine() {
        frontend::flushOut();
        auto line = readLine(STDIN_FILENO, [this] { redraw(); });
        content_ += line.value_or("") + "\n";
        return line;
    }

  private:
    void redraw() const {
        clearScreen();
        frontend::writeOut(cursor_);
        frontend::writeOut(content_);
        frontend::flushOut();
    }

    std::string cursor_;
    std::string content_;
};

} // namespace

int runSelector() {
    const std::string path = resolveTemplatePath();
    auto library = loadTemplateLibrary(path);
    if (library.templates.empty()) {
        frontend::writeErr("[mqkit][ERROR] no templates were found in directory " + path + "\n");
        return 1;
    }
    auto state = makeSelectorState(std::move(library), loadVariableTemplates(path));
    const TerminalSession session;
    awaitTerminal(STDIN_FILENO);
    Screen screen;
    SelectorConsole console;
    console.print = [&screen](std::string_view text) { screen.print(text); };
    console.clearScreen = [&screen] { screen.clear(); };
    console.readKey = [&screen] { return screen.awaitKey(); };
    console.readLine = [&screen] { return screen.awaitLine(); };
    runSelectorLoop(std::move(state), console);
    return 0;
}

} // namespace morquill::templates
