#include "templates/selector.h"

#include "frontend/console.h"
#include "templates/selector_dialogues.h"
#include "templates/terminal.h"

#include <utility>

#include <unistd.h>

namespace morquill::templates {

int runSelector() {
    const std::string path = resolveTemplatePath();
    auto library = loadTemplateLibrary(path);
    if (library.templates.empty()) {
        frontend::writeErr("[mqkit][ERROR] no templates were found in directory " + path + "\n");
        return 1;
    }
    auto state = makeSelectorState(std::move(library), loadVariableTemplates(path));
    SelectorConsole console;
    console.print = frontend::writeOut;
    console.clearScreen = clearScreen;
    console.readKey = [] {
        frontend::flushOut();
        return readKey(STDIN_FILENO);
    };
    console.readLine = [] {
        frontend::flushOut();
        return readLine(STDIN_FILENO);
    };
    const TerminalSession session;
    runSelectorLoop(std::move(state), console);
    frontend::flushOut();
    return 0;
}

} // namespace morquill::templates
