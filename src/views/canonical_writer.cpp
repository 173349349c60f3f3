#include "views/canonical_writer.h"

#include "support/line_builder.h"
#include "support/text.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/line_blocks.h"
#include "taskdsl/base/line_kind.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/base/shell_words.h"
#include "taskdsl/derive/derive_output.h"
#include "taskdsl/plot/render.h"
#include "taskdsl/task/directive_reader.h"
#include "taskdsl/task/mod_operation.h"
#include "taskdsl/task/resolved_task.h"
#include "taskdsl/task/source_spec.h"
#include "views/read_back.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace morquill::views {

using taskdsl::TaskDocument;
using taskdsl::TaskInfo;
using taskdsl::TaskProgram;

namespace {

// The forms of a directive. Directives are indented by two blanks, the lines of their blocks by four.

/// Writes `  %<directive> <value>`, with the value quoted by the scalar rule.
void addScalar(LineBuilder& text, std::string_view directive, std::string_view value) {
    text.open("  %", directive, " ");
    text.addWith([value](std::string& out) { taskdsl::appendUnquotedScalar(out, value); }).close();
}

void addFilledScalar(LineBuilder& text, std::string_view directive, std::string_view value) {
    if (!value.empty()) {
        addScalar(text, directive, value);
    }
}

/// The terminator is always EOF, so a text with such a line does not survive the rewrite.
void addHeredoc(LineBuilder& text, std::string_view directive, std::string_view body) {
    text.line("  %", directive, " << ", taskdsl::heredocEnd);
    if (!body.empty()) {
        text.line(body);
    }
    text.line(taskdsl::heredocEnd);
}

void addFilledHeredoc(LineBuilder& text, std::string_view directive, std::string_view body) {
    if (!body.empty()) {
        addHeredoc(text, directive, body);
    }
}

/// Writes a block of commands. One that would end the block was read as the continuation of an empty line,
/// and is written as such again.
void addCommands(LineBuilder& text, std::string_view directive,
                 const Shared<std::vector<std::string>>& commands) {
    if (!commands.empty()) {
        text.line("  %", directive);
    }
    for (const auto& command : commands) {
        if (isStructure(taskdsl::kindOfCleanLine(command))) {
            text.line("    \\");
        }
        text.line("    ", command);
    }
}

void addBlock(LineBuilder& text, std::string_view directive, const std::vector<std::string>& lines) {
    bool open = false;
    for (const auto& line : lines) {
        // A text that would end the block was read from the keyword's own line, and is written there again.
        if (isStructure(taskdsl::kindOfCleanLine(line))) {
            text.line("  %", directive, " ", line);
            open = false;
            continue;
        }
        if (!open) {
            text.line("  %", directive);
            open = true;
        }
        text.line("    ", line);
    }
}

void writeSettings(LineBuilder& text, const TaskDocument& document) {
    text.line("dsl_version: 2");
    for (const auto& [key, value] : document.settings) {
        if (key != "dsl_version") {
            text.line(canonicalSetting(key, value));
        }
    }
    if (!document.defines.empty()) {
        text.line("define:");
        for (const auto& [key, value] : document.defines) {
            text.line(canonicalDefine(key, value));
        }
    }
}

void writeMatrix(LineBuilder& text, const TaskDocument& document) {
    const auto& axes = document.matrixAxes;
    if (axes.empty() && document.matrixValues.empty()) {
        return;
    }
    text.line("matrix:");
    if (axes.empty()) {
        for (const auto& [key, values] : document.matrixValues) {
            text.line("  ", key, ": ", taskdsl::joinCanonicalList(values));
        }
        return;
    }
    const MatrixForm form = matrixForm(document);
    for (const auto& axis : axes) {
        text.line(canonicalAxis(axis, form));
    }
}

void writeSource(LineBuilder& text, const TaskInfo& task) {
    if (taskdsl::hasStructuredSource(task)) {
        text.line("  %source");
        for (const auto& binding : sourceBindings(task)) {
            text.line("    ", taskdsl::formatSourceBinding(binding));
        }
        return;
    }
    requireNumericFrame(task.source);
    const std::string source = formatSourceSpec(task.source);
    addScalar(text, "source", source.empty() ? "origin" : source);
}

void writeCluster(LineBuilder& text, const taskdsl::BatchCluster& cluster) {
    std::string line = "    cluster ";
    line += cluster.metric == taskdsl::ClusterMetric::rmsd ? "rmsd" : "dist";
    line += " geo=" + taskdsl::formatCanonicalNumber(cluster.geometryThreshold);
    line +=
        " energy=" + (cluster.energyOff ? "off" : taskdsl::formatCanonicalNumber(cluster.energyThreshold));
    line += " temperature=" + taskdsl::formatCanonicalNumber(cluster.temperature);
    if (cluster.hasMinWeight) {
        line += " min=" + taskdsl::formatCanonicalNumber(cluster.minWeight);
    }
    if (cluster.hasAccumulation) {
        line += " accum=" + taskdsl::formatCanonicalNumber(cluster.accumulation);
    }
    text.line(line);
}

/// The destination unquoted when its words read back as the same text, otherwise as one quoted word.
std::string destinationText(const std::string& destination) {
    const auto words = taskdsl::splitShellWords(taskdsl::cleanLine("as " + destination));
    const bool readsBack = join({words.begin() + 1, words.end()}, " ") == destination;
    return readsBack ? destination : taskdsl::quoteShellWord(destination);
}

void writeBatch(LineBuilder& text, const TaskInfo& task) {
    if (task.batchLanes <= 0) {
        return;
    }
    const std::string lanes = std::to_string(task.batchLanes);
    if (task.batchCollect.empty() && !task.batchCluster->present) {
        text.line("  %batch ", lanes);
        return;
    }
    text.line("  %batch");
    text.line("    lane ", lanes);
    if (task.batchCluster->present) {
        writeCluster(text, *task.batchCluster);
    }
    for (const auto& entry : task.batchCollect) {
        // A pattern that would not read back as one word is quoted.
        text.line("    collect ", entry.required ? "required " : "", taskdsl::quoteShellWord(entry.pattern),
                  entry.destination.empty() ? "" : " as ", destinationText(entry.destination));
    }
}

void writeControl(LineBuilder& text, const TaskInfo& task) {
    bool open = false;
    const auto item = [&](std::string_view key, std::string_view value) {
        if (!open) {
            text.line("  %control");
            open = true;
        }
        text.line("    ", key, " ", value);
    };
    const auto positive = [&](std::string_view key, std::int32_t value) {
        if (value > 0) {
            item(key, std::to_string(value));
        }
    };
    const auto filled = [&](std::string_view key, std::string_view value) {
        if (!value.empty()) {
            item(key, value);
        }
    };
    positive("totcore", task.totalCores);
    positive("totmem", task.totalMemory);
    positive("gpus", task.gpuCount);
    filled("gpu_type", task.gpuType);
    positive("gpu_mem", task.gpuMemory);
    if (task.guessEnabled) {
        item("guess", task.guessSourceTask.empty() ? std::string_view("true") : task.guessSourceTask.view());
    }
    filled("guess_converter", task.guessConverter);
    if (!task.waitFreq) {
        item("waitfreq", "false");
    }
    if (task.localFirst) {
        item("localfirst", "true");
    }
    if (task.externalInput) {
        item("externalinp", "true");
    }
    if (!task.finalGeom.empty()) {
        // It is read as shell words, in which quotes and backslashes are not plain characters.
        const bool isPlain = task.finalGeom.view().find_first_of("'\\") == std::string::npos;
        item("finalgeom", isPlain ? taskdsl::quoteCanonicalScalar(task.finalGeom)
                                  : taskdsl::quoteForcedScalar(task.finalGeom));
    }
    filled("verbosity", task.verbosity);
}

void writeKeywords(LineBuilder& text, const TaskInfo& task) {
    if (task.keywords.view().starts_with("<<")) {
        // Unquoted, it would open a heredoc.
        text.line("  %keywords ", taskdsl::quoteForcedScalar(task.keywords));
    } else if (!taskdsl::lineEnds.meets(task.keywords)) {
        addFilledScalar(text, "keywords", task.keywords);
    } else {
        addHeredoc(text, "keywords", task.keywords);
    }
}

void writeInputPayload(LineBuilder& text, const TaskInfo& task) {
    writeKeywords(text, task);
    addFilledHeredoc(text, "extrainput", task.extraKeywords);
}

void writeOrcaPayload(LineBuilder& text, const TaskInfo& task) {
    writeKeywords(text, task);
    addFilledHeredoc(text, "extrainput", taskdsl::resolvedExtraInput(task));
}

void writeXtbPayload(LineBuilder& text, const TaskInfo& task) {
    addFilledScalar(text, "args", task.args);
    addFilledHeredoc(text, "extrainput", task.extraKeywords);
}

void writeOtherPayload(LineBuilder& text, const TaskInfo& task) {
    addFilledScalar(text, "template", taskdsl::resolvedTemplateName(task));
    const SharedText all = taskdsl::resolvedParams(task);
    if (const auto params = trim(all); !params.empty()) {
        text.line("  %param ", params);
    }
}

void writeScriptPayload(LineBuilder& text, const TaskInfo& task) {
    addFilledScalar(text, "runner", taskdsl::resolvedRunner(task));
    addHeredoc(text, "body", task.body);
}

void writePayload(LineBuilder& text, const TaskInfo& task) {
    switch (task.program) {
    case TaskProgram::orca:
        return writeOrcaPayload(text, task);
    case TaskProgram::xtb:
        return writeXtbPayload(text, task);
    case TaskProgram::other:
        return writeOtherPayload(text, task);
    case TaskProgram::script:
        return writeScriptPayload(text, task);
    default:
        return writeInputPayload(text, task);
    }
}

void writeMods(LineBuilder& text, const TaskInfo& task) {
    std::vector<std::string> lines;
    for (const auto& entry : task.modEntries) {
        if (std::string line = taskdsl::formatModEntry(entry); !line.empty()) {
            lines.push_back(std::move(line));
        }
    }
    addBlock(text, "mod", lines);
}

void writeTask(LineBuilder& text, const TaskInfo& task) {
    text.line("$", task.name);
    writeSource(text, task);
    if (task.program != TaskProgram::gaussian) {
        text.line("  %program ", taskdsl::programName(task.program));
    }
    writeBatch(text, task);
    writeControl(text, task);
    addBlock(text, "when", whenConditions(task));
    writePayload(text, task);
    addCommands(text, "preprocess", task.preProcessCommands);
    addCommands(text, "process", task.processCommands);
    writeMods(text, task);
    if (!task.strucId.empty()) {
        text.line("  %meta");
        text.line("    strucid ", task.strucId);
    }
}

/// Prints the document and, when there is a sink, reports what does not read back.
class DocumentPrinter {
  public:
    explicit DocumentPrinter(const ReadBackContext& context)
        : context_(context), document_(context.document) {}

