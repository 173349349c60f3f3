#include "project/rename/word_replace.h"

#include "support/text.h"

#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

namespace morquill::project {

namespace {

/// Up to this length a needle is compared in full at every place where its first and last byte fit; the cost
/// per byte of text is bounded by it.
constexpr std::size_t shortNeedle = 256;

/// Calls `take` with the position of each occurrence, overlapping ones included, in ascending order, until it
/// answers false. Most places are ruled out 64 at a time, by a loop that compilers turn into vector code.
template <class Take>
void scanShort(std::string_view text, std::string_view needle, Take take) {
    constexpr std::size_t blockSize = 64;
    const char first = needle.front();
    const char last = needle.back();
    const std::size_t places = text.size() - needle.size() + 1;
    const char* const head = text.data();
    const char* const tail = head + needle.size() - 1;
    std::size_t place = 0;
    while (place < places) {
        std::size_t end = places;
        if (places - place >= blockSize) {
            end = place + blockSize;
            unsigned char any = 0;
            for (std::size_t i = 0; i < blockSize; ++i) {
                any |= static_cast<unsigned char>((head[place + i] == first) & (tail[place + i] == last));
            }
            if (any == 0) {
                place = end;
                continue;
            }
        }
        for (; place < end; ++place) {
            if (head[place] == first && tail[place] == last &&
                std::memcmp(head + place, needle.data(), needle.size()) == 0 && !take(place)) {
                return;
            }
        }
    }
}

/// The same for needles of any length (Knuth, Morris, Pratt).
template <class Take>
void scanLong(std::string_view text, std::string_view needle, Take take) {
    // border[i]: length of the longest proper prefix of the first i bytes that also ends them
    std::vector<std::size_t> border(needle.size() + 1, 0);
    std::size_t length = 0;
    for (std::size_t i = 1; i < needle.size(); ++i) {
        while (length > 0 && needle[i] != needle[length]) {
            length = border[length];
        }
        length += needle[i] == needle[length] ? 1 : 0;
        border[i + 1] = length;
    }
    length = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        while (length > 0 && (length == needle.size() || text[i] != needle[length])) {
            length = border[length];
        }
        length += text[i] == needle[length] ? 1 : 0;
        if (length == needle.size() && !take(i + 1 - length)) {
            return;
        }
    }
}

template <class Take>
void scan(std::string_view text, std::string_view needle, Take take) {
    if (needle.empty() || needle.size() > text.size()) {
        return;
    }
    if (needle.size() <= shortNeedle) {
        scanShort(text, needle, take);
    } else {
        scanLong(text, needle, take);
    }
}

} // namespace

bool containsText(std::string_view text, std::string_view needle) {
    bool found = false;
    scan(text, needle, [&](std::size_t) {
        found = true;
        return false;
    });
    return found;
}

/// `accept` is asked about every occurrence that overlaps no earlier match and nothing that was put in
/// before, with its first byte and the byte after it, in ascending order.
template <class Accept>
void RewrittenText::replace(std::string_view from, std::string_view to, Accept accept) {
    std::string result;
    std::vector<Range> putIn;
    std::size_t copied = 0;  // text up to here is in the result
    std::size_t settled = 0; // of the earlier ranges, those that end before the place that is looked at
    std::size_t moved = 0;   // of those, the ones whose new place is known
    const auto copyUpTo = [&](std::size_t end) {
        for (; moved < settled; ++moved) {
            putIn.push_back(
                {putIn_[moved].begin - copied + result.size(), putIn_[moved].end - copied + result.size()});
        }
        result.append(text_, copied, end - copied);
        copied = end;
    };
    scan(text_, from, [&](std::size_t at) {
        const std::size_t end = at + from.size();
        while (settled < putIn_.size() && putIn_[settled].end <= at) {
            ++settled;
        }
        const bool taken = at < copied || (settled < putIn_.size() && putIn_[settled].begin < end);
        if (!taken && accept(at, end)) {
            copyUpTo(at);
            putIn.push_back({result.size(), result.size() + to.size()});
            result.append(to);
            copied = end;
        }
        return true;
    });
    settled = putIn_.size();
    copyUpTo(text_.size());
    text_ = std::move(result);
    putIn_ = std::move(putIn);
}

void RewrittenText::replaceText(std::string_view from, std::string_view to) {
    replace(from, to, [](std::size_t, std::size_t) { return true; });
}

void RewrittenText::replaceWord(std::string_view word, std::string_view to) {
    std::size_t taken = 0; // text up to here belongs to a match, its right neighbour included
    replace(word, to, [&](std::size_t at, std::size_t end) {
        const bool opens = at == 0 || (at > taken && !isWordChar(text_[at - 1]));
        if (!opens || (end < text_.size() && isWordChar(text_[end]))) {
            return false;
        }
        taken = end < text_.size() ? end + 1 : end;
        return true;
    });
}

} // namespace morquill::project
