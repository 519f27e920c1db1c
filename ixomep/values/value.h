// IxoMepValue: the one dynamically typed value of the language, a 32-bit type tag and one 64-bit
// payload. This header is the face; the members are defined by group in value.cpp (life),
// value_access.cpp, value_assign.cpp, value_containers.cpp, value_text.cpp, value_compare.cpp,
// value_methods.cpp, ../expr/engine_hooks.cpp (what needs expressions) and
// ../parser/literal_*.cpp (reading literals).
#pragma once

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <map>
#include <new>
#include <utility>
#include <vector>

#include "ixomep/export.h"
#include "ixomep/host/string.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/value_type.h"

class IxoMepExprNode;
class IxoMepExpressionParser;
class IxoMepObject;
class IxoMepParser;
class IxoMepValue;

// An ordered sequence of value pointers. As the payload of an array it owns its elements, as an
// argument list it only lends them.
using IxoMepValueList = std::vector<IxoMepValue*>;

// The order of map keys: holds when b > a, so that keys run in ascending order.
struct IXOMEP_API IxoMepValueLess {
  bool operator()(const IxoMepValue* a, const IxoMepValue* b) const;
};

// Keys and values are owned by the map value that holds the map.
using IxoMepValueMap = std::map<const IxoMepValue*, IxoMepValue*, IxoMepValueLess>;

namespace ixomep {
struct ListRep;
struct MapRep;
struct ValueAccess;
}  // namespace ixomep

class IXOMEP_API IxoMepValue {
 public:
  // --- Life (value.cpp) ---------------------------------------------------------------------
  IxoMepValue() noexcept : type_(IxoMepValueType::Undefined) { payload_.bits = 0; }
  IxoMepValue(const String& text) noexcept;
  IxoMepValue(String&& text) noexcept : type_(IxoMepValueType::String) {
    new (static_cast<void*>(&payload_.text)) String(std::move(text));
  }
  IxoMepValue(const char* text);  // null gives the empty string
  IxoMepValue(short number) noexcept : IxoMepValue(static_cast<int>(number)) {}
  IxoMepValue(unsigned short number) noexcept : IxoMepValue(static_cast<int>(number)) {}
  IxoMepValue(int number) noexcept : type_(IxoMepValueType::Integer) { SetInteger(number); }
  IxoMepValue(unsigned int number) noexcept : IxoMepValue(static_cast<int>(number)) {}
  IxoMepValue(long number) noexcept : IxoMepValue(static_cast<int>(number)) {}  // low 32 bits
  IxoMepValue(unsigned long number) noexcept : IxoMepValue(static_cast<int>(number)) {}
  IxoMepValue(double number) noexcept : type_(IxoMepValueType::Real) { payload_.real = number; }
  // Integer 1 or 0. Constrained, so that no pointer turns into a truth value.
  template <std::same_as<bool> B>
  IxoMepValue(B truth) noexcept : IxoMepValue(truth ? 1 : 0) {}
  // A reference; the target must outlive it.
  IxoMepValue(IxoMepValue* target) noexcept;
  // These two take over one counted reference of the caller.
  IxoMepValue(IxoMepObject* object) noexcept;
  IxoMepValue(IxoMepExprNode* lambda) noexcept;
  // An expression: a clone made by CreateCopy, or (take) the object itself.
  IxoMepValue(const IxoMepExpressionParser* parser);
  IxoMepValue(IxoMepExpressionParser* parser, bool take);
  // Default content of Integer, Real, Measure, Time, Array, Map, Object; any other type is
  // reported as an assertion and has no payload.
  explicit IxoMepValue(IxoMepValueType type);
  // Integer n; Real, Measure, Time n; Array of n undefined elements; else an assertion.
  IxoMepValue(IxoMepValueType type, int n);
  // Other integers count by their low 32 bits.
  template <std::integral N>
  requires(!std::same_as<N, bool>) IxoMepValue(IxoMepValueType type, N n)
      : IxoMepValue(type, static_cast<int>(n)) {}
  // Integer d truncated; Real, Measure, Time d; else an assertion.
  IxoMepValue(IxoMepValueType type, double d);
  // Array: takes over the elements. Map: consecutive (key, value) pairs are taken over; of equal
  // keys the first stays, a last key without value is dropped; what is not kept is destroyed.
  IxoMepValue(IxoMepValueType type, const IxoMepValueList& list);
  // Deep copies. What owns nothing is two moves here; the rest is in value.cpp.
  IxoMepValue(const IxoMepValue& other) : type_(other.type_), payload_(other.payload_) {
    if (other.HasHeapPayload()) CopyOwner(other);
  }
  IxoMepValue(IxoMepValue&& other) noexcept : type_(other.type_), payload_(other.payload_) {
    other.type_ = IxoMepValueType::Undefined;
  }
  IxoMepValue& operator=(const IxoMepValue& other) {  // nothing on self-assignment
    if (HasHeapPayload() || other.HasHeapPayload()) return AssignOwner(other);
    type_ = other.type_;
    payload_ = other.payload_;
    return *this;
  }
  IxoMepValue& operator=(IxoMepValue&& other) noexcept {
    const IxoMepValueType type = other.type_;
    const Payload payload = other.payload_;
    other.type_ = IxoMepValueType::Undefined;  // a value moved to itself is whole again below
    if (HasHeapPayload()) return ReplaceOwner(type, payload);
    type_ = type;
    payload_ = payload;
    return *this;
  }
  ~IxoMepValue() {
    if (HasHeapPayload()) Discard();
  }

