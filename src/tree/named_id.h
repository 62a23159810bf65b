#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Orvane {

// An artist, an album or a genre: an id, 0 if there is none, and a name. Tracks share them.
//
// The name's bytes belong to somebody else and must outlive it.
class NamedId {
 public:
  // A name of 4 GiB or more is cut: at most 64 bytes of it are shown.
  constexpr NamedId(std::uint32_t id, std::string_view name)
      : name_(name.data()),
        nameSize_(static_cast<std::uint32_t>(std::min<std::size_t>(name.size(), 0xFFFFFFFF))),
        id_(id) {}
  NamedId(const NamedId&) = delete;
  NamedId& operator=(const NamedId&) = delete;

  std::uint32_t id() const { return id_; }
  std::string_view name() const { return {name_, nameSize_}; }

 private:
  const char* name_;
  std::uint32_t nameSize_;
  std::uint32_t id_;
};

}  // namespace Orvane
