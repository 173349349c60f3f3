#pragma once

#include <string>
#include <string_view>

/// The `template` command: words, options and messages. Every run function takes the untouched argument
/// vector and returns the exit status.
namespace morquill::templates {

/// `template <word> ...`.
int runTemplate(int argc, char** argv);
/// The single-letter forms without command word, such as `-l` and `--merge`.
int runTemplateCompat(int argc, char** argv);

enum class ListOrder { byName, byCategory };

// The words behind the command stand from `firstArgument` on; what is wrong with them is thrown as
// `console::UsageError`.

/// The name list, or the view by category.
int runTemplateList(int argc, char** argv, int firstArgument, ListOrder order);
/// Merges templates into a task file.
int runTemplateMerge(int argc, char** argv, int firstArgument);
/// Writes the define section that a task file needs. The status is 0 once the two arguments are there, also
/// when a message reports a failure.
int runTemplateVariable(int argc, char** argv, int firstArgument);

/// Fills the define section of a task file from the variable template of that name and reports what was
/// done.
void writeDefineSection(const std::string& taskPath, const std::string& templateName);

/// The help of the command, on standard output.
void printTemplateHelp(std::string_view programPath);

} // namespace morquill::templates
