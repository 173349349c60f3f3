#include "lsp/completion.h"

#include "catalog/property_catalog.h"
#include "lsp/help_table.h"
#include "lsp/hover.h"
#include "lsp/index/expression_tokens.h"
#include "support/directory.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/expr/task_names.h"
#include "views/dropped_fields.h"

#include <algorithm>
#include <array>
#include <set>
#include <string>
#include <utility>

namespace morquill::lsp {

namespace {

/// Kinds of items of the protocol.
enum class ItemKind : int {
    function = 3,
    variable = 6,
    classKind = 7,
    module = 9,
    property = 10,
    unit = 11,
    enumeration = 13,
    keyword = 14,
    snippet = 15,
    file = 17,
};

bool isPathChar(char c) noexcept {
    return !isSpace(c) && c != '"' && c != '\'' && c != '<' && c != '(' && c != '=';
}

/// True when the line ends within the path of a geometry: `%source xyz=sub/`.
bool endsInGeometryPath(std::string_view line) {
    const auto words = splitBlank(line);
    return !words.empty() && words.back().starts_with("xyz=") && !isSpace(line.back());
}

/// The place at which something is to be completed.
struct CompletionPlace {
    Session& session;
    const SourceFile& file;
    std::size_t offset;
    std::string_view line;    ///< from its begin to the place
    std::string_view before;  ///< the line without the word that has been begun
    std::string_view partial; ///< that word
    std::uint32_t block;

    [[nodiscard]] bool isIn(BlockKind kind) const noexcept {
        return enclosing(file.index, block, kind) != noIndex;
    }
    [[nodiscard]] std::string_view directive() const noexcept { return file.directiveOf(block); }
    /// The last word before the one that is begun.
    [[nodiscard]] std::string_view wordBefore() const noexcept {
        const auto words = splitBlank(before);
        return words.empty() ? std::string_view{} : words.back();
    }
    [[nodiscard]] bool startsLine() const noexcept { return trim(before).empty(); }
};

/// Collects items, each label once.
class Items {
  public:
    Items(const CompletionPlace& place, std::size_t replaceFrom)
        : snippets_(place.session.client.snippets), walk_(*place.file.buffer, place.session.client.unit),
          range_(rangeJson(walk_, {replaceFrom, place.offset})) {}

    Json* add(std::string_view label, ItemKind kind, std::string_view detail = {}) {
        if (label.empty() || !seen_.insert(std::string(label)).second) {
            return nullptr;
        }
        Json item{{"label", label},
                  {"kind", static_cast<int>(kind)},
                  {"textEdit", {{"range", range_}, {"newText", label}}}};
        if (!detail.empty()) {
            item["detail"] = detail;
        }
        list_.push_back(std::move(item));
        return &list_.back();
    }
    void addHelp(HelpTopic topic, ItemKind kind) {
        for (const auto& row : helpTable()) {
            if (row.topic == topic) {
                addRow(row, kind);
            }
        }
    }
    Json* addRow(const HelpRow& row, ItemKind kind) {
        Json* item = add(row.word, kind, row.form);
        if (item != nullptr) {
            (*item)["documentation"] = row.text;
        }
        return item;
    }
    /// A text with places to fill in, for clients that take them.
    void setSnippet(Json* item, const std::string& snippet) {
        if (item != nullptr && snippets_) {
            (*item)["insertTextFormat"] = 2;
            (*item)["textEdit"]["newText"] = snippet;
        }
    }
    [[nodiscard]] Json take() { return std::move(list_); }

