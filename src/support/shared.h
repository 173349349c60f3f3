#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

/// Values that many records hold and that are stored once. The
/// program has one thread, so holders are counted without atomics.
namespace morquill {

/// An immutable text with shared ownership, for texts that many records repeat and for fields that are mostly
/// empty. It is as large as a pointer, is copied by counting, and reads like a `std::string_view`.
class SharedText {
  public:
    SharedText() noexcept = default;
    SharedText(std::string_view text) // NOLINT(google-explicit-constructor): usable like a text
        : block_(text.empty() ? nullptr : makeBlock(text)) {}
    SharedText(const std::string& text) : SharedText(std::string_view(text)) {} // NOLINT(google-explicit-*)
    SharedText(const char* text) : SharedText(std::string_view(text)) {}        // NOLINT(google-explicit-*)
    SharedText(const SharedText& other) noexcept : block_(other.block_) {
        if (block_ != nullptr) {
            ++block_->holders;
        }
    }
    SharedText(SharedText&& other) noexcept : block_(std::exchange(other.block_, nullptr)) {}
    SharedText& operator=(SharedText other) noexcept {
        std::swap(block_, other.block_);
        return *this;
    }
    ~SharedText() {
        if (block_ != nullptr && --block_->holders == 0) {
            ::operator delete(block_);
        }
    }

    [[nodiscard]] std::string_view view() const noexcept {
        return block_ == nullptr ? std::string_view() : std::string_view(textOf(block_), block_->size);
    }
    [[nodiscard]] std::string str() const { return std::string(view()); }
    operator std::string_view() const noexcept { return view(); } // NOLINT(google-explicit-constructor)
    [[nodiscard]] bool empty() const noexcept { return block_ == nullptr; }
    [[nodiscard]] std::size_t size() const noexcept { return view().size(); }
    void clear() noexcept { *this = SharedText(); }

    friend bool operator==(const SharedText& a, const SharedText& b) noexcept {
        return a.block_ == b.block_ || a.view() == b.view();
    }
    friend bool operator==(const SharedText& a, std::string_view b) noexcept { return a.view() == b; }
    friend bool operator==(const SharedText& a, const std::string& b) noexcept { return a.view() == b; }
    friend bool operator==(const SharedText& a, const char* b) noexcept { return a.view() == b; }

  private:
    /// The head of an allocation, followed by the bytes of the text.
    struct Block {
        std::uint32_t holders;
        std::size_t size; ///< of the text, in bytes
    };

    [[nodiscard]] static char* textOf(Block* block) noexcept { return reinterpret_cast<char*>(block + 1); }

    [[nodiscard]] static Block* makeBlock(std::string_view text) {
        auto* block = new (::operator new(sizeof(Block) + text.size())) Block{1, text.size()};
        std::memcpy(textOf(block), text.data(), text.size());
        return block;
    }

    Block* block_ = nullptr; ///< null for the empty text
};

/// A part of a shared text, which it keeps alive.
class TextSlice {
  public:
    TextSlice() noexcept = default;
    TextSlice(SharedText whole) noexcept // NOLINT(google-explicit-constructor): a text is a slice of itself
        : owner_(std::move(whole)), view_(owner_.view()) {}
    TextSlice(std::string_view text) : TextSlice(SharedText(text)) {}   // NOLINT(google-explicit-constructor)
    TextSlice(const std::string& text) : TextSlice(SharedText(text)) {} // NOLINT(google-explicit-constructor)
    TextSlice(const char* text) : TextSlice(SharedText(text)) {}        // NOLINT(google-explicit-constructor)

    /// The part of `whole` that `part`, which must be a view into it, shows.
    TextSlice(const TextSlice& whole, std::string_view part) noexcept : owner_(whole.owner_), view_(part) {}
    /// The slice for `part`, which must be a view into this one.
    [[nodiscard]] TextSlice slice(std::string_view part) const noexcept { return {*this, part}; }

    [[nodiscard]] std::string_view view() const noexcept { return view_; }
    operator std::string_view() const noexcept { return view_; } // NOLINT(google-explicit-constructor)
    [[nodiscard]] bool empty() const noexcept { return view_.empty(); }
    [[nodiscard]] std::size_t size() const noexcept { return view_.size(); }

    friend bool operator==(const TextSlice& a, const TextSlice& b) noexcept { return a.view_ == b.view_; }
    friend bool operator==(const TextSlice& a, std::string_view b) noexcept { return a.view_ == b; }
    friend bool operator==(const TextSlice& a, const std::string& b) noexcept { return a.view_ == b; }
    friend bool operator==(const TextSlice& a, const char* b) noexcept { return a.view_ == b; }

  private:
    SharedText owner_;
    std::string_view view_;
};

/// A counted reference to a value, or to none. The value
/// is made by `make` and destroyed with its last holder.
template <class T>
class CountedRef {
  public:
    CountedRef() noexcept = default;
    CountedRef(std::nullptr_t) noexcept {} // NOLINT(google-explicit-constructor)
    CountedRef(const CountedRef& other) noexcept : node_(other.node_) {
        if (node_ != nullptr) {
            ++node_->holders;
        }
    }
    CountedRef(CountedRef&& other) noexcept : node_(std::exchange(other.node_, nullptr)) {}
    CountedRef& operator=(CountedRef other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }
    ~CountedRef() {
        if (node_ != nullptr && --node_->holders == 0) {
            delete node_;
        }
    }

    /// Makes a value from the arguments and returns a reference to it.
    template <class... Arguments>
    [[nodiscard]] static CountedRef make(Arguments&&... arguments) {
        CountedRef made;
        made.node_ = new Node(std::forward<Arguments>(arguments)...);
        return made;
    }

    [[nodiscard]] T* get() const noexcept { return node_ == nullptr ? nullptr : &node_->value; }
    T& operator*() const noexcept { return node_->value; }
    T* operator->() const noexcept { return &node_->value; }
    explicit operator bool() const noexcept { return node_ != nullptr; }
    /// True when nobody else holds the value.
    [[nodiscard]] bool isOnlyHolder() const noexcept { return node_ != nullptr && node_->holders == 1; }

    friend bool operator==(const CountedRef& a, const CountedRef& b) noexcept { return a.node_ == b.node_; }
    friend bool operator==(const CountedRef& a, std::nullptr_t) noexcept { return a.node_ == nullptr; }

  private:
    struct Node {
        template <class... Arguments>
        explicit Node(Arguments&&... arguments) : value(std::forward<Arguments>(arguments)...) {}

        std::remove_const_t<T> value;
        std::uint32_t holders = 1;
    };

    Node* node_ = nullptr;
};

/// A value with shared ownership that is copied when edited: records that were copied from one another share
/// it until one of them changes it. It is as large as a pointer; without a value it reads as a default one.
template <class T>
class Shared {
  public:
    Shared() noexcept = default;
    Shared(T value) // NOLINT(google-explicit-constructor)
        : value_(CountedRef<T>::make(std::move(value))) {}

    [[nodiscard]] const T& get() const noexcept {
        static const T none{};
        return value_ ? *value_ : none;
    }
    const T& operator*() const noexcept { return get(); }
    const T* operator->() const noexcept { return &get(); }
    /// Returns the value for editing; other holders keep the old one.
    [[nodiscard]] T& edit() {
        if (!value_) {
            value_ = CountedRef<T>::make();
        } else if (!value_.isOnlyHolder()) {
            value_ = CountedRef<T>::make(*value_);
        }
        return *value_;
    }
    void reset() noexcept { value_ = nullptr; }
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
    CountedRef<T> value_;
};

} // namespace morquill
