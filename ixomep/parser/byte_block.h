// Internal: several neighbouring bytes of a text looked at in one step: sixteen where the processor
// has an instruction set for that which every machine of its kind shares (SSE2), eight in a plain
// word elsewhere. A question gives a mask with one bit for each byte, in the order of the text.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace ixomep {

// Bytes as a number whose lowest byte is the first one.
template <class Number>
Number Load(const char* bytes) noexcept {
  Number number = 0;
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(&number, bytes, sizeof number);
  } else {
    for (std::size_t i = sizeof number; i-- > 0;) {
      number = static_cast<Number>(number << 8 | static_cast<unsigned char>(bytes[i]));
    }
  }
  return number;
}
inline std::uint64_t LoadWord(const char* bytes) noexcept { return Load<std::uint64_t>(bytes); }
inline std::uint32_t LoadHalf(const char* bytes) noexcept { return Load<std::uint32_t>(bytes); }
// Two bytes of a number, the lower one first.
inline void StorePair(char* bytes, std::uint32_t pair) noexcept {
  const auto low = static_cast<std::uint16_t>(pair);
  if constexpr (std::endian::native == std::endian::little) {
    std::memcpy(bytes, &low, sizeof low);
  } else {
    bytes[0] = static_cast<char>(low & 0xFF);
    bytes[1] = static_cast<char>(low >> 8);
  }
}

// The place of the lowest bit of a mask that has one: without a question whether it has, which
// std::countr_zero must ask where the processor's instruction does not answer it.
inline std::uint32_t FirstBit(std::uint64_t mask) noexcept {
  if (mask == 0) __builtin_unreachable();
  return static_cast<std::uint32_t>(std::countr_zero(mask));
}

// The byte eight times.
constexpr std::uint64_t Eightfold(unsigned char byte) noexcept {
  return byte * 0x0101010101010101u;
}

// Bytes that are one byte when some bits are set in them: several letters that one question finds.
struct LikeByte {
  char bits;
  char byte;
};

// The bytes of a word; the mask has their highest bits. Exact for all bytes.
class WordBlock {
 public:
  using Mask = std::uint64_t;
  static constexpr std::size_t kSize = 8;
  static constexpr Mask kAll = Eightfold(0x80);

  // kSize bytes may be read.
  explicit WordBlock(const char* bytes) noexcept : word_(LoadWord(bytes)) {}

  Mask Is(char byte) const noexcept {
    const std::uint64_t other = word_ ^ Eightfold(static_cast<unsigned char>(byte));
    return ~(((other & Eightfold(0x7F)) + Eightfold(0x7F)) | other) & kAll;
  }
  template <char... kBytes>
  Mask IsAny() const noexcept {
    return (Is(kBytes) | ...);
  }
  // Bytes between two that are ASCII.
  Mask Between(char first, char last) const noexcept {
    const std::uint64_t low_bits = word_ & Eightfold(0x7F);
    const auto above = static_cast<unsigned char>(0x7F - last);
    const auto below = static_cast<unsigned char>(0x80 - first);
    return ~((low_bits + Eightfold(above)) | word_) & (low_bits + Eightfold(below)) & kAll;
  }
  // Bytes below the blank, bytes beyond ASCII, and those that are like one of these.
  template <LikeByte... kLikes>
  Mask IsControlOrForeignOrLike() const noexcept {
    Mask hits = Between(' ', '\x7F') ^ kAll;
    ((hits |= With(kLikes.bits).Is(kLikes.byte)), ...);
    return hits;
  }
  // The place of the first byte in a mask that has one.
  static std::size_t First(Mask mask) noexcept {
    return static_cast<std::size_t>(std::countr_zero(mask)) / 8;
  }

 private:
  struct Word {
    std::uint64_t word;
  };
  explicit WordBlock(Word word) noexcept : word_(word.word) {}
  WordBlock With(char bits) const noexcept {
    return WordBlock(Word{word_ | Eightfold(static_cast<unsigned char>(bits))});
  }
  friend class WordPair;

  std::uint64_t word_;
};

// What is asked of runs: sixteen bytes, a mask with one bit for each, the first one lowest. This
// one is made of two words.
class WordPair {
 public:
  static constexpr std::size_t kSize = 16;

  explicit WordPair(const char* bytes) noexcept : low_(bytes), high_(bytes + WordBlock::kSize) {}

  // The bytes that are the same in another block.
  std::uint32_t Same(const WordPair& other) const noexcept {
    WordPair differences = *this;
    differences.low_.word_ ^= other.low_.word_;
    differences.high_.word_ ^= other.high_.word_;
    return differences.Of([](const WordBlock& block) { return block.Is('\0'); });
  }
  // White space.
  std::uint32_t White() const noexcept {
    return Of([](const WordBlock& block) {
      return block.Between('\t', '\r') | block.IsAny<' ', '\xA0'>();
    });
  }
  std::uint32_t ClosersAndColons() const noexcept {
    return Of([](const WordBlock& block) { return block.IsAny<'}', ':'>(); });
  }
  // What a keyword, an attribute's name, a number may have behind its first byte.
  std::uint32_t InKeyword() const noexcept {
    return Of([](const WordBlock& block) { return block.Between('A', 'Z') | block.Is('_'); });
  }
  std::uint32_t InName() const noexcept {
    return Of([](const WordBlock& block) {
      const std::uint64_t above = block.word_ & WordBlock::kAll & ~block.Is('\xA0');
      return block.Between('A', 'Z') | block.Between('a', 'z') | block.Between('0', '9') |
             block.IsAny<'_', '-'>() | above;
    });
  }
  std::uint32_t Digits() const noexcept {
    return Of([](const WordBlock& block) { return block.Between('0', '9'); });
  }
  // Its digits, point and unit.
  std::uint32_t InNumber() const noexcept {
    return Of([](const WordBlock& block) {
      return block.Between('0', '9') | block.Between('a', 'z') | block.Is('.');
    });
  }
  std::uint32_t LineFeeds() const noexcept {
    return Of([](const WordBlock& block) { return block.Is('\n'); });
  }
  // What ends a string or makes the next byte ordinary.
  std::uint32_t Quotes() const noexcept {
    return Of([](const WordBlock& block) { return block.IsAny<'"', '\\'>(); });
  }