  private:
    bool snippets_;
    PositionWalk walk_;
    Json range_;
    std::set<std::string> seen_;
    Json list_ = Json::array();
};

void addNames(const CompletionPlace& place, NameKind kind, ItemKind itemKind, std::string_view detail,
              Items& items, std::string_view except = {}) {
    for (const SourceFile* file : place.session.sources.documentFiles(place.file)) {
        for (const auto& o : file->index.occurrences) {
            if (o.role == NameRole::definition && o.kind == kind && file->name(o) != except) {
                items.add(file->name(o), itemKind, detail);
            }
        }
    }
}

void addTasks(const CompletionPlace& place, Items& items) {
    addNames(place, NameKind::task, ItemKind::classKind, "task", items);
}

/// The tasks but the one around the place: none takes its geometry from itself.
void addSources(const CompletionPlace& place, Items& items) {
    items.addHelp(HelpTopic::source, ItemKind::keyword);
    addNames(place, NameKind::task, ItemKind::classKind, "task", items,
             place.file.blockName(enclosing(place.file.index, place.block, BlockKind::task)));
}

/// The names that a derive has given so far.
void addLocals(const CompletionPlace& place, Items& items) {
    const auto block = enclosing(place.file.index, place.block, BlockKind::derive);
    for (const auto& o : place.file.index.occurrences) {
        const bool isLocal = o.kind == NameKind::let || o.kind == NameKind::column ||
                             o.kind == NameKind::alias || o.kind == NameKind::formula;
        if (isLocal && o.role == NameRole::definition && o.scope == block && o.end() < place.offset) {
            items.add(place.file.name(o),
                      o.kind == NameKind::formula ? ItemKind::function : ItemKind::variable);
        }
    }
}

void addProperties(Items& items) {
    for (const auto& row : propertyCatalog()) {
        const auto name = row.aliases.size() > 0 ? *row.aliases.begin() : row.canonical;
        if (Json* item = items.add(name, ItemKind::property, row.unit)) {
            (*item)["documentation"] = row.description;
        }
    }
}

void addFunctions(Items& items) {
    for (const auto& row : helpTable()) {
        if (row.topic == HelpTopic::function) {
            Json* item = items.addRow(row, ItemKind::function);
            const auto open = row.form.find('(') + 1;
            const auto first = row.form.substr(open, row.form.find_first_of(",)=", open) - open);
            std::string snippet(row.word);
            snippet += first.empty() ? "()" : "(${1:" + std::string(first) + "})";
            items.setSnippet(item, snippet);
        }
    }
}

void addUnits(Items& items) {
    for (const auto& row : propertyCatalog()) {
        items.add(row.unit, ItemKind::unit);
    }
    for (const auto* unit : {"kcal/mol", "kJ/mol", "eV", "hartree", "cm-1", "Angstrom", "K"}) {
        items.add(unit, ItemKind::unit);
    }
}

/// The innermost function call that is open at the end of a text, and the number of the argument.
struct OpenCall {
    std::string_view function;
    std::size_t argument = 0;
};
std::optional<OpenCall> openCall(std::string_view text) {
    std::size_t depth = 0;
    std::vector<Token> tokens;
    addTokens(text, depth, tokens);
    std::vector<OpenCall> open;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].isSign("(")) {
            const bool named = i > 0 && tokens[i - 1].kind == Token::Kind::name;
            open.push_back({named ? tokens[i - 1].text : std::string_view{}, 0});
        } else if (tokens[i].isSign(")") && !open.empty()) {
            open.pop_back();
        } else if (tokens[i].isSign(",") && !open.empty()) {
            ++open.back().argument;
        }
    }
    return open.empty() || open.back().function.empty() ? std::nullopt : std::optional(open.back());
}

/// The program of the task around the place; gaussian unless another is named.
taskdsl::TaskProgram programOf(const CompletionPlace& place) {
    taskdsl::TaskProgram program = taskdsl::TaskProgram::gaussian;
    const auto task = enclosing(place.file.index, place.block, BlockKind::task);
    for (const auto& o : place.file.index.occurrences) {
        if (task != noIndex && o.kind == NameKind::program &&
            enclosing(place.file.index, blockAt(place.file.index, o.begin), BlockKind::task) == task) {
            program = taskdsl::parseProgramName(place.file.name(o)).value_or(program);
        }
    }
    return program;
}

/// The directives that some programs take and others do not.
views::Payload payloadOf(std::string_view directive) noexcept {
    using views::Payload;
    struct Row {
        std::string_view directive;
        Payload payload;
    };
    constexpr std::array<Row, 7> payloads{{{"keywords", Payload::keywords},
                                           {"extrainput", Payload::extraInput},
                                           {"args", Payload::args},
                                           {"template", Payload::templateName},
                                           {"param", Payload::params},
                                           {"runner", Payload::runner},
                                           {"body", Payload::body}}};
    const auto row = std::find_if(payloads.begin(), payloads.end(),
                                  [directive](const Row& r) { return r.directive == directive; });
    return row == payloads.end() ? Payload::none : row->payload;
}

// The rules: each adds what may stand at its place; false where it has no say.

