#pragma once

#include <cstdint>
#include <string>

#include "random.h"

namespace bench {

// `count` words with blanks between them; some words are not ASCII.
std::string randomName(Random& random, std::uint32_t count);

// A name of two or three words, another one for every number below ten million.
std::string distinctName(std::uint32_t number);

// 60 bytes that are always the same and four that are not: as long as a stored name can be, and
// another one for every number below fourteen million.
std::string lateDifferingName(std::uint32_t number);

}  // namespace bench
