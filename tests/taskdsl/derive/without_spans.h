#pragma once

#include "taskdsl/derive/derive_spec.h"

#include <variant>

namespace morquill::taskdsl::derive {

/// The derive with every place cleared, for comparing what two texts say.
inline DeriveSpec withoutSpans(DeriveSpec spec) {
    spec.span = {};
    for (auto& statement : spec.statements) {
        std::visit([](auto& record) { record.span = {}; }, statement);
    }
    return spec;
}

} // namespace morquill::taskdsl::derive
