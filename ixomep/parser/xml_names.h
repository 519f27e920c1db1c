// Internal: the names in an XML document: which of one element's attributes were written already,
// and what becomes of names that XML does not have.
#pragma once

#include <array>
#include <cstdint>
#include <string>
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

// Both for names that have numbers in a table: what was written is marked at the number, each name
// is converted once, and what is written around it is put together once.
class XmlNumberedNames {
 public:
  // `<tag`; ` modifier-name="`; ` val-name="`; ` opt-name="true"`.
  enum class Part : std::uint8_t { Tag, Modifier, Value, Option };
  static constexpr std::size_t kParts = 4;

  XmlNumberedNames(const NameTable& names, bool xml_names);

  // Another element begins: none of its names has been written.
  void Begin() noexcept { ++element_; }
  // False when the name is there already. The number becomes that of the first name that is written
  // like this one.
  bool Insert(std::uint32_t& number) {
    if (xml_names_) number = Convert(number).number;
    const bool is_new = written_[number] != element_;
    written_[number] = element_;
    return is_new;
  }
  // Borrowed until the next call; XmlBuffer::kPadding bytes may be read, also from its second byte.
  std::string_view Of(Part part, std::uint32_t number) {
    if (number >= kKept) return Append(part, number);
    Piece& piece = pieces_[number * kParts + static_cast<std::size_t>(part)];
    if (piece.size == 0) Keep(part, number, piece);
    return {kept_.data() + piece.at, piece.size};
  }

 private:
  static constexpr std::uint32_t kKept = 1024;  // so many names, those met first

  struct Known {
    String xml_name;
    std::uint32_t number = NameTable::kNoName;  // the first one with that XML name
  };
  struct Piece {
    std::uint32_t at;
    std::uint32_t size;
  };

  const Known& Convert(std::uint32_t number);
  // At the end of kept_, with its padding.
  std::string_view Append(Part part, std::uint32_t number);
  void Keep(Part part, std::uint32_t number, Piece& piece);

  const NameTable& names_;
  bool xml_names_;
  std::uint32_t element_ = 0;
  std::vector<std::uint32_t> written_;  // by number: the last element with the name
  std::vector<Known> known_;
  std::unordered_map<String, std::uint32_t> numbers_;
  std::vector<Piece> pieces_;
  std::string kept_;
  std::size_t kept_size_ = 0;  // what stands behind it goes with the next call
};

// An element's keyword as a tag: in small letters, with "-" for "_".
void AppendTag(std::string_view keyword, bool xml_names, std::string& out);

}  // namespace ixomep
