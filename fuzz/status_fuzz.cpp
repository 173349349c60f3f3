// Any bytes as a status file: no exception, and what is read reads again once it is written.

#include "fuzz_input.h"
#include "project/status/status_file.h"
#include "support/text.h"

#include <string>
#include <vector>

namespace {

using namespace morquill;

/// The names that a text of plain names lists.
std::vector<std::string> namesOf(const project::StatusRecords& records) {
    std::vector<std::string> names;
    for (const auto& [name, record] : records) {
        names.push_back(name);
    }
    return names;
}

/// True for a time that reads as a status. The layout joins a long name and its status without a blank, so
/// that such a time behind them would be taken for the status.
bool hasAmbiguousTime(const project::TaskStatusRecord& record) {
    return record.name.size() >= 16 &&
           (equalsNoCase(record.updatedAt, "rendered") || equalsNoCase(record.updatedAt, "failed"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    auto records = project::parseStatusRecords(text);
    std::erase_if(records, [](const auto& entry) { return hasAmbiguousTime(entry.second); });
    for (const auto& [name, record] : records) {
        fuzz::require(!name.empty() && record.name == name, "a record has the name that it is listed by",
                      text);
    }
    const auto written = project::formatStatusRecords(records);
    fuzz::require(project::parseStatusRecords(written) == records, "records read back", written);
    const auto kept = project::keptTasks(namesOf(records), project::parseCompletedTasks(text));
    const auto narrowed = project::formatStatusNames(kept);
    fuzz::require(namesOf(project::parseStatusRecords(narrowed)) == kept, "a narrowed file has its names",
                  narrowed);
    return 0;
}
