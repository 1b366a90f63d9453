#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

using CodeTable = std::vector<std::string>;  // element 0 is an unused empty text

constexpr long kAllMatches = 2147483647;

// Replaces up to `count` occurrences of `find` in `source`, searching from the 1-based position
// `start` (the text before it is kept). compareMode 0 searches exactly, any other value without
// regard to case (the copied text keeps its case). An empty `find` gives `source` unchanged.
// The scan goes on behind each replaced text, so a replacement holding `find` never loops.
// Uses a scratch buffer kept per thread, so repeated calls allocate only for their result.
std::string FastReplace(std::string_view source, std::string_view find,
                        std::string_view replacement, long start = 1, long count = kAllMatches,
                        int compareMode = 0);
// The length of this thread's FastReplace scratch buffer: it never shrinks, and calls without a
// match or with a replacement of the searched text's length leave it alone.
size_t FastReplaceBufferLength();

// Splits `source` at each `delimiter` (exact). n delimiters give n + 1 pieces, empty ones kept;
// an empty source or delimiter gives one piece, the source.
void FastSplit(std::string_view source, std::vector<std::string>& parts,
               std::string_view delimiter);

// FastSplit without copies: the pieces are views into `source`, which must outlive them. n
// delimiters give n + 1 pieces, empty ones kept. For the hot loops of the list imports.
void FastSplitViews(std::string_view source, std::vector<std::string_view>& parts, char delimiter);

// The text between the first `openMark` and the last `closeMark`. When `openMark` is missing or
// `closeMark` doesn't stand behind it the result is empty and `text` is emptied too.
std::string ExtractBetween(std::string& text, std::string_view openMark,
                           std::string_view closeMark);

// Index (from 1) of the first entry equal to `text` (exact) or occurring inside `text` (not
// exact); 0 when none.
int FindInTable(std::string_view text, const CodeTable& table, bool exact);
// FindInTable with an exact comparison, appending `text` when it is absent. Gives its index.
int FindOrAppend(std::string_view text, CodeTable& table, bool exact = true);
// Exact look-up of a normalised version in `verAddedTable`; 0 when absent.
int FindVersion(std::string_view text, const CodeTable& verAddedTable);
// The normalised form of a version text: "37b5", ".37b5" and "0.37b5" all give "0.037b5".
std::string NormaliseVersion(std::string_view text);
// Normalises `text`, finds it in `table` or appends it, and gives its index.
int VersionIndex(std::string_view text, CodeTable& table, bool exact = true);

}  // namespace tessarin
