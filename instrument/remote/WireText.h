#pragma once

#include <string>
#include <string_view>

namespace cvars::remote {

/// Appends a wide text as UTF-8; what is no character becomes U+FFFD.
void AppendToWire(std::wstring_view text, std::string& wire);

/// Appends a UTF-8 text as a string of the command language: in quotes, its own quotes doubled.
void AppendQuoted(std::string_view text, std::string& wire);

/// Appends bytes as a definite-length block: "#15hello".
void AppendBlock(std::string_view bytes, std::string& wire);

/// Reads UTF-8; bytes that are none become U+FFFD.
std::wstring FromWire(std::string_view wire);

}  // namespace cvars::remote
