#pragma once

#include <string>
#include <string_view>

namespace tessarin {

// Display helpers for texts that come from the dump and the data files. The records and the
// details keep the files' bytes; these run only where a text is shown or exported.

// Decodes the XML entities the build leaves in descriptions, manufacturers and the like:
// &quot; &apos; &amp; &lt; &gt; and numeric ones (&#34; &#x22;), the latter as UTF-8. Anything
// that isn't a well-formed entity (a lone '&', "&;", an unknown name) stays as it is.
std::string DecodeEntitiesForDisplay(std::string_view text);

// The bytes as UTF-8: unchanged when they are valid UTF-8, otherwise read byte by byte as
// Windows-1252 (its five undefined bytes 0x81, 0x8D, 0x8F, 0x90, 0x9D as U+0081 ... U+009D).
std::string DisplayUtf8(std::string_view bytes);

// True when the bytes are valid UTF-8 (no overlong forms, no surrogates, nothing above
// U+10FFFF).
bool IsValidUtf8(std::string_view bytes);

}  // namespace tessarin
