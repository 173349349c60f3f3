#include "taskdsl/task/mod_operation.h"

#include "support/match.h"
#include "support/text.h"
#include "support/word_table.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/task/task_document.h"

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view basisKey = "basisset";

constexpr auto targetWords = wordTable<ModTargetKind>({
    {"charge", ModTargetKind::charge},
    {"spin", ModTargetKind::spin},
    {"geom", ModTargetKind::geom},
});

constexpr auto roleWords = wordTable<BasisRole>({
    {"orbital", BasisRole::orbital},
    {"aux-j", BasisRole::auxJ},
    {"auxj", BasisRole::auxJ},
    {"aux-jk", BasisRole::auxJk},
    {"auxjk", BasisRole::auxJk},
    {"aux-c", BasisRole::auxC},
    {"auxc", BasisRole::auxC},
    {"cabs", BasisRole::cabs},
});
constexpr auto ecpWords = wordTable<BasisEcp>({
    {"auto", BasisEcp::automatic},
    {"none", BasisEcp::none},
    {"disabled", BasisEcp::none},
    {"required", BasisEcp::required},
});
constexpr auto selectorWords = wordTable<BasisSelector>({
    {"element:", BasisSelector::element},
    {"elements:", BasisSelector::element},
    {"atom:", BasisSelector::atom},
    {"atoms:", BasisSelector::atom},
});

[[noreturn]] void fail(std::string_view before, std::string_view quoted, std::string_view after = {}) {
    throw DiagnosticError(std::string(before) + "'" + std::string(quoted) + "'" + std::string(after));
}

std::string slotSuffix(std::string_view slot) {
    return slot == mainSlot ? std::string{} : "." + std::string(slot);
}

std::string targetText(ModTargetKind kind, std::string_view slot) {
    return std::string(targetWords.nameOf(kind)) + slotSuffix(slot);
}

std::string targetText(const ModTarget& target) {
    return targetText(target.kind, target.slot);
}

/// The key of a `%mod` entry taken apart; `operation` is empty when the key names none.
struct SplitKey {
    std::string_view base;
    std::string_view operation;
};

SplitKey splitModKey(std::string_view key) {
    const auto colon = key.rfind(':');
    if (colon != std::string_view::npos && colon > 0) {
        const auto operation = key.substr(colon + 1);
        if (isModOperation(operation)) {
            return {trim(key.substr(0, colon)), operation};
        }
    }
    return {key, {}};
}

void readSelector(BasisSetMod& basis, std::string_view value) {
    if (equalsNoCase(value, "all")) {
        return;
    }
    if (const auto* row = selectorWords.atFront(value)) {
        const bool byElement = row->value == BasisSelector::element;
        auto& list = byElement ? basis.elements : basis.atoms;
        list = splitTrimmed(value.substr(row->word.size()), ',');
        if (list.empty()) {
            throw DiagnosticError(byElement ? "%mod basisset element selector is empty"
                                            : "%mod basisset atom selector is empty");
        }
        basis.selector = row->value;
        return;
    }
    fail("unsupported %mod basisset selector ", value,
         "; expected on=all, on=element:<list>, or on=atom:<index-list>");
}

void readRole(BasisSetMod& basis, std::string_view value) {
    const auto role = roleWords.find(value);
    if (!role) {
        fail("unsupported %mod basisset role=", value);
    }
    basis.role = *role;
}

void readEcp(BasisSetMod& basis, std::string_view value) {
    const auto ecp = ecpWords.find(value);
    if (!ecp) {
        fail("unsupported %mod basisset ecp=", value);
    }
    basis.ecp = *ecp;
}

struct BasisOption {
    std::string_view prefix;
    void (*read)(BasisSetMod&, std::string_view);
};

constexpr std::array<BasisOption, 3> basisOptions{
    {{"on=", readSelector}, {"role=", readRole}, {"ecp=", readEcp}}};

/// The index of the option that a field names; the number of options for any other field.
std::size_t optionOf(std::string_view field) {
    const auto found = std::find_if(basisOptions.begin(), basisOptions.end(),
                                    [field](const auto& option) { return field.starts_with(option.prefix); });
    return static_cast<std::size_t>(found - basisOptions.begin());
}