bool completeKey(const CompletionPlace& place, Items& items) {
    if (!place.before.ends_with('[')) {
        return false;
    }
    addNames(place, NameKind::define, ItemKind::variable, "define", items);
    addNames(place, NameKind::axis, ItemKind::enumeration, "axis", items);
    const auto fragment = enclosing(place.file.index, place.block, BlockKind::fragment);
    for (auto loop = enclosing(place.file.index, place.block, BlockKind::loop); loop != noIndex && loop != 0;
         loop = enclosing(place.file.index, place.file.index.blocks[loop].parent, BlockKind::loop)) {
        const auto& name = place.file.index.occurrences[place.file.index.blocks[loop].name];
        const std::string prefix(place.file.name(name));
        items.add(prefix + ".index", ItemKind::variable, "@foreach");
        items.add(prefix + ".value", ItemKind::variable, "@foreach");
        for (const auto& o : place.file.index.occurrences) {
            if (o.kind == NameKind::itemKey && o.role == NameRole::definition && o.qualifier != noIndex &&
                place.file.name(place.file.index.occurrences[o.qualifier]) == prefix) {
                items.add(prefix + "." + std::string(place.file.name(o)), ItemKind::variable, "@foreach");
            }
        }
    }
    for (const auto& o : place.file.index.occurrences) {
        if (o.kind == NameKind::parameter && o.role == NameRole::definition && fragment != noIndex &&
            o.scope == fragment) {
            items.add(place.file.name(o), ItemKind::variable, "parameter");
        }
    }
    return true;
}

bool completeSnapshot(const CompletionPlace& place, Items& items) {
    const auto open = place.line.rfind("{{");
    if (open == std::string_view::npos || place.line.find("}}", open) != std::string_view::npos) {
        return false;
    }
    if (place.line.substr(open).find('.') == std::string_view::npos) {
        addTasks(place, items);
    } else {
        addProperties(items);
    }
    return true;
}

bool completeDirective(const CompletionPlace& place, Items& items) {
    if (trim(place.before) != "%") {
        return false;
    }
    const auto program = programOf(place);
    for (const auto& row : helpTable()) {
        if (row.topic == HelpTopic::directive) {
            if (Json* item = items.addRow(row, ItemKind::keyword)) {
                const bool fits = views::printsPayload(program, payloadOf(row.word));
                (*item)["sortText"] = (fits ? "0" : "1") + std::string(row.word);
            }
        }
    }
    return true;
}

/// `name(first=, second=)` with a place to fill in behind each parameter.
std::string fragmentSnippet(const SourceFile& file, std::uint32_t block, std::string snippet) {
    int number = 0;
    for (const auto& o : file.index.occurrences) {
        if (o.kind == NameKind::parameter && o.role == NameRole::definition && o.scope == block) {
            ++number;
            snippet += number == 1 ? "(" : ", ";
            snippet += file.name(o);
            snippet += "=${" + std::to_string(number) + "}";
        }
    }
    return number > 0 ? snippet + ")" : snippet;
}

/// The namespaces to which the file binds a library; an empty one for the file itself.
std::vector<std::string> spacesOf(const CompletionPlace& place, const SourceFile& library) {
    std::vector<std::string> spaces;
    if (&library == &place.file) {
        spaces.emplace_back();
    }
    const auto& index = place.file.index;
    for (std::size_t link = 0; link < index.links.size(); ++link) {
        const auto alias = index.links[link].alias;
        if (alias != noIndex && place.session.sources.ofPath(place.file.linked[link]) == &library) {
            spaces.push_back(std::string(place.file.name(index.occurrences[alias])) + ".");
        }
    }
    return spaces;
}

void addFragments(const CompletionPlace& place, Items& items) {
    for (const SourceFile* file : place.session.sources.documentFiles(place.file)) {
        const auto spaces = spacesOf(place, *file);
        for (std::uint32_t i = 0; i < file->index.blocks.size(); ++i) {
            const Block& block = file->index.blocks[i];
            if (block.kind != BlockKind::fragment || block.name == noIndex) {
                continue;
            }
            for (const auto& space : spaces) {
                std::string label = space;
                label += file->name(file->index.occurrences[block.name]);
                Json* item = items.add(label, ItemKind::module, "fragment");
                items.setSnippet(item, fragmentSnippet(*file, i, std::move(label)));
            }
        }
    }
}

bool isIncludable(std::string_view name) {
    return isSourceName(name) || fileKind(name) == FileKind::values;
}

bool isGeometryFile(std::string_view name) {
    return name.ends_with(".xyz");
}

