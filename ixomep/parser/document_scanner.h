// Internal: the quick reading of a definition text: one pass that records what it has fully
// checked. At the first byte that it does not know to be right (an error, a directive, a rarer
// form) it gives up, and class Grammar reads the text from the start: codes, texts and places of
// errors are the Grammar's alone. Bodies nest on a list of its own, not on the native stack.
#pragma once

#include <bit>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "ixomep/parser/byte_block.h"
#include "ixomep/parser/byte_kinds.h"
#include "ixomep/parser/byte_map.h"
#include "ixomep/parser/document.h"
#include "ixomep/parser/folded.h"
#include "ixomep/parser/name_table.h"
#include "ixomep/parser/record_array.h"

namespace ixomep {

// Whether texts are read quickly where that is possible; for tests that compare both readings.
class QuickReading {
 public:
  static bool IsOn() noexcept { return is_on_; }
  static void Use(bool on) noexcept { is_on_ = on; }

 private:
  inline static bool is_on_ = true;
};

class DocumentScanner {
 public:
  // Reads the document's text from its start to its end. The parser makes no objects of its own.
  explicit DocumentScanner(Document& document);
  DocumentScanner(const DocumentScanner&) = delete;
  DocumentScanner& operator=(const DocumentScanner&) = delete;

  // False when the text must be read by the Grammar. Then `folded` has what evaluations gave, so
  // that none is made twice. May throw std::bad_alloc or std::length_error.
  bool Read(FoldedLiterals& folded);

  // The elements of the outermost stretch.
  std::uint32_t First() const noexcept { return first_; }
  std::uint32_t Count() const noexcept { return count_; }

 private:
  // A stretch that is being read: the outermost one or a body.
  struct Frame {
    std::uint32_t start = 0;           // of a body
    std::uint32_t elements = 0;        // where its elements begin in pending_elements_
    std::uint32_t attributes = 0;      // where its owner's begin, and
    std::uint32_t attributes_end = 0;  // where they ended when a body was opened
    std::uint32_t owner = kNoRecord;   // the element in pending_elements_ that attributes belong to
    std::uint32_t holder = 0;          // the attribute whose body is being read
    bool has_loose = false;
    bool has_element = false;
    bool is_attribute = false;  // an attribute's body
    // The owner's attributes are the last ones of the document, as they mostly are, or others came
    // behind them (split), and when the owner gets more of them, they all wait until there are no
    // further ones (pending).
    bool is_split = false;
    bool is_pending = false;
  };

  static constexpr std::uint32_t LowBits(std::size_t count) noexcept {
    return count < 32 ? (std::uint32_t{1} << count) - 1 : 0xFFFFFFFFu;
  }
  // What an item is; of its value no more than how it begins.
  enum class Form : std::uint8_t {
    None,
    Option,
    String,  // an attribute; what is left is behind the opening quote
    Other,   // an attribute, with a number, mostly
    StringElement,
    OtherElement,
    BareElement
  };
  // An item up to its value.
  struct Head {
    std::uint8_t size;  // up to the value, where it has one, the opening quote of a string included
    std::uint8_t gap;   // of the white space before it
    Form form;
    bool starts_line;
    std::uint32_t name;
    std::uint32_t modifier;
  };
  // What followed an item when it was met last. Before that: no item, and as many bytes as seldom
  // repeat.
  struct Follower {
    Follower() = default;
    Follower(std::uint32_t place, const Head& item) noexcept
        : at(place), bytes(LowBits(item.size)), head(item) {}

