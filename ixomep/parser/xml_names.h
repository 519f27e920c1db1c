// Internal: the names in an XML document: which of one element's attributes were written already,
// and what becomes of names that XML does not have.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "ixomep/host/string.h"
#include "ixomep/parser/name_table.h"

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

// Both for names that have numbers in a table: what was written is marked at the number, and each
// name is converted once.
class XmlNumberedNames {
 public:
  XmlNumberedNames(const NameTable& names, bool xml_names);

  // Another element begins: none of its names has been written.
  void Begin() noexcept { ++element_; }
  // The name as it is to be written, borrowed until the next call; false when it is there already.
  bool Insert(std::uint32_t number, std::string_view& name) {
    if (xml_names_) {
      const Known& known = Convert(number);
      number = known.number;
      name = known.xml_name.view();
    } else {
      name = names_.View(number);
    }
    const bool is_new = written_[number] != element_;
    written_[number] = element_;
    return is_new;
  }

 private:
  struct Known {
    String xml_name;
    std::uint32_t number = NameTable::kNoName;  // the first one with that XML name
  };

  const Known& Convert(std::uint32_t number);

  const NameTable& names_;
  bool xml_names_;
  std::uint32_t element_ = 0;
  std::vector<std::uint32_t> written_;  // by number: the last element with the name
  std::vector<Known> known_;
  std::unordered_map<String, std::uint32_t> numbers_;
};

}  // namespace ixomep