/// A path is quoted where it holds blanks; a folder with blanks is left out, for it is no whole path yet.
void addPath(const CompletionPlace& place, const std::string& path, Items& items) {
    const bool holdsBlank = path.find(' ') != std::string::npos;
    if (holdsBlank && path.ends_with('/')) {
        return;
    }
    Json* item = items.add(path, ItemKind::file);
    if (item != nullptr && holdsBlank && !place.before.ends_with('"') && !place.before.ends_with('\'')) {
        (*item)["textEdit"]["newText"] = '"' + path + '"';
    }
}

/// Folders and files of a sort beside the file, below what has been written of a path.
void addPaths(const CompletionPlace& place, bool (*isWanted)(std::string_view), Items& items) {
    if (place.file.path.empty()) {
        return;
    }
    const auto slash = place.partial.rfind('/');
    const std::string folder(place.partial.substr(0, slash == std::string_view::npos ? 0 : slash + 1));
    const auto directory = joinPath(parentPath(place.file.path), folder);
    for (const auto& [name, kind] : readDirectory(directory).value_or(std::vector<DirectoryEntry>{})) {
        const bool isFolder = kind == EntryKind::directory ||
                              (kind == EntryKind::link && isDirectory(joinPath(directory, name)));
        const bool isSelf = joinPath(directory, name) == place.file.path;
        if (!name.starts_with('.') && !isSelf && (isFolder || isWanted(name))) {
            addPath(place, folder + name + (isFolder ? "/" : ""), items);
        }
    }
}

bool completeInclude(const CompletionPlace& place, Items& items) {
    const auto text = trimLeft(place.line);
    if (!text.starts_with("&INCLUDE ") || text.find('(') != std::string_view::npos) {
        return false;
    }
    const bool inPath = place.partial.find('/') != std::string_view::npos;
    if (!inPath) {
        addFragments(place, items);
    }
    if (inPath || place.partial.find('.') == std::string_view::npos) {
        addPaths(place, isIncludable, items);
    }
    return true;
}

bool completeHeader(const CompletionPlace& place, Items& items) {
    const auto text = trimLeft(place.line);
    const auto isBehind = [&](std::string_view keyword) {
        return text.starts_with(keyword) &&
               splitBlank(text.substr(keyword.size())).size() <= (place.partial.empty() ? 0U : 1U);
    };
    if (isBehind("@plot ") || isBehind("%plot ")) {
        items.addHelp(HelpTopic::plotKind, ItemKind::enumeration);
    } else if (isBehind("&FRAGMENT ")) {
        items.addHelp(HelpTopic::fragmentKind, ItemKind::enumeration);
    } else if (isBehind("@foreach ") || isBehind("@foreach? ")) {
        addNames(place, NameKind::collection, ItemKind::enumeration, "collection", items);
    } else if (place.startsLine() && (place.partial.starts_with('@') || place.partial.starts_with('&'))) {
        for (const auto& row : helpTable()) {
            if (row.topic == HelpTopic::block && (row.word.starts_with('@') || row.word.starts_with('&'))) {
                items.addRow(row, ItemKind::keyword);
            }
        }
    } else {
        return false;
    }
    return true;
}

bool completeExpression(const CompletionPlace& place, Items& items) {
    const bool inDerive = place.isIn(BlockKind::derive);
    if (!inDerive && !place.isIn(BlockKind::plot)) {
        return false;
    }
    const auto wordBefore = place.wordBefore();
    if (place.startsLine()) {
        items.addHelp(inDerive ? HelpTopic::deriveStatement : HelpTopic::plotStatement, ItemKind::keyword);
        items.add("@end", ItemKind::keyword);
        return true;
    }
    if (equalsNoCase(wordBefore, "unit")) {
        addUnits(items);
        return true;
    }
    if (!inDerive && (wordBefore == "task" || wordBefore == "variants" || wordBefore == "column")) {
        addTasks(place, items);
        return true;
    }
    if (const auto call = openCall(place.before)) {
        const bool takesTask = taskdsl::plot::takesTask(call->function) || call->function == "thermo" ||
                               call->function == "atoms" || call->function == "tasks";
        if (takesTask && call->argument == 0) {
            addTasks(place, items);
        } else if (equalsNoCase(call->function, "matrix_value")) {
            addNames(place, NameKind::axis, ItemKind::enumeration, "axis", items);
            return true;
        }
    }
    if (inDerive) {
        addLocals(place, items);
    }
    addFunctions(items);
    addProperties(items);
    return true;
}

/// The values that a form lists: `verbosity p | t`.
void addWordsOfForm(const HelpRow* row, Items& items) {
    if (row == nullptr) {
        return;
    }
    for (const auto& value : splitTrimmed(row->form.substr(row->word.size()), '|')) {
        if (!value.starts_with('<')) {
            items.add(value, ItemKind::enumeration);
        }
    }
}

