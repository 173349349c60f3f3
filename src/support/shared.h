#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

/// Values that many records hold but that are stored once.
namespace morquill {

/// An immutable text with shared ownership, for paths that every line and span of a file repeat. A copy costs
/// a pointer; it reads like a `const std::string`.
class SharedText {
  public:
    SharedText() = default;
    SharedText(std::string text) // NOLINT(google-explicit-constructor): it stands wherever a text stands
        : text_(text.empty() ? nullptr : std::make_shared<const std::string>(std::move(text))) {}
    SharedText(const char* text) : SharedText(std::string(text)) {} // NOLINT(google-explicit-constructor)
    explicit SharedText(std::string_view text) : SharedText(std::string(text)) {}

    [[nodiscard]] const std::string& str() const noexcept {
        static const std::string none;
        return text_ ? *text_ : none;
    }
    operator const std::string&() const noexcept { return str(); } // NOLINT(google-explicit-constructor)
    operator std::string_view() const noexcept { return str(); }   // NOLINT(google-explicit-constructor)
    [[nodiscard]] bool empty() const noexcept { return !text_; }

    friend bool operator==(const SharedText& a, const SharedText& b) noexcept {
        return a.text_ == b.text_ || a.str() == b.str();
    }
    friend bool operator==(const SharedText& a, std::string_view b) noexcept { return a.str() == b; }
    friend bool operator==(const SharedText& a, const char* b) noexcept { return a.str() == b; }

  private:
    std::shared_ptr<const std::string> text_;
};

/// A value with shared ownership that is copied when it is edited: records that were copied from one another
/// share it for as long as none of them changes it.
template <class T>
class Shared {
  public:
    Shared() = default;
    Shared(T value) : value_(std::make_shared<T>(std::move(value))) {} // NOLINT(google-explicit-constructor)

    [[nodiscard]] const T& get() const noexcept {
        static const T none{};
        return value_ ? *value_ : none;
    }
    const T& operator*() const noexcept { return get(); }
    const T* operator->() const noexcept { return &get(); }
    /// The value for editing; other holders keep what they have.
    [[nodiscard]] T& edit() {
        if (!value_) {
            value_ = std::make_shared<T>();
        } else if (value_.use_count() > 1) {
            value_ = std::make_shared<T>(*value_);
        }
        return *value_;
    }
    void reset() noexcept { value_.reset(); }
    /// True when both hold one and the same value.
    [[nodiscard]] bool sharesWith(const Shared& other) const noexcept { return value_ == other.value_; }

    [[nodiscard]] auto begin() const noexcept { return get().begin(); }
    [[nodiscard]] auto end() const noexcept { return get().end(); }
    [[nodiscard]] bool empty() const noexcept { return get().empty(); }
    [[nodiscard]] auto size() const noexcept { return get().size(); }
    [[nodiscard]] const auto& operator[](std::size_t i) const noexcept { return get()[i]; }
    [[nodiscard]] const auto& at(std::size_t i) const { return get().at(i); }
    [[nodiscard]] const auto& front() const noexcept { return get().front(); }
    [[nodiscard]] const auto& back() const noexcept { return get().back(); }

    friend bool operator==(const Shared& a, const Shared& b) { return a.sharesWith(b) || *a == *b; }

  private:
    std::shared_ptr<T> value_;
};

} // namespace morquill