  // Blocks come from a free list that keeps at most 30000 and trims to 15000.
  static void* operator new(std::size_t size);
  static void operator delete(void* block) noexcept;
  static void* operator new(std::size_t, void* place) noexcept { return place; }
  static void operator delete(void*, void*) noexcept {}

  // --- Assignment into a slot (value_assign.cpp) ----------------------------------------------
  // A value in p is rewritten in place (its identity stays); a null p receives a new value.
  static void Assign(IxoMepValue*& p, const String& text);
  static void Assign(IxoMepValue*& p, const char* text);
  static void Assign(IxoMepValue*& p, short number);
  static void Assign(IxoMepValue*& p, unsigned short number);
  static void Assign(IxoMepValue*& p, int number);
  static void Assign(IxoMepValue*& p, unsigned int number);
  static void Assign(IxoMepValue*& p, long number);
  static void Assign(IxoMepValue*& p, unsigned long number);
  static void Assign(IxoMepValue*& p, double number);
  template <std::same_as<bool> B>
  static void Assign(IxoMepValue*& p, B truth) {
    Assign(p, truth ? 1 : 0);
  }
  static void Assign(IxoMepValue*& p, IxoMepValueType type, int n);
  template <std::integral N>
  requires(!std::same_as<N, bool>) static void Assign(IxoMepValue*& p, IxoMepValueType type, N n) {
    Assign(p, type, static_cast<int>(n));
  }
  static void Assign(IxoMepValue*& p, IxoMepValueType type, double d);
  // A null source destroys the value in p and nulls p.
  static void Assign(IxoMepValue*& p, const IxoMepValue* source);
  // take: p takes source itself. Otherwise a copy; of the same type rewritten in place, where a
  // measure drops fractions and the types from Array on are reported as an assertion. A null
  // source makes p undefined.
  static void Assign(IxoMepValue*& p, IxoMepValue* source, bool take);

