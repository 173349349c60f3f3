#include "support/fault.h"

#include <cerrno>
#include <cstring>
#include <new>

namespace morquill {

std::string wholeText(const std::exception& fault) {
    const auto* whole = dynamic_cast<const WholeTextError*>(&fault);
    return whole != nullptr ? whole->text() : fault.what();
}

bool isOutOfMemory(const std::exception& fault) noexcept {
    return dynamic_cast<const std::bad_alloc*>(&fault) != nullptr ||
           dynamic_cast<const std::length_error*>(&fault) != nullptr;
}

std::string faultText(const std::exception& fault, std::string_view path) {
    if (!isOutOfMemory(fault)) {
        return wholeText(fault);
    }
    std::string text = "out of memory";
    if (!path.empty()) {
        text.append(": ").append(path);
    }
    return text;
}

const char* systemErrorText(int number) noexcept {
    return std::strerror(number);
}

bool isAbsence(int number) noexcept {
    return number == ENOENT || number == ENOTDIR || number == ELOOP;
}

bool isFaultOfTheDisk(int number) noexcept {
    return number == ENOSPC || number == EIO || number == EFBIG || number == EDQUOT;
}

std::error_code lastSystemError() noexcept {
    return {errno, std::system_category()};
}

} // namespace morquill
