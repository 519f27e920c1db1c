// The list of all built-in functions, and the two ways to find one: by text
// (IxoMepExprNode::aFunctionCallMap, for hosts) and by interned address (FindBuiltin, for the
// evaluator).
#include "ixomep/builtins/table.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "ixomep/builtins/handlers.h"
#include "ixomep/expr/builtin_table.h"
#include "ixomep/values/string_address_map.h"

namespace ixomep {

namespace {

using N = IxoMepExprNode;
namespace b = builtins;

// Name, handler, body, signature (signature.h tells how to read it).
constexpr BuiltinRow kRows[] = {
    {"cond", &N::_cond, &b::Cond, "Code, Code, [Code, Code]..., Code -> Any"},
    {"while", &N::_mepwhile, &b::While, "Code, Code, [Code] -> Any"},
    {"set", &N::_set, &b::Set, "Place, Any -> Any"},
    {"rgbval", &N::_rgbval, &b::RgbVal,
     "String -> Integer | String, Number -> Integer | Number, Number, Number -> Integer"},
    {"rgb2hsv", &N::_rgb2hsv, &b::Rgb2Hsv, "Number, Number, Number -> Integer"},
    {"hsvval", &N::_hsvval, &b::HsvVal, "Number, Number, Number -> Integer | String -> Integer"},
    {"hsv2rgb", &N::_hsv2rgb, &b::Hsv2Rgb,
     "Number, Number, Number -> Integer | Integer -> Integer"},
    {"for", &N::_mepfor, &b::For, "Place, Integer, Integer, Code, [Code] -> Any"},
    {"fortok", &N::_fortok, &b::Fortok, "Place, String, String, Code, [Code] -> Any"},
    {"try", &N::_meptry, &b::Try, "Code, Code -> Any"},
    {"{", &N::_curly, &b::Curly, "[Value]... -> Array"},
    {"{:", &N::_curlycolon, &b::CurlyColon, "[Value]... -> Map"},
    {"areplace", &N::_areplace, &b::AReplace, "Name, [Integer]..., Integer, Any -> Any"},
    {"aappend", &N::_aappend, &b::AAppend, "Name, [Integer]..., Any -> Any"},
    {"ainsert", &N::_ainsert, &b::AInsert, "Name, [Integer]..., Integer, Any -> Integer"},
    {"aerase", &N::_aerase, &b::AErase, "Name, [Integer]..., Integer -> Any"},
    {"asinsert", &N::_asinsert, &b::ASInsert, "Name, Any -> Any"},
    {"search", &N::_search, &b::Search, "String, String, Integer -> Integer"},
    {"bsearch", &N::_bsearch, &b::BSearch, "String, String, Integer -> Integer"},
    {"copy", &N::_copy, &b::Copy, "String, Integer, Integer -> String"},
    {"replace", &N::_replace, &b::Replace, "String, String, String -> String"},
    {"replall", &N::_replall, &b::ReplAll, "String, String, String -> String"},
    {"lower", &N::_lower, &b::Lower, "String -> String"},
    {"upper", &N::_upper, &b::Upper, "String -> String"},
    {"ilower", &N::_ilower, &b::ILower, "String -> String"},
    {"iupper", &N::_iupper, &b::IUpper, "String -> String"},
    {"mstr", &N::_mstr, &b::MStr, "String -> String"},
    {"base64encode", &N::_base64encode, &b::Base64Encode, "String -> String"},
    {"base64decode", &N::_base64decode, &b::Base64Decode, "String -> String"},
    {"toutf8", &N::_toutf8, &b::ToUtf8, "String -> String"},
    {"fromutf8", &N::_fromutf8, &b::FromUtf8, "String -> String"},
    {"tooem", &N::_tooem, &b::ToOem, "String -> String"},
    {"fromoem", &N::_fromoem, &b::FromOem, "String -> String"},
    {"tokcnt", &N::_tokcnt, &b::TokCnt, "String, [String] -> Integer"},
    {"token", &N::_token, &b::Token, "String, Integer, [String] -> String"},
    {"tokindex", &N::_tokindex, &b::TokIndex, "String, String, [String] -> Integer"},
    {"tokcat", &N::_tokcat, &b::TokCat, "String, String, [String] -> String"},
    {"tokunion", &N::_tokunion, &b::TokUnion, "String, String, [String] -> String"},
    {"tokisect", &N::_tokisect, &b::TokIsect, "String, String, [String] -> String"},
    {"tokdiff", &N::_tokdiff, &b::TokDiff, "String, String, [String] -> String"},
    {"tokstr", &N::_tokstr, &b::TokStr, "Array, [String] -> String"},
    {"valtokstr", &N::_valtokstr, &b::ValTokStr, "Array, [String] -> String"},
    {"strarray", &N::_strarray, &b::StrArray, "String, [String] -> Array"},
    {"valarray", &N::_valarray, &b::ValArray, "String, [String] -> Array"},
    {"uistr", &N::_uistr, &b::UIStr, "Real, Integer -> String"},
    {"uival", &N::_uival, &b::UIVal, "String -> Real"},
    {"pow", &N::_pow, &b::Pow, "Number, Number -> Real"},
    {"min", &N::_min, &b::Min, "Number, Number -> Number"},
    {"max", &N::_max, &b::Max, "Number, Number -> Number"},
    {"regex", &N::_regex, &b::RegEx, "String, String -> Integer"},
    {"byte", &N::_byte, &b::Byte, "Integer, Integer -> Integer"},
    {"error", &N::_error, &b::Error, "String -> Nothing"},
    {"type", &N::_type, &b::Type, "Any -> String"},
    {"valofvar", &N::_valofvar, &b::ValOfVar, "String -> Any"},
    {"curvars", &N::_curvars, &b::CurVars, "-> String"},
    {"internal", &N::_internal, &b::Internal, "String -> Any"},
    {"array", &N::_array, &b::Array, "Integer... -> Array"},
    {"map", &N::_map, &b::Map, "-> Map"},
    {"merase", &N::_merase, &b::MErase, "Name, Any -> Any"},
    {"random", &N::_random, &b::Random, "-> Real"},
    {"getTickCount", &N::_getTickCount, &b::GetTickCount, "-> Integer"},
    {"abs", &N::_abs, &b::Abs, "Number -> Number"},
    {"eval", &N::_eval, &b::Eval, "Any -> Any"},
    {"parse", &N::_parse, &b::Parse, "String -> Expression"},
    {"lambda", &N::_lambda, &b::Lambda, "[Name]..., Code -> Lambda"},
    {"object", &N::_object, &b::Object, "-> Object"},
    {"encodeuri", &N::_encodeuri, &b::EncodeUri, "String, [String] -> String"},
    {"tourlquerystring", &N::_tourlquerystring, &b::ToUrlQueryString, "Map, [String] -> String"},
};
constexpr std::size_t kRowCount = std::size(kRows);
static_assert(kRowCount == 68);

// The row with that handler; each has one.
consteval const BuiltinRow& RowOf(IxoMepExprNode::Handler IxoMepExprNode::*handler) {
  const BuiltinRow* row = kRows;
  while (row->handler != handler) ++row;
  return *row;
}

// Tells a row apart without carrying it: BuiltinBody is a plain function.
template <std::size_t kRow>
IxoMepErrorEnum RunRow(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out) {
  return RunBuiltin(kRows[kRow], call, frame, out);
}
template <std::size_t kRow>
IxoMepErrorEnum RunMathRow(const IxoMepExprNode& call, Frame& frame, IxoMepValue& out) {
  return RunBuiltin(kMathRows[kRow], call, frame, out);
}

// Addresses of names to functions: open addressing, a quarter full, so that a name that is no
// built-in is told after one or two comparisons. Addresses are compared and never read.
class AddressTable {
 public:
  AddressTable() {
    AddRows<RunMathNames>(std::make_index_sequence<std::tuple_size_v<decltype(kMathRows)>>());
    AddRows<RunNames>(std::make_index_sequence<kRowCount>());
  }

