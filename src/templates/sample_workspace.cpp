#include "templates/sample_workspace.h"

#include "console/messages.h"
#include "support/file.h"
#include "templates/sample_texts.h"

#include <filesystem>
#include <string>
#include <system_error>

namespace morquill::templates {

std::string_view sampleGeometry() noexcept {
    return geometryText;
}

std::string_view sampleTaskFile() noexcept {
    return taskText;
}

int createSampleWorkspace() {
    const std::string directory = "test";
    std::error_code error;
    std::filesystem::create_directories(directory, error);
    if (!isDirectory(directory)) {
        console::reportError("could not create directory: " + directory + "/");
        return 1;
    }
    struct SampleFile {
        std::string path;
        std::string_view text;
    };
    for (const auto& file : {SampleFile{directory + "/test.xyz", sampleGeometry()},
                             SampleFile{directory + "/test.mq", sampleTaskFile()}}) {
        if (!writeTextFile(file.path, file.text)) {
            console::reportError("could not write file: " + file.path);
            return 1;
        }
    }
    console::printNote("Test workspace created: " + directory + "/");
    return 0;
}

} // namespace morquill::templates
