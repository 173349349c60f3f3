#include "templates/library/template_library.h"

#include "console/messages.h"
#include "console/runtime_config.h"
#include "support/file.h"
#include "support/text.h"
#include "templates/library/template_text.h"
#include "templates/library/template_walk.h"

#include <algorithm>

namespace morquill::templates {

namespace {

constexpr const char* pathKey = "MORQUILL_TEMPLATE_PATH";

std::string noTemplates() {
    return console::tagged(console::MessageKind::note, "no templates found.\n");
}

void addTemplate(const FoundFile& file, TemplateLibrary& library) {
    const auto text = readTextFile(file.path);
    if (!text) {
        return;
    }
    const auto content = skipByteOrderMark(*text);
    TaskTemplate entry;
    entry.name = file.stem;
    entry.category = file.folder.empty() ? "General" : file.folder;
    entry.variables = scanPlaceholders(content, BuiltIns::drop);
    entry.content = content;
    library.templates.push_back(std::move(entry));
}

} // namespace

std::map<std::string, std::vector<std::string>, std::less<>> TaskTemplate::blocks() const {
    return splitTemplateBlocks(content).blocks;
}

std::string resolveTemplatePath() {
    auto config = console::loadConfig("morquill.conf");
    config.try_emplace(pathKey, "./conf/mq_templates");
    return console::getConfigValue(config, pathKey);
}

std::vector<TemplateSource> splitTemplateSources(std::string_view pathList) {
    std::vector<TemplateSource> sources;
    for (auto& path : splitTrimmed(pathList, ':')) {
        if (auto directory = console::expandPath(path); !directory.empty()) {
            sources.push_back({std::move(path), std::move(directory)});
        }
    }
    return sources;
}

TemplateLibrary loadTemplateLibrary(std::string_view pathList) {
    TemplateLibrary library;
    library.sources = splitTemplateSources(pathList);
    if (library.sources.empty()) {
        console::reportError("template directory is empty");
    }
    for (const auto& source : library.sources) {
        if (!isDirectory(source.directory)) {
            console::reportError("template directory does not exist: " + quotedPath(source.directory));
            continue;
        }
        loadFiles(source.directory, {".mq"}, "template",
                  [&](const FoundFile& file) { addTemplate(file, library); });
    }
    return library;
}

const TaskTemplate* findTemplate(const TemplateLibrary& library, std::string_view name) {
    const auto found = std::find_if(library.templates.begin(), library.templates.end(),
                                    [&](const auto& entry) { return entry.name == name; });
    return found == library.templates.end() ? nullptr : &*found;
}

std::string formatTemplateList(const TemplateLibrary& library) {
    if (library.templates.empty()) {
        return noTemplates();
    }
    std::string text = "Available templates:\n";
    for (const auto& entry : library.templates) {
        text += "  " + entry.name + (entry.category.empty() ? "" : " (" + entry.category + ")") + "\n";
    }
    return text;
}

std::string formatTemplateCategories(const TemplateLibrary& library) {
    if (library.templates.empty()) {
        return noTemplates();
    }
    std::map<std::string_view, std::string> rows;
    for (const auto& entry : library.templates) {
        rows[entry.category] += "  " + entry.name + "\n";
    }
    std::string text;
    for (const auto& [category, names] : rows) {
        text += std::string(category) + ":\n" + names + "\n";
    }
    return text;
}

} // namespace morquill::templates
