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

/// Whether a dialogue has another round.
enum class DialogueProgress : std::uint8_t { open, over };

/// Waits for a key; the end of input ends the selector.
AfterDialogue waitForKey(const SelectorConsole& console) {
    console.print("Press any key to continue...");
    return console.readKey() == key::endOfInput ? AfterDialogue::quit : AfterDialogue::goOn;
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

/// The values that a variable template has for the given names, as shown in the dialogue.
std::string matchingValues(const VariableTemplate& entry, const std::vector<std::string>& names) {
    std::vector<std::string> pairs;
    for (const auto& name : names) {
        if (const auto found = entry.values.find(name); found != entry.values.end()) {
            pairs.push_back(name + " = " + found->second);
        }
    }
    return pairs.empty() ? "(no matching variables)" : "(" + join(pairs, ", ") + ")";
}

/// Takes values from a variable template. The end of input ends the dialogue.
DialogueProgress loadValues(SelectorState& state, const std::vector<std::string>& names,
                            const SelectorConsole& console) {
    const auto& templates = state.variableTemplates;
    if (templates.empty()) {
        console.print(note("No matching variable templates were found under the template directory.\n\n"));
        return DialogueProgress::open;
    }
    std::string text = note("choose a variable template to load:\n");
    for (std::size_t i = 0; i < templates.size(); ++i) {
        text += numbered(i) + templates[i].name + " " + matchingValues(templates[i], names) + "\n";
    }
    console.print(text + note("Template index?: "));
    const auto answer = console.readLine();
    if (!answer) {
        return DialogueProgress::over;
    }
    const auto index = readMenuIndex(*answer, templates.size(), MenuSign::none);
    if (!index) {
        console.print(note("Invalid template index\n\n"));
        return DialogueProgress::open;
    }
    const auto& values = templates[*index].values;
    for (const auto& name : names) {
        if (const auto found = values.find(name); found != values.end()) {
            state.variableValues.insert_or_assign(name, found->second);
        }
    }
    console.print(note("done.\n\n"));
    return DialogueProgress::open;
}

/// Sets one variable. The end of input ends the dialogue.
DialogueProgress setValue(SelectorState& state, const std::vector<std::string>& names,
                          std::string_view answer, const SelectorConsole& console) {
    const auto index = readMenuIndex(answer, names.size(), MenuSign::none);
    if (!index) {
        console.print(note("Invalid variable index\n\n"));
        return DialogueProgress::open;
    }
    console.print(note("input a new value: "));
    auto value = console.readLine();
    if (!value) {
        return DialogueProgress::over;
    }
    state.variableValues.insert_or_assign(names[*index], std::move(*value));
    console.print(note("done.\n\n"));
    return DialogueProgress::open;
}

/// One round of the dialogue, which ends when the user leaves it.
DialogueProgress editOnce(SelectorState& state, const std::vector<std::string>& names,
                          const SelectorConsole& console) {
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
        return DialogueProgress::over;
    }
    return equalsNoCase(answer, "t") ? loadValues(state, names, console)
                                     : setValue(state, names, answer, console);
}

std::string outputName(const std::string& answer) {
    if (answer.empty()) {
        return "generated_task.mq";
    }
    // Anywhere in the name, so that "task.mq.old" stays as the user wrote it.
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

DialogueOutcome editVariables(SelectorState state, const SelectorConsole& console) {
    console.print(system::showCursor);
    console.clearScreen();
    console.print("=== Edit variables ===\n\n");
    const auto names = selectedVariables(state);
    auto after = AfterDialogue::goOn;
    if (names.empty()) {
        console.print("The selected templates have no required variables\n\n");
        after = waitForKey(console);
    } else {
        while (editOnce(state, names, console) == DialogueProgress::open) {
        }
    }
    state.previewText = composePreview(state);
    console.print(system::hideCursor);
    return {std::move(state), after};
}

DialogueOutcome generateTaskFile(SelectorState state, const SelectorConsole& console) {
    console.print(system::showCursor);
    console.clearScreen();
    console.print("=== Generate task file ===\n\n");
    if (state.selected.empty()) {
        console.print(error("no templates selected\n\n"));
        const auto after = waitForKey(console);
        console.print(system::hideCursor);
        return {std::move(state), after};
    }
    console.print("Output filename (default: generated_task.mq): ");
    const auto answer = console.readLine();
    if (!answer) { // the end of input is no consent to overwrite a file
        console.print(system::hideCursor);
        return {std::move(state), AfterDialogue::goOn};
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
    if (pressed == 'q' || pressed == key::endOfInput) {
        return {std::move(state), AfterDialogue::quit};
    }
    console.print(system::hideCursor);
    return {std::move(state), AfterDialogue::goOn};
}

void runSelectorLoop(SelectorState state, const SelectorConsole& console) {
    console.print(system::hideCursor);
    DialogueOutcome turn{std::move(state)};
    while (turn.after == AfterDialogue::goOn) {
        turn.state = scrollToCursors(std::move(turn.state));
        console.clearScreen();
        console.print(currentScreen(turn.state));
        auto step = pressKey(std::move(turn.state), console.readKey());
        switch (step.action) {
        case SelectorAction::none:
            turn = {std::move(step.state), AfterDialogue::goOn};
            break;
        case SelectorAction::quit:
            turn = {std::move(step.state), AfterDialogue::quit};
            break;
        case SelectorAction::edit:
            turn = editVariables(std::move(step.state), console);
            break;
        case SelectorAction::generate:
            turn = generateTaskFile(std::move(step.state), console);
            break;
        }
    }
    console.print(system::showCursor);
}

} // namespace morquill::templates
