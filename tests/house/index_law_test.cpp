// The index of the language server is made from the lines as they are written: here it is held against what
// the parser makes of the same files.

#include "lsp/index/file_index.h"

#include "project/rename/task_references.h"
#include "support/file.h"
#include "taskdsl/parser/task_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <set>

namespace morquill::lsp {
namespace {

using Names = std::set<std::string>;

std::vector<std::string> exampleFiles() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator("examples")) {
        const auto path = entry.path().string();
        if (path.ends_with(".mq") || path.ends_with(".projmq")) {
            files.push_back(path);
        }
    }
    EXPECT_GT(files.size(), 10U);
    return files;
}

/// The names of a kind and role in a text, those that hold a `[key]` left out.
Names indexed(std::string_view text, NameKind kind, NameRole role) {
    Names names;
    for (const auto& o : indexFile(text, FileForm::tasks).occurrences) {
        const auto name = nameOf(text, o);
        if (o.kind == kind && o.role == role && name.find('[') == std::string_view::npos) {
            names.emplace(name);
        }
    }
    return names;
}

/// True for a text whose lines stand as they are: no loop, include or fragment puts others in their place.
bool standsAlone(std::string_view text) {
    return text.find("@foreach") == std::string_view::npos && text.find("&INCLUDE") == std::string_view::npos;
}

TEST(IndexLaw, TasksAndTheirReferencesAreThoseOfTheParser) {
    std::size_t compared = 0;
    for (const auto& path : exampleFiles()) {
        const auto text = readTextFile(path).value();
        if (!standsAlone(text)) {
            continue;
        }
        const taskdsl::TaskParser parser({.legacyMultiSource = true});
        const auto document = parser.parseText(text, "");
        Names tasks;
        for (const auto& task : document.templateTasks) {
            if (task.name.find('[') == std::string::npos) {
                tasks.insert(task.name);
            }
        }
        EXPECT_EQ(indexed(text, NameKind::task, NameRole::definition), tasks) << path;
        Names tables;
        for (const auto& plot : document.plots) {
            if (plot.sourceKind == taskdsl::plot::PlotSourceKind::derived) {
                tables.insert(plot.sourceArgument);
            }
        }
        Names references;
        for (const auto& place : project::collectTaskReferences(document)) {
            for (const auto& reference : place.references) {
                const auto name = reference.form == project::ReferenceForm::field
                                      ? reference.text.substr(0, reference.text.find('.'))
                                      : reference.text;
                // The rename of the command line lists two things more: a word, and the tables that plots
                // show.
                if (name.find('[') == std::string::npos && name != "allothers" && !tables.contains(name)) {
                    references.insert(name);
                }
            }
        }
        // The index knows more: expressions of plots, patterns of tasks(...), thermo(...).
        EXPECT_THAT(indexed(text, NameKind::task, NameRole::reference), testing::IsSupersetOf(references))
            << path;
        ++compared;
    }
    EXPECT_GT(compared, 5U);
}

TEST(IndexLaw, DefinesAxesPlotsAndDerivesAreThoseOfTheParser) {
    for (const auto& path : exampleFiles()) {
        const auto text = readTextFile(path).value();
        const taskdsl::TaskParser parser({.legacyMultiSource = true});
        const auto document = parser.parseFile(path);
        Names axes;
        for (const auto& axis : document.matrixAxes) {
            if (!document.implicitContent.axes.contains(axis.key)) {
                axes.insert(axis.key);
            }
        }
        EXPECT_EQ(indexed(text, NameKind::axis, NameRole::definition), axes) << path;
        Names defines;
        for (const auto& [key, value] : document.defines) {
            if (!document.implicitContent.defines.contains(key)) {
                defines.insert(key);
            }
        }
        if (standsAlone(text)) {
            EXPECT_EQ(indexed(text, NameKind::define, NameRole::definition), defines) << path;
        }
        Names derives;
        for (const auto& derive : document.derives) {
            derives.insert(derive.spec.name);
        }
        EXPECT_EQ(indexed(text, NameKind::derive, NameRole::definition), derives) << path;
    }
}

TEST(IndexLaw, OccurrencesAreOrderedAndBlocksLieInOneAnother) {
    for (const auto& path : exampleFiles()) {
        const auto text = readTextFile(path).value();
        const auto index = indexFile(text, FileForm::tasks);
        for (std::size_t i = 1; i < index.occurrences.size(); ++i) {
            EXPECT_LE(index.occurrences[i - 1].begin, index.occurrences[i].begin) << path;
        }
        for (std::size_t i = 1; i < index.blocks.size(); ++i) {
            const auto& block = index.blocks[i];
            const auto& outer = index.blocks[block.parent];
            EXPECT_LT(block.parent, i) << path;
            EXPECT_TRUE(outer.begin <= block.begin && block.end <= outer.end) << path << " " << i;
        }
    }
}

} // namespace
} // namespace morquill::lsp
