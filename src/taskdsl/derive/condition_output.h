#pragma once

#include "taskdsl/derive/read_back.h"

#include <string>
#include <string_view>

/// Not for use outside this room.
namespace morquill::taskdsl::derive {

/// Whether the word `else` ends the condition that it is in.
enum class ElseWord { ordinary, ends };

/// The condition on one line, as part of the statement `keyword`.
[[nodiscard]] std::string printCondition(const DeriveCondition& condition, std::string_view keyword,
                                         ElseWord elseWord, ReadBackCheck& check);

} // namespace morquill::taskdsl::derive
