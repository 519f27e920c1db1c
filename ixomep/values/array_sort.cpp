// array.sort. By operator< the outcome of the exchanges is known beforehand: types stand by rank,
// within a type a stable sort, in which nothing ever passes a NaN. So it is made directly, and so
// is the order by a lambda that compares one key of its elements. Other lambdas, and references,
// whose order need not be transitive, get the exchanges as written.
#include "ixomep/values/array_sort.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "ixomep/host/limit_watch.h"
#include "ixomep/values/engine_hooks.h"
#include "ixomep/values/value_compare.h"
#include "ixomep/values/value_rep.h"

namespace ixomep {

namespace {

using Type = IxoMepValueType;

// Keeps the storage of an array alive and unshared while it is sorted in place: a host function
// that the lambda calls may change the array or destroy it.
class StorageHold {
 public:
  explicit StorageHold(IxoMepValue& array) {
    ValueAccess::OwnItems(array);
    rep_ = ValueAccess::List(array);
    ++rep_->sharers;
    ++rep_->holds;
  }
  StorageHold(const StorageHold&) = delete;
  StorageHold& operator=(const StorageHold&) = delete;
  ~StorageHold() {
    --rep_->holds;
    ValueAccess::DropList(rep_);
  }
  ElementList& Items() const noexcept { return rep_->items; }

 private:
  ListRep* rep_;
};

const IxoMepValue& OrNull(const IxoMepValue* value) noexcept {
  return value != nullptr ? *value : *IxoMepValue::GetNull();
}

// "Does the first go before the second?" Answers by reference, with a code.
template <class GoesBefore>
IxoMepErrorEnum ExchangeNeighbours(ElementList& items, const GoesBefore& goes_before) {
  bool exchanged = true;
  for (std::size_t passes = items.size(); exchanged && passes > 0; --passes) {
    exchanged = false;
    for (std::size_t i = 0; i + 1 < items.size(); ++i) {
      const IxoMepValue* const left = items[i];
      const IxoMepValue* const right = items[i + 1];
      bool truth = false;
      const IxoMepErrorEnum code = goes_before(OrNull(right), OrNull(left), truth);
      if (code != IMEPERR_NONE) return code;
      const bool still_there = i + 1 < items.size() && items[i] == left && items[i + 1] == right;
      if (!truth || !still_there) continue;
      std::swap(items[i], items[i + 1]);
      exchanged = true;
    }
  }
  return IMEPERR_NONE;
}

struct Keyed {
  std::int32_t rank;  // the same for all numbers
  double number;      // what numbers, measures and times are compared by
  IxoMepValue* value;
};

Keyed KeyOf(IxoMepValue* value) {
  const IxoMepValue& read = OrNull(value);
  const std::int32_t rank = TypeRank(read.IsNum() ? Type::Integer : read.GetType());
  switch (read.GetType()) {
    case Type::Integer:
    case Type::Real:
      return {rank, read.GetReal(), value};
    case Type::Measure:
      return {rank, static_cast<double>(read.GetTMM()), value};
    case Type::Time:
      return {rank, ValueAccess::Number(read), value};
    default:
      return {rank, 0.0, value};
  }
}

using Run = std::vector<Keyed>::iterator;

// What sorts so few numbers is no long work.
constexpr std::ptrdiff_t kFewNumbers = 10000;

template <class Less>
void SortStably(Run begin, Run end, const Less& less) {
  if (end - begin < kFewNumbers) return std::stable_sort(begin, end, less);
  std::stable_sort(begin, end, [&less](const Keyed& a, const Keyed& b) {
    LimitWatch::Work();
    return less(a, b);
  });
}

void SortNumbers(Run begin, Run end) {
  while (begin != end) {
    const Run nan = std::find_if(begin, end, [](const Keyed& k) { return k.number != k.number; });
    SortStably(begin, nan, [](const Keyed& a, const Keyed& b) { return a.number < b.number; });
    begin = nan == end ? end : nan + 1;
  }
}

void SortOneType(Run begin, Run end) {
  switch (OrNull(begin->value).GetType()) {
    case Type::Integer:
    case Type::Real:
    case Type::Measure:
    case Type::Time:
      SortNumbers(begin, end);
      break;
    case Type::String:
      std::stable_sort(begin, end, [](const Keyed& a, const Keyed& b) {
        LimitWatch::Work();
        return ValueAccess::Text(*a.value) < ValueAccess::Text(*b.value);
      });
      break;
    default:
      // Types without an order stay as they are; each comparison reports that.
      for (; begin + 1 != end; ++begin) {
        LimitWatch::Work();
        IsLess(OrNull((begin + 1)->value), OrNull(begin->value));
      }
  }
}

void SortByRankAndType(ElementList& items) {
  std::vector<Keyed> keyed;
  keyed.reserve(items.size());
  for (IxoMepValue* value : items) keyed.push_back(KeyOf(value));
  SortStably(keyed.begin(), keyed.end(),
             [](const Keyed& a, const Keyed& b) { return a.rank < b.rank; });
  for (Run begin = keyed.begin(); begin != keyed.end();) {
    const std::int32_t rank = begin->rank;
    const Run end =
        std::find_if(begin, keyed.end(), [rank](const Keyed& k) { return k.rank != rank; });
    SortOneType(begin, end);
    begin = end;
  }
  std::transform(keyed.begin(), keyed.end(), items.begin(), [](const Keyed& k) { return k.value; });
}

bool HasReference(const ElementList& items) {
  return std::any_of(items.begin(), items.end(), [](const IxoMepValue* value) {
    return OrNull(value).GetType() == Type::Reference;
  });
}

}  // namespace

IxoMepErrorEnum SortArray(IxoMepValue& array, IxoMepExprNode* lambda, String& error_text) {
  if (ValueAccess::Count(array) < 2) return IMEPERR_NONE;
  const StorageHold hold(array);
  ElementList& items = hold.Items();
  if (lambda != nullptr) {
    if (SortByKey(*lambda, items)) return IMEPERR_NONE;
    return ExchangeNeighbours(
        items, [&](const IxoMepValue& first, const IxoMepValue& second, bool& truth) {
          return ApplyPredicate(lambda, first, second, truth, error_text);
        });
  }
  if (HasReference(items)) {
    return ExchangeNeighbours(items,
                              [](const IxoMepValue& first, const IxoMepValue& second, bool& truth) {
                                LimitWatch::Work();
                                truth = IsLess(first, second);
                                return IMEPERR_NONE;
                              });
  }
  SortByRankAndType(items);
  return IMEPERR_NONE;
}

}  // namespace ixomep
