#pragma once

#include <string>

#include "plain/plain_menu.h"

namespace Orvane::plain {

// The whole file in either layout. Both go as deep as the tree does.
std::string plainTwoTableFile(const PlainNode& root);
std::string plainOneTableFile(const PlainNode& root);

}  // namespace Orvane::plain