 private:
  template <class Question>
  std::uint32_t Of(Question question) const noexcept {
    return Gathered(question(low_)) | Gathered(question(high_)) << 8;
  }
  // The highest bits of the bytes, beside each other.
  static std::uint32_t Gathered(WordBlock::Mask mask) noexcept {
    return static_cast<std::uint32_t>(((mask >> 7) * 0x0102040810204080u) >> 56);
  }

  WordBlock low_, high_;
};

#if defined(__SSE2__)

class VectorBlock {
 public:
  using Mask = std::uint32_t;
  static constexpr std::size_t kSize = 16;
  static constexpr Mask kAll = 0xFFFF;

  explicit VectorBlock(const char* bytes) noexcept
      : bytes_(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes))) {}

  Mask Is(char byte) const noexcept { return MaskOf(Equal(byte)); }
  template <char... kBytes>
  Mask IsAny() const noexcept {
    __m128i hits = _mm_setzero_si128();
    ((hits = _mm_or_si128(hits, Equal(kBytes))), ...);
    return MaskOf(hits);
  }
  Mask Between(char first, char last) const noexcept { return MaskOf(Range(bytes_, first, last)); }
  template <LikeByte... kLikes>
  Mask IsControlOrForeignOrLike() const noexcept {
    // The highest bit is what counts. As signed numbers, bytes beyond ASCII are below the blank
    // too.
    __m128i hits = _mm_subs_epi8(bytes_, _mm_set1_epi8(' '));
    ((hits = _mm_or_si128(hits, IsLike<kLikes>())), ...);
    return MaskOf(hits);
  }
  static std::size_t First(Mask mask) noexcept {
    return static_cast<std::size_t>(std::countr_zero(mask));
  }

  // As WordPair's.
  Mask Same(const VectorBlock& other) const noexcept {
    return MaskOf(_mm_cmpeq_epi8(bytes_, other.bytes_));
  }
  Mask White() const noexcept {
    // Both blanks are the same but for their highest bit. Moved up to the end of the signed
    // numbers, the bytes from tabulator to carriage return are the greatest ones.
    const __m128i low_bits = _mm_and_si128(bytes_, _mm_set1_epi8(0x7F));
    const __m128i blanks = _mm_cmpeq_epi8(low_bits, _mm_set1_epi8(' '));
    const __m128i moved = _mm_add_epi8(bytes_, _mm_set1_epi8(0x7F - '\r'));
    const __m128i controls = _mm_cmpgt_epi8(moved, _mm_set1_epi8(0x7F - '\r' + '\t' - 1));
    return MaskOf(_mm_or_si128(blanks, controls));
  }
  Mask ClosersAndColons() const noexcept { return IsAny<'}', ':'>(); }
  Mask InKeyword() const noexcept {
    return MaskOf(_mm_or_si128(Equal('_'), Range(bytes_, 'A', 'Z')));
  }
  Mask InName() const noexcept {
    const __m128i letters = Range(_mm_or_si128(bytes_, _mm_set1_epi8(' ')), 'a', 'z');
    const __m128i others = _mm_or_si128(Equal('_'), Equal('-'));
    // Among bytes as signed numbers those of 128 and more are the negative ones.
    const __m128i above = _mm_andnot_si128(Equal('\xA0'), bytes_);
    return MaskOf(
        _mm_or_si128(_mm_or_si128(letters, others), _mm_or_si128(Range(bytes_, '0', '9'), above)));
  }
  Mask Digits() const noexcept { return Between('0', '9'); }
  Mask InNumber() const noexcept {
    const __m128i letters = _mm_or_si128(Range(bytes_, 'a', 'z'), Equal('.'));
    return MaskOf(_mm_or_si128(letters, Range(bytes_, '0', '9')));
  }
  Mask LineFeeds() const noexcept { return Is('\n'); }
  Mask Quotes() const noexcept { return IsAny<'"', '\\'>(); }

 private:
  __m128i Equal(char byte) const noexcept { return _mm_cmpeq_epi8(bytes_, _mm_set1_epi8(byte)); }
  template <LikeByte kLike>
  __m128i IsLike() const noexcept {
    const __m128i bytes =
        kLike.bits != 0 ? _mm_or_si128(bytes_, _mm_set1_epi8(kLike.bits)) : bytes_;
    return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(kLike.byte));
  }
  static __m128i Range(__m128i bytes, char first, char last) noexcept {
    const __m128i from_first = _mm_sub_epi8(bytes, _mm_set1_epi8(first));
    const __m128i length = _mm_set1_epi8(static_cast<char>(last - first));
    return _mm_cmpeq_epi8(_mm_min_epu8(from_first, length), from_first);
  }
  static Mask MaskOf(__m128i bytes) noexcept { return static_cast<Mask>(_mm_movemask_epi8(bytes)); }

  __m128i bytes_;
};
using ByteBlock = VectorBlock;
using ByteRun = VectorBlock;

#else

using ByteBlock = WordBlock;
using ByteRun = WordPair;

#endif

}  // namespace ixomep