    std::uint32_t at = 0;                      // of the white space before it
    std::uint32_t bytes = LowBits(kMostHead);  // a bit for each byte of the head
    Head head = {kMostHead, 0, Form::None, false, NameTable::kNoName, NameTable::kNoName};
    // Up to the end of its value, where its head has been met twice.
    std::uint32_t size = 0;
    // Its value, if that is a number: where it stands, a bit for each byte and each digit.
    std::uint32_t number = 0;
    std::uint32_t number_bytes = LowBits(32);
    std::uint32_t digits = 0;
    LiteralKind number_kind = LiteralKind::None;
    std::int32_t credit = kLikeCredit;  // of guesses that the next one is like it
  };
  // A run that is being read.
  struct Run {
    const char* at;
    AttributeRecord* next;
    const AttributeRecord* room_end;  // `next` where no attribute may come
    std::uint32_t last;               // what last_ is in the end
  };
  enum class RunEnd : std::uint8_t { Change, Look, Fail };  // another way, a closer look, no way
  // How many bytes of an item up to its value are compared with those of another one.
  static constexpr std::uint8_t kMostHead = 2 * ByteRun::kSize;
  // What right guesses count for at most: at what follows; that a number is like the one before.
  static constexpr std::int32_t kMostCredit = 24;
  static constexpr std::int32_t kLikeCredit = 8;
  // How many bytes an item may have up to the middle of its value and what is read at once there.
  static constexpr std::ptrdiff_t kRunRoom = 128;
  // How many bytes are looked at together for the end of a string: most strings are shorter, and
  // a processor guesses wrong in a loop that ends after one round or after two.
  static constexpr std::ptrdiff_t kBlockRoom = 32;
  // How many bytes of a map an item may take up to the middle of its value.
  static constexpr std::ptrdiff_t kMapRoom = 192;
  // Items by what they are known for: a brace, or the name with a number.
  static constexpr std::uint32_t kAfterCloser = 0;
  static constexpr std::uint32_t kAfterOpener = 1;
  static constexpr std::uint32_t kAfterName = 1;

  bool Scan();
  bool ScanWithStatements();
  bool ReadRun();
  RunEnd ReadForeseen();
  RunEnd ReadMapped();
  Run StartRun() const noexcept;
  RunEnd EndRun(const Run& run, const char* start, RunEnd how);
  bool ReadBrace(Item item, Run& run, std::uint32_t gap);
  bool AddForeseen(Follower& follower, Run& run);
  bool MayBeStatement(const Head& head, bool is_first) const noexcept {
    return head.form < Form::StringElement && (head.starts_line || (is_first && is_fresh_));
  }
  template <class Ends>
  bool AddItem(const Head& head, const char* start, const char* value, Run& run);
  static void AddPlainAttribute(std::uint32_t name, std::uint32_t modifier, const char* end,
                                Run& run);
  template <class Ends>
  bool AddPlainElement(const Head& head, const char* start, const char* value, Run& run);
  bool HasRoom(Run& run);
  bool MakeRoom(Run& run);
  // Whether attributes may be added behind those of the element before.
  bool HasOwner() const noexcept { return frame_.owner != kNoRecord && !frame_.is_split; }
  bool MayMap(const char* at) const noexcept {
    return next_semicolon_ == nullptr &&
           (map_.Covers(at, kMapRoom) || end_ - at >= ByteMap::kLeast);
  }
  Item FindHead(const char* at, Head& head) const noexcept;
  const char* FindTail(const char* end, Item item, Head& head) const noexcept;
  bool FindModifier(const char*& end, Head& head) const noexcept;
  void Learn(Form form, const char* end, std::uint32_t name, std::uint32_t modifier);
  void AddElement(const ElementRecord& element);
  bool ReadElement();
  bool ReadAttribute();
  bool ReadAttributeValue(AttributeRecord& attribute);
  // The number of the name at the position, all of whose bytes are of a class.
  std::uint32_t ReadName(unsigned classes);
  // `start` is the element's.
  bool ReadLiteral(LiteralRecord& literal, std::uint32_t start);
  bool ReadNumber(LiteralRecord& literal);
  bool ReadRareNumber(LiteralRecord& literal);
  // These move `at` behind the literal that stands there; false, and nothing is moved, when there
  // is none.
  template <class Ends>
  bool ReadString(const char*& at, LiteralRecord& literal) const noexcept;
  template <class Ends>
  bool ReadPlainNumber(const char*& at, LiteralRecord& literal) const noexcept;
  bool ReadPlainLiteral(const char*& at, LiteralRecord& literal) const noexcept;
  bool ReadExpression(LiteralRecord& literal, std::uint32_t start);
  bool AddLoose();
  AttributeRecord& AddAttribute(const AttributeRecord& attribute);
  bool TryStatement(bool& done);
  bool OpenBody(bool is_attribute);
  bool CloseBody();
  bool SkipLineComment() noexcept;
  bool ReadRest();