    std::string print() && {
        const bool isSource = context_.view == CanonicalView::sourceView;
        if (context_.warnings) {
            reportLostHeadLines(context_);
        }
        text_.reserve(typicalTaskSize * std::max(document_.tasks.size(), document_.templateTasks.size()) +
                      typicalBlockSize * (document_.plots.size() + document_.derives.size()));
        writeSettings(text_, document_);
        if (isSource) {
            writeMatrix(text_, document_);
        }
        text_.line();
        const auto& tasks = isSource ? declaredTasks(document_) : document_.tasks;
        const bool hasBlocks = !document_.plots.empty() || !document_.derives.empty();
        for (const TaskInfo& task : tasks) {
            printTask(task);
            if (hasBlocks || &task != &tasks.back()) {
                text_.line();
            }
        }
        for (const auto& plot : document_.plots) {
            printSubstituted("plot", plot.name, renderPlot(plot, "", context_.warnings));
            if (!document_.derives.empty() || &plot != &document_.plots.back()) {
                text_.line();
            }
        }
        for (const auto& derive : document_.derives) {
            printSubstituted("derive", derive.spec.name, renderDerive(derive.spec, "", context_.warnings));
            if (&derive != &document_.derives.back()) {
                text_.line();
            }
        }
        return text_.take();
    }