BasisSetMod readBasisSet(std::string_view value) {
    const auto fields = splitBlank(value);
    BasisSetMod basis;
    std::size_t i = 0;
    for (; i < fields.size() && optionOf(fields[i]) == basisOptions.size(); ++i) {
        if (i > 0) {
            basis.name += ' ';
        }
        basis.name += fields[i];
    }
    if (basis.name.empty()) {
        throw DiagnosticError("%mod basisset requires a non-empty basis name");
    }
    std::array<bool, basisOptions.size()> given{};
    for (; i < fields.size(); ++i) {
        const auto number = optionOf(fields[i]);
        if (number == basisOptions.size()) {
            fail("unexpected token after %mod basisset options: ", fields[i]);
        }
        const auto& option = basisOptions[number];
        if (std::exchange(given[number], true)) {
            throw DiagnosticError("duplicate " + std::string(option.prefix) + " option in %mod basisset");
        }
        option.read(basis, fields[i].substr(option.prefix.size()));
    }
    return basis;
}

std::string formatBasisSet(const BasisSetMod& basis) {
    auto text = basis.name;
    if (basis.selector != BasisSelector::all) {
        const auto& list = basis.selector == BasisSelector::element ? basis.elements : basis.atoms;
        text += " on=" + std::string(selectorWords.nameOf(basis.selector)) + join(list, ",");
    }
    if (basis.role != BasisRole::orbital) {
        text += " role=" + std::string(roleWords.nameOf(basis.role));
    }
    if (basis.ecp != BasisEcp::automatic) {
        text += " ecp=" + std::string(ecpWords.nameOf(basis.ecp));
    }
    return text;
}

OtherMod readOther(std::string_view key, std::string_view value) {
    const auto fields = splitBlank(value);
    return {std::string(key), {fields.begin(), fields.end()}};
}

ScalarMod readScalarMod(const ModTarget& target, std::string_view operation, std::string_view value) {
    if (isOneOf(operation, {"select", "remove"})) {
        fail("unsupported %mod operation ", operation, " for " + targetText(target));
    }
    if (value.empty()) {
        throw DiagnosticError("%mod " + targetText(target) + " requires a value");
    }
    return {target.kind == ModTargetKind::charge ? ScalarModTarget::charge : ScalarModTarget::spin,
            target.slot,
            operation.empty()    ? ScalarModOp::set
            : operation == "add" ? ScalarModOp::add
                                 : ScalarModOp::subtract,
            std::string(value)};
}

AtomsMod readAtomsMod(const ModTarget& target, std::string_view operation, std::string_view value) {
    const auto text = targetText(target);
    if (operation.empty()) {
        throw DiagnosticError("%mod " + text + " requires 'select <atom-list>' or 'remove <atom-list>'");
    }
    if (isOneOf(operation, {"add", "subtract"})) {
        fail("unsupported %mod operation ", operation, " for " + text);
    }
    if (value.empty()) {
        throw DiagnosticError("%mod " + text + " " + std::string(operation) + " requires an atom list");
    }
    return {operation == "remove", target.slot, std::string(value)};
}

/// The two words of an operation on a target: what it acts on and, unless it sets, what it does.
struct Head {
    std::string target;
    std::string_view operation;
};

Head headOf(const ModOperation& op) {
    return std::visit(
        Match{[](const ScalarMod& mod) {
                  const bool charge = mod.target == ScalarModTarget::charge;
                  const auto kind = charge ? ModTargetKind::charge : ModTargetKind::spin;
                  return Head{targetText(kind, mod.slot), mod.op == ScalarModOp::add        ? "add"
                                                          : mod.op == ScalarModOp::subtract ? "subtract"
                                                                                            : ""};
              },
              [](const AtomsMod& mod) {
                  return Head{targetText(ModTargetKind::geom, mod.slot), mod.remove ? "remove" : "select"};
              },
              [](const BasisSetMod&) {
                  return Head{std::string(basisKey), {}};
              },
              [](const OtherMod& mod) {
                  return Head{mod.key, {}};
              }},
        op);
}

std::string withValue(std::string head, const std::string& value) {
    return value.empty() ? std::move(head) : std::move(head) + " " + value;
}

