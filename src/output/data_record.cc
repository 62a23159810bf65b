#include "output/data_record.h"

#include <algorithm>

#include "output/little_endian.h"

namespace Orvane {

namespace {

constexpr std::size_t kNameOffset = 4;
constexpr std::size_t kRecTypeOffset = kNameOffset + kNameFieldSize;
constexpr std::size_t kRatingOffset = kRecTypeOffset + 1;
constexpr std::size_t kAttribMaskOffset = kRatingOffset + 1;
static_assert(kAttribMaskOffset + 2 == kDataRecordSize);

}  // namespace

void fillDataRecord(const MenuNode& node, std::span<std::uint8_t, kDataRecordSize> record) {
  storeU32(&record[0], node.getMediaId());

  const std::string_view name = storedName(node);
  const auto field = record.subspan<kNameOffset, kNameFieldSize>();
  std::fill(field.begin(), field.end(), std::uint8_t{0});
  std::copy(name.begin(), name.end(), field.begin());
  // One place further than a terminator would stand: after a name of 63 or 64 bytes this is recType
  // or rating, both of which follow. The order of the fields here is therefore part of the rule.
  record[kNameOffset + name.size() + 1] = 0;

  storeU8(&record[kRecTypeOffset], node.getRecType());
  storeU8(&record[kRatingOffset], node.getRating());
  storeU16(&record[kAttribMaskOffset], node.getAttribMask());
}

}  // namespace Orvane