/// True where a line of a directive begins, below it or, but for `%batch`, behind it.
bool isFirstWord(const CompletionPlace& place, HelpTopic topic) {
    return place.startsLine() || (topic != HelpTopic::batchLine && place.wordBefore().starts_with('%'));
}

bool completeDirectiveValue(const CompletionPlace& place, Items& items) {
    const auto directive = place.directive();
    const auto wordBefore = place.wordBefore();
    if (directive == "program") {
        items.addHelp(HelpTopic::program, ItemKind::enumeration);
    } else if (directive == "source" && endsInGeometryPath(place.line)) {
        addPaths(place, isGeometryFile, items);
    } else if (directive == "source" && !place.startsLine()) {
        addSources(place, items);
    } else if (directive == "interface") {
        items.add("provider", ItemKind::keyword);
        items.add("consume", ItemKind::keyword);
        addTasks(place, items);
    } else if (directive == "control" && wordBefore == "guess") {
        items.add("true", ItemKind::keyword);
        addTasks(place, items);
    } else if (const auto topic = lineTopic(directive); topic && isFirstWord(place, *topic)) {
        items.addHelp(*topic, ItemKind::property);
    } else if (directive == "control") {
        addWordsOfForm(findHelp(HelpTopic::controlKey, wordBefore), items);
    } else if (directive == "when" && equalsNoCase(wordBefore, "completed")) {
        items.add("allothers", ItemKind::keyword);
        addTasks(place, items);
    } else if (directive == "when") {
        items.addHelp(HelpTopic::condition, ItemKind::keyword);
    } else {
        return false;
    }
    return true;
}

using Rule = bool (*)(const CompletionPlace&, Items&);
constexpr std::array<Rule, 7> rules{completeKey,           completeSnapshot, completeDirective,
                                    completeInclude,       completeHeader,   completeExpression,
                                    completeDirectiveValue};

CompletionPlace placeOf(Session& session, const OpenText& text, std::size_t offset) {
    const SourceFile& file = session.sources.of(text);
    const auto begin = text.buffer.line(text.buffer.lineOf(offset)).begin;
    const auto line = file.text().substr(begin, offset - begin);
    const auto bracket = line.find_last_of("[]");
    const bool inKey = bracket != std::string_view::npos && line[bracket] == '[';
    const bool inPath = !inKey && (trimLeft(line).starts_with("&INCLUDE ") || endsInGeometryPath(line));
    std::size_t word = line.size();
    while (word > 0 && (inPath ? isPathChar(line[word - 1]) : isNameChar(line[word - 1]))) {
        --word;
    }
    const bool isMark = word > 0 && trim(line.substr(0, word - 1)).empty() &&
                        (line[word - 1] == '@' || line[word - 1] == '&');
    word -= isMark ? 1 : 0;
    // Behind the end of a block's last line, an indented line still belongs to the block.
    auto block = blockAt(file.index, offset);
    if (line.starts_with(' ')) {
        const auto lastFilled = file.text().substr(0, offset).find_last_not_of(" \t\r\n");
        block =
            lastFilled == std::string_view::npos ? block : std::max(block, blockAt(file.index, lastFilled));
    }
    return {session, file, offset, line, line.substr(0, word), line.substr(word), block};
}

} // namespace

Json complete(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto place = placeOf(session, text, requireOffset(session, text, params));
    Items items(place, place.offset - place.partial.size());
    for (const Rule rule : rules) {
        if (rule(place, items)) {
            break;
        }
    }
    return {{"isIncomplete", false}, {"items", items.take()}};
}

Json signatureHelp(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto place = placeOf(session, text, requireOffset(session, text, params));
    const auto call = openCall(place.line);
    const auto* row = call ? findHelp(HelpTopic::function, call->function) : nullptr;
    if (row == nullptr) {
        return nullptr;
    }
    const auto open = row->form.find('(');
    Json parameters = Json::array();
    for (const auto& name : splitTrimmed(row->form.substr(open + 1, row->form.size() - open - 2), ',')) {
        parameters.push_back({{"label", name}});
    }
    Json signature{{"label", row->form}, {"documentation", row->text}, {"parameters", std::move(parameters)}};
    return {{"signatures", Json::array({std::move(signature)})},
            {"activeSignature", 0},
            {"activeParameter", call->argument}};
}

} // namespace morquill::lsp
