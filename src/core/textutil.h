#pragma once

// The small text and path helpers of the whole program, in one place. Standard C++ only, so
// that the zip worker (which links zlib alone) compiles this pair too.
//
// Texts are bytes: case rules touch the ASCII letters only, so a lower-case copy keeps the byte
// length and the offsets of its source, and bytes above 127 (UTF-8 or a code page) stay as they
// are.
//
// The rule for '\' in paths: a path read from a settings file, a data file or a job text may
// hold '\' between its folders, as the program's files have always been written on Windows. On
// Windows '\' is the separator anyway; on every other system PathFromText turns each '\' into
// '/'. So "C:\mame\roms" stays itself on Windows and "roms\neogeo" is the folder roms/neogeo on
// Linux. A file name with a real '\' in it can't be reached through these texts on Linux; the
// program makes no such names.

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace tessarin {

// --- Trimming ---

// Without the spaces at both ends (spaces only: tabs and line ends stay, as the data files,
// language files and the index have always been trimmed).
std::string_view TrimBlanks(std::string_view text);
// Without spaces, tabs, CR and LF at both ends (for hand-edited lines and typed fields).
std::string_view TrimWhite(std::string_view text);

// --- ASCII case ---

char LowerAscii(char c);
char UpperAscii(char c);
std::string LowerCopy(std::string_view text);
std::string UpperCopy(std::string_view text);
bool EqualsNoCase(std::string_view a, std::string_view b);
bool StartsWith(std::string_view text, std::string_view prefix);
bool StartsWithNoCase(std::string_view text, std::string_view prefix);
bool EndsWithNoCase(std::string_view text, std::string_view ending);
// The first character of a UTF-8 text, with all its bytes; the first byte alone when the text
// doesn't start with a whole UTF-8 sequence. Empty for the empty text.
std::string_view FirstCharacter(std::string_view text);
// '*' and '?' against a name, without regard to ASCII case.
bool WildcardMatch(std::string_view pattern, std::string_view name);

// --- Splitting ---

// The lines of a text: CR LF, LF and a lone CR each end a line; a final line end starts no
// further line. The pieces are views into `text`.
std::vector<std::string_view> SplitLines(std::string_view text);
// The pieces between each `delimiter`: n delimiters give n + 1 pieces, empty ones kept.
std::vector<std::string_view> Split(std::string_view text, char delimiter);
// Split into a vector the caller keeps (cleared first), so a hot loop allocates nothing.
void SplitInto(std::string_view text, char delimiter, std::vector<std::string_view>& parts);

// --- Paths ---

bool IsPathSeparator(char c);  // '/' or '\'
// The path without its final separators; a root ("/", "C:\") keeps its own.
std::string CutFinalSeparator(std::string path);
// A UTF-8 path text as a file system path, '\' turned to '/' where it isn't the separator.
std::filesystem::path PathFromText(std::string_view text);
// A file system path back as UTF-8 text.
std::string TextFromPath(const std::filesystem::path& path);

}  // namespace tessarin
