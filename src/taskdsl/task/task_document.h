#pragma once

#include "support/shared.h"
#include "taskdsl/base/source_line.h"
#include "taskdsl/base/substitute.h"
#include "taskdsl/derive/derive_spec.h"
#include "taskdsl/plot/model.h"
#include "taskdsl/task/matrix_axis.h"
#include "taskdsl/task/source_spec.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// The result of reading a task file: plain records with public fields, copied freely.
namespace morquill::taskdsl {

/// One directive seen in a task block, kept for the explain view and for lint.
struct TaskDirective {
    std::string_view name; ///< keyword without the `%`; a text with static lifetime
    TextSlice value;       ///< the text after the keyword on the directive's own line
    SourceSpan span;

    friend bool operator==(const TaskDirective&, const TaskDirective&) = default;
};

/// One `%when` condition with its place.
struct TaskWhenEntry {
    std::string text;
    SourceSpan span;

    friend bool operator==(const TaskWhenEntry&, const TaskWhenEntry&) = default;
};

enum class TaskProgram : std::int32_t {
    gaussian = 0,
    orca,
    gamess,
    xtb,
    mrcc,
    maple,
    amesp,
    bdf,
    mopac,
    fcclasses,
    other,
    script
};

/// The lower-case name of a program; "gaussian" for a value outside the enumeration.
[[nodiscard]] std::string_view programName(TaskProgram program) noexcept;
/// Reads a program name (trimmed, any case, no aliases); nothing for an unknown one.
[[nodiscard]] std::optional<TaskProgram> parseProgramName(std::string_view text) noexcept;
/// The program of that name. Throws `DiagnosticError`, with "<location>: " in front when a location is given,
/// for an unknown one.
[[nodiscard]] TaskProgram requireProgram(std::string_view value, std::string_view location = {});

enum class TaskInterfaceMode : std::int32_t { none = 0, provider = 1, consume = 2 };

/// One line of `%mod` after it was split; the key is `<target>` or `<target>:<operation>`.
struct ModEntry {
    std::string key;
    std::string value;

    friend bool operator==(const ModEntry&, const ModEntry&) = default;
};

/// One `collect` entry of `%batch`.
struct BatchCollect {
    std::string pattern;
    std::string destination; ///< empty when none is given
    bool required = false;

    friend bool operator==(const BatchCollect&, const BatchCollect&) = default;
};

enum class ClusterMetric : std::int32_t { dist = 0, rmsd = 1 };

/// The `cluster` entry of `%batch`. The units of the thresholds are those of the clustering tool.
struct BatchCluster {
    ClusterMetric metric = ClusterMetric::dist;
    double geometryThreshold = 0.1;
    double energyThreshold = 0.25;
    double temperature = 298.15; ///< kelvin
    bool energyOff = false;
    double minWeight = 0;
    bool hasMinWeight = false;
    double accumulation = 0;
    bool hasAccumulation = false;
    bool present = false;

    friend bool operator==(const BatchCluster&, const BatchCluster&) = default;
};

/// One task block. A copy shares its texts and lists with the original until one of the two edits them: so do
/// the variants of a matrix.
struct TaskInfo {
    TaskInfo() = default;
    explicit TaskInfo(std::string taskName, TaskProgram taskProgram = TaskProgram::gaussian);

    SourceSpan headerSpan;
    Shared<std::vector<TaskDirective>> directives; ///< every directive in file order
    Shared<std::vector<TaskWhenEntry>>
        whenEntries;                    ///< the conditions in order; their texts: `whenConditions`
    std::string name;                   ///< quotes removed
    bool quoted = false;                ///< the header was written `$"name"`
    std::uint64_t documentOrder = 0;    ///< place among all tasks and derive blocks of the run
    SourceSpec source = SourceOrigin{}; ///< views of it: `sourceText`, `sourceTasks`, `sourceBindings`
    bool guessEnabled = false;
    SharedText guessSourceTask;
    SharedText guessConverter; ///< "mokit", "multiwfn" or empty
    SharedText smiles;         ///< molecule line notation, set by project tools
    SharedText filePath;       ///< file that has the block
    /// Names of all tasks of the document that are not providers.
    Shared<std::vector<std::string>> documentTaskNames;
    TaskProgram program = TaskProgram::gaussian;
    SharedText keywords;
    SharedText args;
    SharedText extraKeywords; ///< `%extrainput`
    SharedText templateName;
    SharedText paramValues; ///< `%param`, newline separated
    SharedText runner;
    SharedText body;
    SharedText orcaBlock;           ///< program-specific block text
    SharedText verbosity;           ///< "p", "t" or empty
    SharedText gaussianGeomControl; ///< "check" or empty
    Shared<std::vector<std::string>> preProcessCommands;
    Shared<std::vector<std::string>> processCommands;
    Shared<std::vector<ModEntry>> modEntries; ///< all lines in order; the last value per key: `modValues`
    std::int32_t totalCores = 0;
    std::int32_t totalMemory = 0;
    std::int32_t gpuCount = 0;
    std::int32_t gpuMemory = 0;
    SharedText gpuType;
    std::int32_t batchLanes = 0; ///< 0 means no batch
    Shared<std::vector<BatchCollect>> batchCollect;
    Shared<BatchCluster> batchCluster;
    bool controlDeclared = false; ///< some resource or flag of `%control` was set
    bool externalInput = false;
    bool waitFreq = true;
    bool alert = true;
    bool localFirst = false;
    SharedText finalGeom;
    SharedText templateTaskName;     ///< name before matrix expansion
    SharedText matrixVariantKey;     ///< suffix of a matrix variant
    Shared<AxisValues> matrixValues; ///< axis key to chosen value
    SharedText strucId;
    Shared<std::vector<std::string>> metaProperties;
    Shared<std::vector<plot::PlotSpec>> plots; ///< `%plot` entries of this task
    TaskInterfaceMode interfaceMode = TaskInterfaceMode::none;
    SharedText interfaceProvider; ///< provider task of a consume interface

