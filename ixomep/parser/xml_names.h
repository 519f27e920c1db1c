// Internal: the names in an XML document: which of one element's attributes were written already,
// and what becomes of names that XML does not have.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "ixomep/host/string.h"

namespace ixomep {

// The names of one element's attributes.
class XmlNameSet {
 public:
  // False when the name is there already.
  bool Insert(const String& name);
  void Clear() noexcept {
    marks_ = 0;
    few_.clear();
    if (!many_.empty()) many_.clear();
  }

 private:
  static constexpr std::size_t kFew = 16;  // found faster by looking at them all

  bool Contains(const String& name) const;
  void InsertLines(std::string_view name);

  std::uint64_t marks_ = 0;  // of all names: one bit each, mostly another one
  std::vector<String> few_;
  std::unordered_set<String> many_;
};

// Names as XML can have them: UTF-8, "_" for every character that XML does not allow. Those met
// lately are kept.
class XmlNames {
 public:
  // Borrowed until the next call.
  const String& Of(const String& name);

 private:
  struct Known {
    String name, xml_name;
  };
  std::array<Known, 64> known_;
};

}  // namespace ixomep