  BuiltinBody Find(const char* name) const noexcept {
    std::size_t at = SlotOf(name);
    while (slots_[at].name != nullptr) {
      if (slots_[at].name == name) return slots_[at].body;
      at = (at + 1) % kSlots;
    }
    return nullptr;
  }

 private:
  static constexpr std::size_t kSlots = 512;
  struct Slot {
    const char* name = nullptr;
    BuiltinBody body = nullptr;
  };
  struct RunNames {
    template <std::size_t kRow>
    static void AddTo(AddressTable& table) {
      table.Add(kRows[kRow].name, &RunRow<kRow>);
    }
  };
  struct RunMathNames {
    template <std::size_t kRow>
    static void AddTo(AddressTable& table) {
      table.Add(kMathRows[kRow].name, &RunMathRow<kRow>);
    }
  };

  template <class Names, std::size_t... kRow>
  void AddRows(std::index_sequence<kRow...>) {
    (Names::template AddTo<kRow>(*this), ...);
  }
  // No name stands twice in the rows.
  void Add(const char* name, BuiltinBody body) {
    const char* const address = Intern(name);
    std::size_t at = SlotOf(address);
    while (slots_[at].name != nullptr) at = (at + 1) % kSlots;
    slots_[at] = Slot{address, body};
  }
  static std::size_t SlotOf(const char* name) noexcept {
    const auto address = reinterpret_cast<std::uintptr_t>(name);
    return static_cast<std::size_t>((std::uint64_t{address} * 0x9E3779B97F4A7C15u) >> 55);
  }

