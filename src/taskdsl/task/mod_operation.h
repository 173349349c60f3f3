#pragma once

#include "taskdsl/base/substitute.h"
#include "taskdsl/task/geometry_slot.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// `%mod`: changes to the geometry that a task takes: charge, spin, atoms, basis sets.
namespace morquill::taskdsl {

struct ModEntry;
struct TaskInfo;

enum class ModTargetKind : std::int32_t { charge = 0, spin = 1, geom = 2 };

/// What a `%mod` line acts on.
struct ModTarget {
    ModTargetKind kind = ModTargetKind::charge;
    std::string slot{mainSlot}; ///< geometry slot

    friend bool operator==(const ModTarget&, const ModTarget&) = default;
};

enum class ScalarModTarget : std::int32_t { charge = 0, spin = 1 };
enum class ScalarModOp : std::int32_t { set = 0, add = 1, subtract = 2 };

/// `charge` or `spin`, set or changed by a value.
struct ScalarMod {
    ScalarModTarget target = ScalarModTarget::charge;
    std::string slot{mainSlot};
    ScalarModOp op = ScalarModOp::set;
    std::string value;

    friend bool operator==(const ScalarMod&, const ScalarMod&) = default;
};

/// Atoms of a geometry to be kept (`select`) or taken out (`remove`).
struct AtomsMod {
    bool remove = false;
    std::string slot{mainSlot};
    std::string atoms; ///< the atom list as written, 1-based

    friend bool operator==(const AtomsMod&, const AtomsMod&) = default;
};

enum class BasisSelector : std::int32_t { all = 0, element = 1, atom = 2 };
enum class BasisRole : std::int32_t { orbital = 0, auxJ = 1, auxJk = 2, auxC = 3, cabs = 4 };
enum class BasisEcp : std::int32_t { automatic = 0, none = 1, required = 2 };

/// A basis set for all atoms, for some elements or for some atoms.
struct BasisSetMod {
    std::string name;
    BasisSelector selector = BasisSelector::all;
    std::vector<std::string> elements;
    std::vector<std::string> atoms; ///< 1-based indices as text
    BasisRole role = BasisRole::orbital;
    BasisEcp ecp = BasisEcp::automatic;

    friend bool operator==(const BasisSetMod&, const BasisSetMod&) = default;
};

/// Any other line; the project tools know what it means.
struct OtherMod {
    std::string key;
    std::vector<std::string> arguments;

    friend bool operator==(const OtherMod&, const OtherMod&) = default;
};

/// The normal form of one `%mod` line. The index of an alternative is the number of its kind.
using ModOperation = std::variant<ScalarMod, AtomsMod, BasisSetMod, OtherMod>;

/// Splits one `%mod` line (comment removed, trimmed) into key and value. The key is empty for a line that
/// says nothing and has to be dropped.
[[nodiscard]] ModEntry parseModLine(std::string_view text);

/// Reads one `%mod` line into the entries of a task; a line without a key is dropped.
void addModLine(TaskInfo& task, std::string_view text);

/// The last value of every key of the entries.
[[nodiscard]] std::map<std::string, std::string> modValues(const TaskInfo& task);

/// Reads `charge[.<slot>]`, `spin[.<slot>]` or `geom[.<slot>]`; nothing for any other name. Throws
/// `DiagnosticError` for a positional target (`charge2`), an invalid slot and a second dot.
[[nodiscard]] std::optional<ModTarget> parseModTarget(std::string_view name);

/// The operation that an entry stands for. With placeholders, a value that holds a `[key]` and cannot be read
/// yet is kept as it is (`OtherMod`): it is read again after the last substitution. Keys are always checked.
/// Throws `DiagnosticError` with the bare message.
[[nodiscard]] ModOperation normalizeMod(std::string_view key, std::string_view value,
                                        Placeholders placeholders = Placeholders::refused);

/// True for the name of an operation of a `%mod` line: "add", "subtract", "select" or "remove".
[[nodiscard]] bool isModOperation(std::string_view word) noexcept;

/// The key of an operation in its normal form: `<target>[.<slot>][:<operation>]`, "basisset" or the key
/// of another line.
[[nodiscard]] std::string formatModKey(const ModOperation& op);

/// The value that belongs to `formatModKey`.
[[nodiscard]] std::string formatModValue(const ModOperation& op);

/// The operation as a line of `%mod` that reads back as the same operation.
[[nodiscard]] std::string formatModText(const ModOperation& op);

/// The canonical line of an entry, a `[key]` in its value allowed. Throws as `normalizeMod`.
[[nodiscard]] std::string formatModEntry(const ModEntry& entry);

/// Checks that every entry can be read and that every slot it names is a geometry slot of the task's source
/// ("main" always is); placeholders as in `normalizeMod`. Throws `DiagnosticError` with the bare message.
void checkModsAgainstSources(const TaskInfo& task, Placeholders placeholders);

} // namespace morquill::taskdsl
