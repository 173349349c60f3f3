#pragma once

#include "console/command_line.h"

#include <string>
#include <string_view>

/// The `template` command: words, options and messages. Every run function takes the untouched argument
/// vector and returns the exit status.
namespace morquill::templates {

/// Runs `template <word> ...`.
int runTemplate(int argc, char** argv);
/// Runs the forms without a command word, such as `-l` and `--merge`.
int runTemplateCompat(int argc, char** argv);

/// True for the arguments of such a form.
[[nodiscard]] bool isTemplateShape(console::Words arguments) noexcept;

/// How templates are listed.
enum class ListOrder { byName, byCategory };

// For the following functions, the words of the command begin at `firstArgument`; they throw
// `console::UsageError` for wrong ones.

/// Prints the list of names, or the view by category.
int runTemplateList(int argc, char** argv, int firstArgument, ListOrder order);
/// Merges templates into a task file.
int runTemplateMerge(int argc, char** argv, int firstArgument);
/// Writes the define section that a task file needs. Returns 0 once
/// both arguments are present, even when a message reports a failure.
int runTemplateVariable(int argc, char** argv, int firstArgument);

/// Fills the define section of a task file from the variable
/// template of that name and reports the result on the console.
void writeDefineSection(const std::string& taskPath, const std::string& templateName);

/// Prints the help of the command to standard output.
void printTemplateHelp(std::string_view programPath);

} // namespace morquill::templates