  // --- Reading (value_access.cpp) --------------------------------------------------------------
  IxoMepValueType GetType() const noexcept { return type_; }
  // "undefined" for an unknown number.
  static String GetTypeName(IxoMepValueType type);
  // These follow a chain of references; another type gives 0, 0.0 or null.
  // A real is truncated, 0 outside the 32-bit range.
  std::int32_t GetInt() const noexcept {
    return type_ == IxoMepValueType::Integer ? payload_.integer : ReadInt();
  }
  // Real and Integer.
  double GetReal() const noexcept {
    if (type_ == IxoMepValueType::Real) return payload_.real;
    return type_ == IxoMepValueType::Integer ? payload_.integer : ReadReal();
  }
  double GetSec() const noexcept;        // Time, seconds
  std::int32_t GetTMM() const noexcept;  // Measure, whole tenths of a millimetre
  std::int32_t GetTPt() const noexcept;  // Measure, tenths of a point, rounded
  bool IsNum() const noexcept;           // Integer or Real
  IxoMepExpressionParser* GetExpr() noexcept;
  const IxoMepExpressionParser* GetExpr() const noexcept;
  IxoMepExprNode* GetLambda() noexcept;
  const IxoMepExprNode* GetLambda() const noexcept;
  IxoMepObject* GetObject() noexcept;
  const IxoMepObject* GetObject() const noexcept;
  // The text of a string, through references; undefined is empty; else GetText(false).
  String GetStr() const;
  // Array elements, map entries, else 0; an object has no size to rely on.
  std::int32_t GetSize() const noexcept;
  // A reference's direct target; any other value itself.
  IxoMepValue* GetReferencedValue() const noexcept;
  // Array element i, unchecked; any other type: the value itself. Borrowed.
  IxoMepValue* GetValue(long i) const;
  // Address of element slot i; a scratch slot that reaches nothing for other types.
  IxoMepValue** GetpValue(long i);
  // Address of a reference's target pointer; a scratch slot for other types.
  IxoMepValue** GetpValue();
  // Value under key; the null value when absent or not a map. Borrowed.
  IxoMepValue* GetValueOfMap(const IxoMepValue* key) const;
  // Address of the value slot under key, created (null) when absent; else a scratch slot.
  IxoMepValue** GetpValueOfMap(const IxoMepValue* key);
  // A new array of the copied keys, owned by the caller; the value itself when not a map.
  IxoMepValue* GetKeysOfMap() const;
  // The one shared undefined value; never to be modified.
  static IxoMepValue* GetNull() noexcept;
  // A clone of an expression's parser, else a new parser holding this value as a constant; the
  // caller owns it.
  IxoMepExpressionParser* CreateExprParser() const;

  // --- Changing (value_assign.cpp, value_containers.cpp) ----------------------------------------
  void SetInt(long number);
  void SetReal(double number);
  void SetSec(double seconds);
  void SetTMM(double tenths);
  void SetStr(const String& text);
  void SetNull() noexcept;
  void SetExpr(const IxoMepExpressionParser* parser);
  // Array only, unchecked: slot i receives a copy; null empties the slot.
  void SetValue(long i, const IxoMepValue* value);
  void SetValue(int i, const IxoMepValue* value) { SetValue(static_cast<long>(i), value); }
  // Map: inserts or assigns copies, false for an undefined key. Array: the key read as an index,
  // false when there is no such slot. Other types: nothing, true.
  bool SetValue(const IxoMepValue* key, const IxoMepValue* value);
  void Append(IxoMepValue* value);          // takes over; another type ignores it
  void Insert(long i, IxoMepValue* value);  // takes over, before position i
  void Erase(long i);
  void Erase(int i) { Erase(static_cast<long>(i)); }
  void Erase(const IxoMepValue* key);  // an absent key is ignored
  // Map: replaces the entry of that string key. Object: replaces the property. Takes over value.
  void MoveValue(const String& name, IxoMepValue* value);

  // --- Text, members (value_text.cpp, value_methods.cpp) ----------------------------------------
  // The text form; period chooses the real format of the outermost value only. Empty when there is
  // no memory for it, and when it is longer than a text can be.
  String GetText(bool period = false) const;
  // 0 and a new value owned by the caller, or 42; 37 when the memory cannot be had.
  long GetPropertyValue(const char* name, IxoMepValue*& result, String& errorText) const;
  // name is an interned address. 0, or 21, 23, 26, 27, 37, 38, 42; some methods give no result. The
  // value may be destroyed by what a lambda or native method does.
  long EvaluateMethodCall(const char* name, const IxoMepValueList& args, IxoMepValue*& result,
                          String& errorText, bool strict);

