#include "templates/selector/selector.h"

#include "console/console.h"
#include "system/terminal.h"
#include "templates/selector/selector_dialogues.h"

#include <utility>

#include <unistd.h>

namespace morquill::templates {

int runSelector() {
    const std::string path = resolveTemplatePath();
    auto library = loadTemplateLibrary(path);
    if (library.templates.empty()) {
        console::writeErr("[mqkit][ERROR] no templates were found in directory " + path + "\n");
        return 1;
    }
    auto state = makeSelectorState(std::move(library), loadVariableTemplates(path));
    SelectorConsole console;
    console.print = console::writeOut;
    console.clearScreen = system::clearScreen;
    console.readKey = [] {
        console::flushOut();
        return system::readKey(STDIN_FILENO);
    };
    console.readLine = [] {
        console::flushOut();
        return system::readLine(STDIN_FILENO);
    };
    const system::TerminalSession session;
    runSelectorLoop(std::move(state), console);
    console::flushOut();
    return 0;
}

} // namespace morquill::templates