  std::array<Slot, kSlots> slots_{};
};

}  // namespace

std::span<const BuiltinRow> BuiltinRows() noexcept { return kRows; }

std::uint32_t ixo_hash(const char* text) noexcept {
  std::uint32_t hash = 0;
  if (text == nullptr) return hash;
  for (; *text != '\0'; ++text) {
    hash = hash * 5 + static_cast<std::uint32_t>(std::int32_t{static_cast<signed char>(*text)});
  }
  return hash;
}

std::size_t FunctionNameHash::operator()(const char* name) const noexcept { return ixo_hash(name); }

bool FunctionNameEqual::operator()(const char* a, const char* b) const noexcept {
  if (a == b) return true;
  return a != nullptr && b != nullptr && std::string_view(a) == b;
}

BuiltinBody FindBuiltin(const char* name) noexcept {
  static const AddressTable table;
  return table.Find(name);
}

}  // namespace ixomep

IxoMepExprNode::FunctionCallMap IxoMepExprNode::aFunctionCallMap;

void IxoMepExprNode::InitFunctionCallMap() {
  if (!aFunctionCallMap.empty()) return;
  aFunctionCallMap.reserve(ixomep::BuiltinRows().size());
  for (const ixomep::BuiltinRow& row : ixomep::BuiltinRows()) {
    aFunctionCallMap.emplace(ixomep::Intern(row.name), row.handler);
  }
  // So that FindBuiltin, which cannot fail, finds all its names interned.
  for (const ixomep::BuiltinRow& row : ixomep::kMathRows) (void)ixomep::Intern(row.name);
}

// The members of IxoMepExprNode that serve hosts.
#define IXOMEP_HANDLER(name)                                                                      \
  IxoMepErrorEnum IxoMepExprNode::name(const IxoMepExpressionParser* parser,                      \
                                       IxoMepValueSet* scope, IxoMepValue*& result,               \
                                       String& errorText, bool strict) const {                    \
    return ixomep::RunHandler(ixomep::RowOf(&IxoMepExprNode::name), *this, parser, scope, result, \
                              errorText, strict);                                                 \
  }

IXOMEP_HANDLER(_cond)
IXOMEP_HANDLER(_mepwhile)
IXOMEP_HANDLER(_set)
IXOMEP_HANDLER(_rgbval)
IXOMEP_HANDLER(_rgb2hsv)
IXOMEP_HANDLER(_hsvval)
IXOMEP_HANDLER(_hsv2rgb)
IXOMEP_HANDLER(_mepfor)
IXOMEP_HANDLER(_fortok)
IXOMEP_HANDLER(_meptry)
IXOMEP_HANDLER(_curly)
IXOMEP_HANDLER(_curlycolon)
IXOMEP_HANDLER(_areplace)
IXOMEP_HANDLER(_aappend)
IXOMEP_HANDLER(_ainsert)
IXOMEP_HANDLER(_aerase)
IXOMEP_HANDLER(_asinsert)
IXOMEP_HANDLER(_search)
IXOMEP_HANDLER(_bsearch)
IXOMEP_HANDLER(_copy)
IXOMEP_HANDLER(_replace)
IXOMEP_HANDLER(_replall)
IXOMEP_HANDLER(_lower)
IXOMEP_HANDLER(_upper)
IXOMEP_HANDLER(_ilower)
IXOMEP_HANDLER(_iupper)
IXOMEP_HANDLER(_mstr)
IXOMEP_HANDLER(_base64encode)
IXOMEP_HANDLER(_base64decode)
IXOMEP_HANDLER(_toutf8)
IXOMEP_HANDLER(_fromutf8)
IXOMEP_HANDLER(_tooem)
IXOMEP_HANDLER(_fromoem)
IXOMEP_HANDLER(_tokcnt)
IXOMEP_HANDLER(_token)
IXOMEP_HANDLER(_tokindex)
IXOMEP_HANDLER(_tokcat)
IXOMEP_HANDLER(_tokunion)
IXOMEP_HANDLER(_tokisect)
IXOMEP_HANDLER(_tokdiff)
IXOMEP_HANDLER(_tokstr)
IXOMEP_HANDLER(_valtokstr)
IXOMEP_HANDLER(_strarray)
IXOMEP_HANDLER(_valarray)
IXOMEP_HANDLER(_uistr)
IXOMEP_HANDLER(_uival)
IXOMEP_HANDLER(_pow)
IXOMEP_HANDLER(_min)
IXOMEP_HANDLER(_max)
IXOMEP_HANDLER(_regex)
IXOMEP_HANDLER(_byte)
IXOMEP_HANDLER(_error)
IXOMEP_HANDLER(_type)
IXOMEP_HANDLER(_valofvar)
IXOMEP_HANDLER(_curvars)
IXOMEP_HANDLER(_internal)
IXOMEP_HANDLER(_array)
IXOMEP_HANDLER(_map)
IXOMEP_HANDLER(_merase)
IXOMEP_HANDLER(_random)
IXOMEP_HANDLER(_getTickCount)
IXOMEP_HANDLER(_abs)
IXOMEP_HANDLER(_eval)
IXOMEP_HANDLER(_parse)
IXOMEP_HANDLER(_lambda)
IXOMEP_HANDLER(_object)
IXOMEP_HANDLER(_encodeuri)
IXOMEP_HANDLER(_tourlquerystring)
