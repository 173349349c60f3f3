#pragma once

#include "fuzz_input.h"

#include <cctype>
#include <cstddef>
#include <string_view>

/// A check that a text is one JSON value. Bytes above 0x7f may be anything: texts are passed on as they are.
namespace morquill::fuzz {

class JsonWalk {
  public:
    explicit JsonWalk(std::string_view text) : text_(text) {}

    /// True for one value with nothing but white space around it.
    [[nodiscard]] bool isValue() {
        const bool holds = value();
        blanks();
        return holds && at_ == text_.size();
    }

  private:
    bool value() { // NOLINT(misc-no-recursion): as deep as the reports, which is four levels
        blanks();
        if (at_ == text_.size()) {
            return false;
        }
        switch (text_[at_]) {
        case '{':
            return list('}', [this] { return string() && sign(':') && value(); });
        case '[':
            return list(']', [this] { return value(); });
        case '"':
            return string();
        default:
            return word();
        }
    }

    template <class Entry>
    bool list(char close, const Entry& entry) {
        ++at_;
        if (sign(close)) {
            return true;
        }
        do {
            blanks();
            if (!entry()) {
                return false;
            }
        } while (sign(','));
        return sign(close);
    }

    bool string() {
        if (!sign('"')) {
            return false;
        }
        for (; at_ < text_.size() && text_[at_] != '"'; ++at_) {
            if (static_cast<unsigned char>(text_[at_]) < 0x20 || (text_[at_] == '\\' && !escape())) {
                return false;
            }
        }
        return sign('"');
    }

    bool escape() {
        const char sign = ++at_ < text_.size() ? text_[at_] : '\0';
        if (sign != 'u') {
            return sign != '\0' && std::string_view("\"\\/bfnrt").find(sign) != std::string_view::npos;
        }
        for (int i = 0; i < 4; ++i) {
            if (++at_ >= text_.size() || std::isxdigit(static_cast<unsigned char>(text_[at_])) == 0) {
                return false;
            }
        }
        return true;
    }

    /// "true", "false", or an integer: what the reports contain.
    bool word() {
        for (const std::string_view known : {"true", "false"}) {
            if (text_.substr(at_).starts_with(known)) {
                at_ += known.size();
                return true;
            }
        }
        const auto begin = at_;
        while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') {
            ++at_;
        }
        return at_ > begin;
    }

    bool sign(char wanted) {
        blanks();
        const bool found = at_ < text_.size() && text_[at_] == wanted;
        at_ += found ? 1 : 0;
        return found;
    }

    void blanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\n')) {
            ++at_;
        }
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

inline void holdJson(std::string_view text) {
    require(JsonWalk(text).isValue(), "it is JSON", text);
}

} // namespace morquill::fuzz