  // --- Literals (../parser/literal_reader.cpp) --------------------------------------------------
  // Reads the literal that starts at position and moves position behind it; the caller owns the
  // result. On failure null, errorCode and errorText set, position where reading stopped.
  // parser (may be null) makes the expression objects; line is handed to them.
  static IxoMepValue* Create(const String& text, std::int32_t& position, std::int32_t& errorCode,
                             String& errorText, IxoMepParser* parser, std::int32_t line);
  static IxoMepValue* Create(const String& text, std::int32_t& position, IxoMepErrorEnum& errorCode,
                             String& errorText, IxoMepParser* parser, std::int32_t line);

 private:
  friend struct ixomep::ValueAccess;

  union Payload {
    std::int64_t bits;
    std::int32_t integer;
    double real;
    void* text;  // holds a String in place: it is one pointer wide
    IxoMepExpressionParser* expression;
    ixomep::ListRep* list;
    ixomep::MapRep* map;
    IxoMepValue* target;
    IxoMepExprNode* lambda;
    IxoMepObject* object;
  };

  bool HasHeapPayload() const noexcept {
    constexpr std::uint32_t kHeapTypes =
        (1u << 1) | (1u << 6) | (1u << 7) | (1u << 8) | (1u << 10) | (1u << 11);
    const auto tag = static_cast<std::uint32_t>(type_);
    return tag < 32 && ((kHeapTypes >> tag) & 1u) != 0;
  }
  // One store of the whole payload: reading all of it after two narrower ones stalls the machine.
  void SetInteger(std::int32_t number) noexcept {
    payload_.bits = static_cast<std::int64_t>(static_cast<std::uint32_t>(number));
  }
  // The number behind a reference, or 0.
  std::int32_t ReadInt() const noexcept;
  double ReadReal() const noexcept;
  // The copies and assignments in which a payload is on the heap.
  void CopyOwner(const IxoMepValue& other);
  IxoMepValue& AssignOwner(const IxoMepValue& other);
  IxoMepValue& ReplaceOwner(IxoMepValueType type, Payload payload) noexcept;
  // Releases the payload and leaves the tag for the caller to overwrite.
  void Discard() noexcept;
  static IxoMepValue* GetpNullValue() noexcept;
  static IxoMepValue* CreateString(const String& text, std::int32_t& position,
                                   std::int32_t& errorCode, String& errorText, IxoMepParser* parser,
                                   std::int32_t line);
  static IxoMepValue* CreateExpression(const String& text, std::int32_t& position,
                                       std::int32_t& errorCode, String& errorText,
                                       IxoMepParser* parser, std::int32_t line);
  static IxoMepValue* CreateArray(const String& text, std::int32_t& position,
                                  std::int32_t& errorCode, String& errorText, IxoMepParser* parser,
                                  std::int32_t line);

  IxoMepValueType type_;
  mutable Payload payload_;  // reading an element through a const array may give it its own storage
};

static_assert(sizeof(IxoMepValue) == 16);
static_assert(std::endian::native == std::endian::little,
              "an integer is the low half of its payload");

// Equal only within one type; containers, expressions, lambdas and objects never are.
IXOMEP_API bool operator==(const IxoMepValue& a, const IxoMepValue& b);
inline bool operator!=(const IxoMepValue& a, const IxoMepValue& b) { return !(a == b); }
// Numbers by number, then by type; a type without an order is reported and gives false.
IXOMEP_API bool operator>(const IxoMepValue& a, const IxoMepValue& b);
IXOMEP_API bool operator<(const IxoMepValue& a, const IxoMepValue& b);
