// What one record says about its menu item: id, name, kind, rating, attributes.
#pragma once

#include <cstdint>
#include <string_view>

#include "output/inventory_format.h"
#include "reader/little_endian.h"

namespace Orvane {

// A window on the 72 bytes that describe an item, in either layout: a data record of the two-table
// layout, or the part of a node record that follows its links. It owns nothing and stays valid as
// long as the bytes of the view that handed it out. An empty window (operator bool is false) stands
// for an item that the file does not hold; its fields read as 0 and its name as empty.
class ItemView {
 public:
  ItemView() = default;
  // `bytes` must point at kDataRecordSize readable bytes.
  explicit ItemView(const std::uint8_t* bytes) : bytes_(bytes) {}

  explicit operator bool() const { return bytes_ != nullptr; }

  std::uint32_t mediaId() const { return bytes_ == nullptr ? 0 : readLe32(bytes_); }

  // The whole 64-byte name field, zero fill included.
  std::string_view nameField() const {
    if (bytes_ == nullptr) return {};
    return {static_cast<const char*>(static_cast<const void*>(bytes_ + kNameOffset)),
            kNameFieldSize};
  }

  // The name as a player shows it: up to the first zero byte, or all 64 bytes.
  std::string_view name() const {
    const std::string_view field = nameField();
    return field.substr(0, field.find('\0'));
  }

  std::uint8_t recType() const { return bytes_ == nullptr ? std::uint8_t{0} : bytes_[kRecType]; }
  std::uint8_t rating() const { return bytes_ == nullptr ? std::uint8_t{0} : bytes_[kRating]; }
  std::uint16_t attribMask() const {
    return bytes_ == nullptr ? std::uint16_t{0} : readLe16(bytes_ + kAttribMask);
  }

  // Offsets of the fields within the 72 bytes; mediaId comes first.
  static constexpr std::size_t kNameOffset = 4;
  static constexpr std::size_t kRecType = kNameOffset + kNameFieldSize;
  static constexpr std::size_t kRating = kRecType + 1;
  static constexpr std::size_t kAttribMask = kRating + 1;

 private:
  const std::uint8_t* bytes_ = nullptr;
};

}  // namespace Orvane
