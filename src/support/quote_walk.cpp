#include "support/quote_walk.h"

namespace morquill {

std::vector<std::string_view> splitAtTop(std::string_view text, const QuoteRule& rule, char separator) {
    std::vector<std::string_view> fields;
    std::size_t begin = 0;
    QuoteWalk walk(rule);
    for (std::size_t at = 0; at < text.size(); at = walk.step(text, at)) {
        if (text[at] == separator && walk.atTop()) {
            fields.push_back(text.substr(begin, at - begin));
            begin = at + 1;
        }
    }
    fields.push_back(text.substr(begin));
    return fields;
}

} // namespace morquill