/// The words of a value as the reader of a line takes them: split at single blanks, white space left out.
std::vector<std::string> lineWords(std::string_view text) {
    auto words = splitOn(text, ' ');
    std::erase_if(words,
                  [](const std::string& word) { return std::all_of(word.begin(), word.end(), isSpace); });
    return words;
}

bool holdsComment(std::string_view line) noexcept {
    return stripComment(line).size() != line.size();
}

std::string withTabs(std::string value) {
    std::replace(value.begin(), value.end(), ' ', '\t');
    return value;
}

/// The forms of a line, the plainest first.
enum class Spelling : std::uint8_t {
    words,       ///< `<target> [<operation>] <value>`
    keyAndValue, ///< `<target>:<operation> <value>`
    tabs,        ///< the same with tabs for the blanks of the value
    quotes,      ///< `<key>:"<value>"`, one word
};

/// The form in which a line reads as its operation; `line` is the form in words.
Spelling spellingOf(const Head& head, const std::string& value, std::string_view line) {
    const auto words = lineWords(value);
    if (holdsComment(line) || (words.empty() && !value.empty())) {
        return Spelling::quotes; // a `#` after white space, or white space alone
    }
    if (words.size() < 2 || head.target.empty() || head.target.find(' ') != std::string::npos) {
        return Spelling::words; // no form reads a target of several words
    }
    // After `add` or `subtract` as the second word, the reader takes one more word of the line and
    // drops the rest.
    if (isOneOf(words.front(), {"add", "subtract"})) {
        return isOneOf(head.operation, {"select", "remove"}) ? Spelling::words : Spelling::tabs;
    }
    return isOneOf(head.operation, {"add", "subtract"}) ? Spelling::keyAndValue : Spelling::words;
}

/// `<key>:"<value>"`, or with single quotes when the others would end too early; nothing for a key that
/// cannot be written so and for a value that neither kind of quotes can hold.
std::optional<std::string> quotedLine(const std::string& key, const std::string& value) {
    if (key.find_first_of(": ") != std::string::npos) {
        return std::nullopt;
    }
    for (const char quote : {'"', '\''}) {
        auto line = (key + ":").append(1, quote).append(withTabs(value)).append(1, quote);
        if (!holdsComment(line)) {
            return line;
        }
    }
    return std::nullopt;
}

const std::string* slotOf(const ModOperation& op) {
    if (const auto* scalar = std::get_if<ScalarMod>(&op)) {
        return &scalar->slot;
    }
    if (const auto* atoms = std::get_if<AtomsMod>(&op)) {
        return &atoms->slot;
    }
    return nullptr;
}

} // namespace

bool isModOperation(std::string_view word) noexcept {
    return isOneOf(word, {"add", "subtract", "select", "remove"});
}

ModEntry parseModLine(std::string_view text) {
    const auto fields = lineWords(trim(text));
    if (fields.size() < 2) {
        const std::string_view line = fields.empty() ? std::string_view{} : fields.front();
        const auto colon = line.find(':');
        const auto key = trim(line.substr(0, colon));
        if (std::all_of(key.begin(), key.end(), isSpace)) {
            return {};
        }
        const auto value = colon == std::string_view::npos ? std::string_view{} : line.substr(colon + 1);
        return {std::string(key), std::string(unquote(value))};
    }
    const auto& target = fields[0];
    const auto& operation = fields[1];
    const bool isGeom = target == "geom" || target.starts_with("geom.");
    const bool onAtoms = isGeom && isOneOf(operation, {"select", "remove"});
    const bool onScalar = isOneOf(operation, {"add", "subtract"});
    if (fields.size() >= 3 && onScalar) {
        return {target + ":" + operation, fields[2]};
    }
    const bool withOperation = fields.size() >= 3 && onAtoms;
    const std::ptrdiff_t valueStart = withOperation ? 2 : 1;
    return {withOperation ? target + ":" + operation : target,
            join({fields.begin() + valueStart, fields.end()}, " ")};
}

void addModLine(TaskInfo& task, std::string_view text) {
    auto entry = parseModLine(text);
    if (!entry.key.empty()) {
        task.modEntries.edit().push_back(std::move(entry));
    }
}

