#include "support/fault.h"

#include <new>
#include <stdexcept>

namespace morquill {

bool isOutOfMemory(const std::exception& fault) noexcept {
    return dynamic_cast<const std::bad_alloc*>(&fault) != nullptr ||
           dynamic_cast<const std::length_error*>(&fault) != nullptr;
}

std::string faultText(const std::exception& fault, std::string_view path) {
    if (!isOutOfMemory(fault)) {
        return fault.what();
    }
    std::string text = "out of memory";
    if (!path.empty()) {
        text.append(": ").append(path);
    }
    return text;
}

} // namespace morquill
