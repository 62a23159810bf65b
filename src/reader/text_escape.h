#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

// Appends `bytes` as printable UTF-8 on one line: control characters and bytes that are no UTF-8
// become \n, \r, \t or \xHH, a backslash becomes \\, and each character of `also` gets a backslash
// before it. Different bytes give different text, and unescape() turns it back.
void appendEscaped(std::string& out, std::string_view bytes, std::string_view also = {});
std::string escaped(std::string_view bytes, std::string_view also = {});

// The bytes that `text` stands for; nothing if a backslash in it begins no escape.
std::optional<std::string> unescaped(std::string_view text);

// Splits a menu path at its slashes and unescapes the parts: "/Artists/AC\/DC" gives "Artists" and
// "AC/DC". Slashes at either end and empty parts do not count. Nothing for a bad escape.
std::optional<std::vector<std::string>> splitPath(std::string_view path);

}  // namespace Orvane