std::map<std::string, std::string> modValues(const TaskInfo& task) {
    std::map<std::string, std::string> values;
    for (const auto& [key, value] : task.modEntries) {
        values.insert_or_assign(key, value);
    }
    return values;
}

std::optional<ModTarget> parseModTarget(std::string_view name) {
    const auto dot = name.find('.');
    for (const auto& [target, kind] : targetWords) {
        if (!name.starts_with(target)) {
            continue;
        }
        const auto rest = name.substr(target.size());
        if (dot == std::string_view::npos && !rest.empty() &&
            std::all_of(rest.begin(), rest.end(), isDigit)) {
            fail("positional %mod target ", name,
                 " is not supported; declare a named geom.<slot> source and use " + std::string(target) +
                     ".<slot>");
        }
        if (rest.empty()) {
            return ModTarget{kind, std::string(mainSlot)};
        }
        if (dot != target.size()) {
            continue;
        }
        const auto slot = name.substr(dot + 1);
        if (slot.find('.') != std::string_view::npos) {
            fail("invalid %mod target ", name, "; use charge[.<slot>], spin[.<slot>], or geom[.<slot>]");
        }
        if (!isIdentifier(slot)) {
            fail("invalid %mod geometry slot ", slot,
                 "; slots must begin with a letter and contain only letters, digits, '_' or '-'");
        }
        return ModTarget{kind, std::string(slot)};
    }
    return std::nullopt;
}

ModOperation normalizeMod(std::string_view key, std::string_view value, Placeholders placeholders) {
    key = trim(key);
    value = trim(value);
    const auto [base, operation] = splitModKey(key);
    if (const auto target = parseModTarget(base)) {
        if (target->kind == ModTargetKind::geom) {
            return readAtomsMod(*target, operation, value);
        }
        return readScalarMod(*target, operation, value);
    }
    if (key != basisKey) {
        return readOther(key, value);
    }
    if (placeholders == Placeholders::refused || !holdsBracketKey(value)) {
        return readBasisSet(value);
    }
    try {
        return readBasisSet(value);
    } catch (const DiagnosticError&) {
        return readOther(key, value);
    }
}

std::string formatModKey(const ModOperation& op) {
    const auto head = headOf(op);
    return head.operation.empty() ? head.target : head.target + ":" + std::string(head.operation);
}

std::string formatModValue(const ModOperation& op) {
    return std::visit(Match{[](const ScalarMod& mod) { return mod.value; },
                            [](const AtomsMod& mod) { return mod.atoms; },
                            [](const BasisSetMod& mod) { return formatBasisSet(mod); },
                            [](const OtherMod& mod) { return join(mod.arguments, " "); }},
                      op);
}

std::string formatModText(const ModOperation& op) {
    const auto head = headOf(op);
    const auto value = formatModValue(op);
    auto line = withValue(withValue(head.target, std::string(head.operation)), value);
    const auto key = formatModKey(op);
    switch (spellingOf(head, value, line)) {
    case Spelling::keyAndValue:
        return withValue(key, value);
    case Spelling::tabs:
        return withValue(key, withTabs(value));
    case Spelling::quotes:
        return quotedLine(key, value).value_or(line);
    case Spelling::words:
        break;
    }
    return line;
}

std::string formatModEntry(const ModEntry& entry) {
    return formatModText(normalizeMod(entry.key, entry.value, Placeholders::allowed));
}

void checkModsAgainstSources(const TaskInfo& task, Placeholders placeholders) {
    if (task.modEntries.empty()) {
        return;
    }
    std::set<std::string_view> slots{mainSlot};
    for (const auto& binding : sourceBindings(task)) {
        if (binding.role == BindingRole::geometry) {
            slots.insert(binding.slot);
        }
    }
    for (const auto& entry : task.modEntries) {
        const auto op = normalizeMod(entry.key, entry.value, placeholders);
        const auto* slot = slotOf(op);
        if (slot != nullptr && !slots.contains(*slot)) {
            fail("%mod targets geometry slot ", *slot, ", but %source does not declare geom." + *slot);
        }
    }
}

} // namespace morquill::taskdsl