    friend bool operator==(const TaskInfo&, const TaskInfo&) = default;
};

/// The task's first directive of that name; null when it has none.
[[nodiscard]] const TaskDirective* firstDirective(const TaskInfo& task, std::string_view name) noexcept;
[[nodiscard]] bool isProvider(const TaskInfo& task) noexcept;
[[nodiscard]] bool isConsumer(const TaskInfo& task) noexcept;
[[nodiscard]] bool hasExternalSource(const TaskInfo& task) noexcept;
/// The texts of the conditions, in order.
[[nodiscard]] std::vector<std::string> whenConditions(const TaskInfo& task);

/// A `@derive` block: the raw capture and what it says.
struct DeriveBlock {
    CapturedBlock captured;
    derive::DeriveSpec spec;
    std::uint64_t documentOrder = 0;
};

/// What the header of a file may fill into a task.
struct TaskResources {
    std::int32_t totalCores = 0;
    std::int32_t totalMemory = 0;
    bool controlDeclared = false;
};

/// What the extra files beside a task file brought into its document, and the file itself did not say: tasks
/// and blocks come first in the document, everything else is identified by its key.
struct ImplicitContent {
    KeySet settings;
    KeySet defines;
    KeySet axes;
    std::size_t tasks = 0; ///< of the tasks as declared
    std::size_t plots = 0;
    std::size_t derives = 0;
    /// What the declared tasks had of their own before header values from there filled in; empty when none
    /// did.
    std::vector<TaskResources> ownResources;
};

/// The result of parsing one file.
struct TaskDocument {
    ValueMap settings; ///< top-level scalar keys of the prelude, `dsl_version` among them
    ValueMap defines;  ///< `define:` values, the caller's defines and `extra.yaml` values, merged
    std::map<std::string, std::vector<std::string>, std::less<>> matrixValues; ///< axis key to its value list
    std::vector<MatrixAxis> matrixAxes;                                        ///< in declared order
    /// After define substitution and matrix expansion: what runs. One list with `templateTasks` where nothing
    /// was substituted or expanded.
    Shared<std::vector<TaskInfo>> tasks;
    Shared<std::vector<TaskInfo>> templateTasks; ///< as written, before substitution and expansion
    std::vector<plot::PlotSpec> plots;           ///< top-level `@plot` blocks, after substitution
    std::vector<DeriveBlock> derives;
    std::string filePath;                   ///< path given to the parser
    std::string directory;                  ///< directory of the file, empty when the text came from memory
    std::vector<std::string> includedFiles; ///< every file read for this document, each once, in order of use
    ValueMap libraryBindings;               ///< namespace alias to library path, file-scope imports
    ImplicitContent implicitContent;        ///< what came from the extra files beside the file
};

/// The tasks as declared; those that run where none are.
[[nodiscard]] const Shared<std::vector<TaskInfo>>& declaredTasks(const TaskDocument& document) noexcept;

/// The document without what the extra files beside its file brought: what has to be written beside them, so
/// that a reader who finds them there gets the whole document again. Header values from there are taken back
/// from the declared tasks; the tasks of a matrix that run keep them.
[[nodiscard]] TaskDocument withoutImplicitContent(TaskDocument document);

/// The multi-line debug dump of a task.
[[nodiscard]] std::string describeTask(const TaskInfo& task);
/// Reads such a dump back, line by line; labels that set no field are ignored.
[[nodiscard]] TaskInfo parseTaskDump(std::string_view text);

} // namespace morquill::taskdsl
