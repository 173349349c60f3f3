#include "templates/selector/selector.h"

#include "console/console.h"
#include "console/messages.h"
#include "system/terminal.h"
#include "templates/selector/selector_dialogues.h"

#include <utility>

#include <unistd.h>

namespace morquill::templates {

namespace {

/// The screen as the user sees it: everything printed and typed since it was last cleared, so that it can be
/// drawn again after another program has used the terminal.
class Screen {
  public:
    Screen() = default;
    Screen(const Screen&) = delete;
    Screen& operator=(const Screen&) = delete;
    /// Shows the cursor, however the selector is left.
    ~Screen() {
        if (cursor_ == system::hideCursor) {
            console::writeOut(system::showCursor);
        }
        console::flushOut();
    }

    void print(std::string_view text) {
        if (text == system::hideCursor || text == system::showCursor) {
            cursor_ = text;
        } else {
            content_ += text;
        }
        console::writeOut(text);
    }
    void clear() {
        system::clearScreen();
        content_.clear();
    }
    [[nodiscard]] std::int32_t awaitKey() {
        console::flushOut();
        return system::readKey(STDIN_FILENO, [this] { redraw(); });
    }
    [[nodiscard]] std::optional<std::string> awaitLine() {
        console::flushOut();
        auto line = system::readLine(STDIN_FILENO, [this] { redraw(); });
        content_ += line.value_or("") + "\n";
        return line;
    }

  private:
    void redraw() const {
        system::clearScreen();
        console::writeOut(cursor_);
        console::writeOut(content_);
        console::flushOut();
    }

    std::string cursor_;
    std::string content_;
};

} // namespace

int runSelector() {
    const std::string path = resolveTemplatePath();
    auto library = loadTemplateLibrary(path);
    if (library.templates.empty()) {
        console::reportError("no templates were found in directory " + path);
        return 1;
    }
    auto state = makeSelectorState(std::move(library), loadVariableTemplates(path));
    const system::TerminalSession session;
    system::awaitTerminal(STDIN_FILENO);
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
