#pragma once

#include "lsp/index/index_builder.h"

#include <cstddef>
#include <string_view>
#include <vector>

/// The parts of a file that have a language of their own. All texts are parts of the file's text.
namespace morquill::lsp {

using Lines = std::vector<std::string_view>;

/// A `%plot` or `@plot`: the text behind the keyword, and the lines of the body.
void scanPlot(IndexBuilder& builder, std::string_view header, const Lines& body);

/// A `@derive`: the text behind the keyword, and the lines of the body.
void scanDerive(IndexBuilder& builder, std::string_view header, const Lines& body);

/// The prelude of a file; returns the first line that is no part of it.
[[nodiscard]] std::size_t scanPrelude(IndexBuilder& builder, const Lines& lines);

/// An `&INCLUDE` at the line `first`, over several lines while a parenthesis is open; returns the last one.
std::size_t scanInclude(IndexBuilder& builder, const Lines& lines, std::size_t first);

/// A `&FRAGMENT` header, likewise. The fragment's block is open afterwards.
std::size_t scanFragmentHeader(IndexBuilder& builder, const Lines& lines, std::size_t first);

/// A condition of `%when`.
void scanCondition(IndexBuilder& builder, std::string_view condition);

} // namespace morquill::lsp