  private:
    void printTask(const TaskInfo& task) {
        const std::size_t begin = text_.size();
        writeTask(text_, task);
        if (context_.warnings) {
            reportLostOfTask(context_, task, text_.textFrom(begin));
        }
        // A plot of a declared task is read before the defines are inserted.
        const bool isExpanded = context_.view == CanonicalView::matrixExpandedView;
        for (const auto& plot : task.plots) {
            const std::string printed = renderPlot(plot, "  ", context_.warnings);
            if (isExpanded) {
                printSubstituted("plot", plot.name, printed);
            } else {
                text_.add(printed);
            }
        }
    }

    /// Prints a block into which the defines are inserted when it is read.
    void printSubstituted(std::string_view what, std::string_view name, const std::string& printed) {
        text_.add(printed);
        if (context_.warnings) {
            reportReplacedKey(context_, what, name, printed);
        }
    }

    static constexpr std::size_t typicalTaskSize = 256;   ///< in bytes, as printed
    static constexpr std::size_t typicalBlockSize = 1024; ///< of a plot or derive

    const ReadBackContext context_;
    const TaskDocument& document_;
    LineBuilder text_;
};

} // namespace

std::string canonicalSetting(std::string_view key, std::string_view value) {
    return std::string(key) + ": " + taskdsl::quoteSettingScalar(value);
}

std::string canonicalDefine(std::string_view key, std::string_view value) {
    return "  " + std::string(key) + ": " + taskdsl::quoteUnquotedScalar(value);
}

MatrixForm matrixForm(const TaskDocument& document) noexcept {
    const bool needsList =
        std::any_of(document.matrixAxes.begin(), document.matrixAxes.end(),
                    [](const taskdsl::MatrixAxis& axis) { return !axis.names.empty() || !axis.map.empty(); });
    return needsList ? MatrixForm::list : MatrixForm::lines;
}

std::string canonicalAxis(const taskdsl::MatrixAxis& axis, MatrixForm form) {
    std::string lines = (form == MatrixForm::list ? "  - " : "  ") + axis.key + ": " +
                        taskdsl::joinCanonicalList(axis.values);
    if (!axis.names.empty()) {
        lines += "\n    name: " + taskdsl::joinCanonicalList(axis.names);
    }
    if (!axis.map.empty()) {
        lines += "\n    map: " + taskdsl::joinCanonicalList({axis.map});
    }
    return lines;
}

std::string renderCanonicalDocument(const TaskDocument& document, CanonicalView view,
                                    const taskdsl::WarningSink& warnings) {
    return DocumentPrinter({document, view, warnings}).print();
}

} // namespace morquill::views
