#include "templates/selector/selector_dialogues.h"

#include "console/messages.h"
#include "support/file.h"
#include "support/number.h"
#include "support/text.h"
#include "templates/selector/selector_screen.h"

#include <utility>
#include <vector>

namespace morquill::templates {

namespace {

/// Waits for a key; false at the end of input.
bool waitForKey(const SelectorConsole& console) {
    console.print("Press any key to continue...");
    return console.readKey() != key::endOfInput;
}

/// The index that the text names, from 0; nothing unless it is a number from 1 to `count`.
std::optional<std::size_t> readIndex(std::string_view text, std::size_t count) {
    const auto number = readPositiveInt(trim(text));
    if (!number || static_cast<std::size_t>(*number) > count) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(*number) - 1;
}

std::string note(std::string_view text) {
    return console::tagged(console::MessageKind::note, text);
}

std::string error(std::string_view text) {
    return console::tagged(console::MessageKind::error, text);
}

std::string numbered(std::size_t index) {
    return "  [" + std::to_string(index + 1) + "] ";
}

/// What a template says about the variables in question.
std::string matchingValues(const VariableTemplate& entry, const std::vector<std::string>& names) {
    std::vector<std::string> pairs;
    for (const auto& name : names) {
        if (const auto found = entry.values.find(name); found != entry.values.end()) {
            pairs.push_back(name + " = " + found->second);
        }
    }
    return pairs.empty() ? "(no matching variables)" : "(" + join(pairs, ", ") + ")";
}

/// The part of the dialogue that takes values from a variable template. False at the end of input.
bool loadValues(SelectorState& state, const std::vector<std::string>& names, const SelectorConsole& console) {
    const auto& templates = state.variableTemplates;
    if (templates.empty()) {
        console.print(note("No matching variable templates were found under the template directory.\n\n"));
        return true;
    }
    std::string text = note("choose a variable template to load:\n");
    for (std::size_t i = 0; i < templates.size(); ++i) {
        text += numbered(i) + templates[i].name + " " + matchingValues(templates[i], names) + "\n";
    }
    console.print(text + note("Template index?: "));
    const auto answer = console.readLine();
    if (!answer) {
        return false;
    }
    const auto index = readIndex(*answer, templates.size());
    if (!index) {
        console.print(note("Invalid template index\n\n"));
        return true;
    }
    const auto& values = templates[*index].values;
    for (const auto& name : names) {
        if (const auto found = values.find(name); found != values.end()) {
            state.variableValues.insert_or_assign(name, found->second);
        }
    }
    console.print(note("done.\n\n"));
    return true;
}

/// The part of the dialogue that sets one variable. False at the end of input.
bool setValue(SelectorState& state, const std::vector<std::string>& names, std::string_view answer,
              const SelectorConsole& console) {
    const auto index = readIndex(answer, names.size());
    if (!index) {
        console.print(note("Invalid variable index\n\n"));
        return true;
    }
    console.print(note("input a new value: "));
    auto value = console.readLine();
    if (!value) {
        return false;
    }
    state.variableValues.insert_or_assign(names[*index], std::move(*value));
    console.print(note("done.\n\n"));
    return true;
}

/// One round of the dialogue. False when the user leaves it.
bool editOnce(SelectorState& state, const std::vector<std::string>& names, const SelectorConsole& console) {
    std::string text = note("Variables used by selected templates:\n");
    for (std::size_t i = 0; i < names.size(); ++i) {
        text += numbered(i) + names[i] + " = " + shownValue(state, names[i]) + "\n";
    }
    console.print(text + note("choose a variable to set or change its value;\n"
                              "        input 't' to load variable template;\n"
                              "        input 'q' to return to template selection;\n"
                              "        Variable index?: "));
    const auto line = console.readLine();
    const auto answer = line ? trim(*line) : std::string_view("q");
    if (equalsNoCase(answer, "q")) {
        return false;
    }
    return equalsNoCase(answer, "t") ? loadValues(state, names, console)
                                     : setValue(state, names, answer, console);
}

std::string outputName(const std::string& answer) {
    if (answer.empty()) {
        return "generated_task.mq";
    }
    // Anywhere in the name: "task.mq.old" stays as the user wrote it.
    return answer.find(".mq") == std::string::npos ? answer + ".mq" : answer;
}

std::string describeValues(const SelectorState& state) {
    const auto names = selectedVariables(state);
    std::string text = names.empty() ? "" : "\nVariables:\n";
    for (const auto& name : names) {
        text += "  - " + name + ": " + shownValue(state, name) + "\n";
    }
    return text;
}

} // namespace

SelectorState editVariables(SelectorState state, const SelectorConsole& console, bool& quit) {
    console.print(system::showCursor);
    console.clearScreen();
    console.print("=== Edit variables ===\n\n");
    const auto names = selectedVariables(state);
    if (names.empty()) {
        console.print("The selected templates have no required variables\n\n");
        quit = !waitForKey(console);
    } else {
        while (editOnce(state, names, console)) {
        }
    }
    state.previewText = composePreview(state);
    console.print(system::hideCursor);
    return state;
}

SelectorState generateTaskFile(SelectorState state, const SelectorConsole& console, bool& quit) {
    console.print(system::showCursor);
    console.clearScreen();
    console.print("=== Generate task file ===\n\n");
    if (state.selected.empty()) {
        console.print(error("no templates selected\n\n"));
        quit = !waitForKey(console);
        console.print(system::hideCursor);
        return state;
    }
    console.print("Output filename (default: generated_task.mq): ");
    const auto answer = console.readLine();
    if (!answer) { // no answer is no consent to overwrite a file
        console.print(system::hideCursor);
        return state;
    }
    const std::string name = outputName(*answer);
    state.previewText = composePreview(state);
    if (writeTextFile(name, state.previewText)) {
        console.print("\n" + note("wrote task file: ") + name + "\n" + describeValues(state));
    } else {
        console.print("\n" + error("could not write file ") + name + "\n");
    }
    console.print("\nPress q to quit, or any other key to continue editing...");
    const auto pressed = console.readKey();
    quit = pressed == 'q' || pressed == key::endOfInput;
    if (!quit) {
        console.print(system::hideCursor);
    }
    return state;
}

void runSelectorLoop(SelectorState state, const SelectorConsole& console) {
    console.print(system::hideCursor);
    for (bool quit = false; !quit;) {
        state = scrollToCursors(std::move(state));
        console.clearScreen();
        console.print(currentScreen(state));
        auto step = pressKey(std::move(state), console.readKey());
        state = std::move(step.state);
        switch (step.action) {
        case SelectorAction::none:
            break;
        case SelectorAction::quit:
            quit = true;
            break;
        case SelectorAction::edit:
            state = editVariables(std::move(state), console, quit);
            break;
        case SelectorAction::generate:
            state = generateTaskFile(std::move(state), console, quit);
            break;
        }
    }
    console.print(system::showCursor);
}

} // namespace morquill::templates
