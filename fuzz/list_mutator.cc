// Mutates list files line by line and field by field, so that ids and names come to be repeated.
#include <string>
#include <utility>
#include <vector>

#include "mutator.h"

namespace {

using Orvane::fuzz::Dice;
using Parts = std::vector<std::string>;

Parts split(std::string_view text, char separator) {
  Parts parts;
  while (true) {
    const std::size_t length = text.find(separator);
    parts.emplace_back(text.substr(0, length));
    if (length == std::string_view::npos) return parts;
    text.remove_prefix(length + 1);
  }
}

std::string join(const Parts& parts, char separator) {
  std::string text;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i != 0) text += separator;
    text += parts[i];
  }
  return text;
}

// Makes a name differ as little as names of one artist may.
void changeName(std::string& name, Dice& dice) {
  switch (dice.below(4)) {
    case 0:
      for (char& c : name) {
        if ((c | 0x20) >= 'a' && (c | 0x20) <= 'z') c = static_cast<char>(c ^ 0x20);
      }
      return;
    case 1:
      name.resize(61 + dice.below(6), 'x');
      return;
    case 2:
      name += dice.oneIn(2) ? '\0' : '\xFF';
      return;
    default:
      if (!name.empty()) name.pop_back();
  }
}

void changeField(Parts& lines, Dice& dice) {
  std::string& line = dice.oneOf(lines);
  Parts fields = split(line, '|');
  std::string& field = dice.oneOf(fields);
  switch (dice.below(5)) {
    case 0:
      changeName(field, dice);
      break;
    case 1:
      field = std::to_string(dice.below(4));
      break;
    case 2:
      fields.emplace_back(std::to_string(dice.below(5)));
      break;
    default: {
      Parts others = split(dice.oneOf(lines), '|');
      field = dice.oneOf(others);
    }
  }
  line = join(fields, '|');
}

std::string change(std::string_view text, Dice& dice) {
  Parts lines = split(text, '\n');
  const auto at = [&] { return lines.begin() + static_cast<long>(dice.below(lines.size())); };
  switch (dice.below(6)) {
    case 0: {
      const std::string line = *at();
      lines.insert(at(), line);
      break;
    }
    case 1:
      lines.erase(at());
      break;
    case 2:
      std::swap(*at(), *at());
      break;
    case 3:
      lines.insert(at(), std::to_string(dice.below(4)) + "|b|1|A|1|a|2|B");
      break;
    default:
      changeField(lines, dice);
  }
  return join(lines, '\n');
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t limit, unsigned seed) {
  return Orvane::fuzz::mutateText(data, size, limit, seed, change);
}
