#pragma once

#include <string>
#include <utility>
#include <variant>

/// Results that can fail with a message.
namespace morquill {

/// Why there is no result: the message for the user, without a tag.
struct Failure {
    std::string text;
};

/// The result of a step or the message of its failure; converts from either.
template <class T>
class [[nodiscard]] Outcome {
  public:
    Outcome(T value) : result_(std::in_place_index<0>, std::move(value)) {}
    Outcome(Failure failure) : result_(std::in_place_index<1>, std::move(failure)) {}

    /// True when there is a result.
    [[nodiscard]] explicit operator bool() const noexcept { return result_.index() == 0; }

    /// The result; throws `std::bad_variant_access` when there is none.
    [[nodiscard]] T& value() { return std::get<0>(result_); }
    [[nodiscard]] const T& value() const { return std::get<0>(result_); }
    [[nodiscard]] T& operator*() { return value(); }
    [[nodiscard]] const T& operator*() const { return value(); }
    [[nodiscard]] T* operator->() { return &value(); }
    [[nodiscard]] const T* operator->() const { return &value(); }

    /// The failure, which a step that fails for the same reason returns unchanged; throws
    /// `std::bad_variant_access` when there is a result.
    [[nodiscard]] const Failure& failure() const { return std::get<1>(result_); }
    /// The message of the failure; throws like `failure`.
    [[nodiscard]] const std::string& error() const { return failure().text; }

  private:
    std::variant<T, Failure> result_;
};

} // namespace morquill