  // The owner of the attributes gets no more of them.
  void FinishElement() {
    if (frame_.is_split || frame_.is_pending) [[unlikely]] {
      if (frame_.owner != kNoRecord) FinishSplitElement();
    } else {
      SetAttributes(document_.attributes_.Size());
    }
  }
  void FinishSplitElement();
  // The attributes of the owner, if there is one, end there.
  void SetAttributes(std::uint32_t end) noexcept {
    if (frame_.owner == kNoRecord) return;
    ElementRecord& owner = pending_elements_[frame_.owner];
    owner.first_attribute = frame_.attributes;
    owner.attribute_count = end - frame_.attributes;
    frame_.attributes = document_.attributes_.Size();
  }
  bool MayStartStatement();
  bool IsAtStatementStart() const noexcept;
  // Whether a statement stands at the position; end is its ";", kNoRecord for none.
  bool FindStatement(std::uint32_t& end);
  // How the end of a value is found: in the bytes, or in the map of them.
  struct InBytes;
  struct InMap;
  // The first quote or backslash from a position on; the end of the text when there is none.
  const char* FindQuote(const char* at) const noexcept {
    for (; at < block_end_; at += kBlockRoom) {
      std::uint64_t hits = 0;
      for (std::ptrdiff_t i = 0; i < kBlockRoom; i += std::ptrdiff_t{ByteRun::kSize}) {
        hits |= std::uint64_t{ByteRun(at + i).Quotes()} << i;
      }
      if (hits != 0) return at + FirstBit(hits);
    }
    while (at != end_ && *at != '"' && *at != '\\') ++at;
    return at;
  }
  static bool HasValue(const char* end) noexcept;
  static bool OpensArray(const char* at) noexcept;
  // Whether an item may end at a position.
  bool EndsAt(const char* at) const noexcept {
    return IsQuick(*at, kQuickWhite) || (*at == '}' && !outer_.empty()) || at == end_;
  }
  bool BracketEnd(const char*& end, bool& is_simple);
  bool Compile(std::string_view source, std::uint32_t at, bool is_literal, bool is_shared,
               std::uint32_t& index);
  bool TakeCompiled(std::uint32_t at, std::size_t size, bool is_shared);
  bool Fold(FoldedLiterals& folded);

  std::uint32_t OffsetOf(const char* position) const noexcept {
    return static_cast<std::uint32_t>(position - text_);
  }

  Document& document_;
  const char* text_;
  const char* at_;
  const char* end_;        // a zero byte stands there
  const char* block_end_;  // before it kBlockRoom bytes may be read at once
  const char* run_end_;    // before it an item may be read without a look at where the text ends
  Frame frame_;
  std::vector<Frame> outer_;
  RecordArray<ElementRecord> pending_elements_;
  RecordArray<AttributeRecord> pending_attributes_;
  RecordArray<AttributeRecord>* attributes_;  // where those of the owner are added
  // Sources of simple expressions, each with the index of its value.
  std::unique_ptr<NameTable> sources_;
  std::vector<std::uint32_t> made_of_source_;
  // What the first scan compiled, for the second one, and how far that one is.
  std::vector<MadeValue> compiled_;
  std::size_t next_compiled_ = 0;
  std::vector<char> brackets_;
  LongWork work_;

  RecordArray<Follower> followers_;    // by the item before
  std::int32_t credit_ = kMostCredit;  // of guesses at what follows
  ByteMap map_;
  std::uint32_t last_ = kAfterCloser;
  const char* item_ = nullptr;  // the white space before the item that is being read

  // Where the last item ended, and whether a statement could start there without a line feed.
  const char* gap_ = nullptr;
  bool is_fresh_ = true;
  const char* next_semicolon_ = nullptr;
  std::uint64_t statement_steps_ = 0;

  std::uint32_t first_ = 0;
  std::uint32_t count_ = 0;
};

}  // namespace ixomep
