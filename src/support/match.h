#pragma once

namespace morquill {

/// Joins functions, one per alternative, for `std::visit`:
/// `std::visit(Match{[](A) {...}, [](B) {...}}, value)`.
template <class... Fs>
struct Match : Fs... {
    using Fs::operator()...;
};
template <class... Fs>
Match(Fs...) -> Match<Fs...>;

} // namespace morquill
