// How the work of the built-in functions grows with their input: one call each on token lists and
// texts from 10 KB to 10 MB, and sorts of up to 100 000 elements. The column BigO tells the
// growth; a call on 10 MB belongs well below a second.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/values/slot.h"

namespace {

constexpr std::int64_t kSmallText = 10'000;
constexpr std::int64_t kBigText = 10'000'000;

// A small generator of its own, so that every run sees the same input.
class Numbers {
 public:
  std::uint32_t Next() {
    state_ = state_ * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(state_ >> 33);
  }

 private:
  std::uint64_t state_ = 1;
};

// That many bytes of numbers below `limit`, separated by spaces.
String NumberList(std::int64_t bytes, std::uint32_t limit) {
  Numbers numbers;
  std::string text;
  while (static_cast<std::int64_t>(text.size()) < bytes) {
    text += std::to_string(numbers.Next() % limit) + " ";
  }
  text.resize(static_cast<std::size_t>(bytes));
  return String(text);
}

IxoMepValue NumberArray(std::int64_t count) {
  Numbers numbers;
  IxoMepValue array(IxoMepValueType::Array);
  for (std::int64_t i = 0; i < count; ++i) {
    array.Append(new IxoMepValue(static_cast<int>(numbers.Next() % 1'000'000'000)));
  }
  return array;
}

// Evaluates one expression again and again; one that fails ends the program.
void Run(benchmark::State& state, const char* expression, IxoMepValueSet& scope) {
  IxoMepExpressionParser parser;
  String text;
  if (parser.SetExpression(expression, text) != IMEPERR_NONE) {
    state.SkipWithError(text.c_str());
    return;
  }
  for (auto _ : state) {
    IxoMepValue* result = nullptr;
    if (parser.Evaluate(&scope, result, text, false, false) != IMEPERR_NONE) {
      state.SkipWithError(text.c_str());
      return;
    }
    const ixomep::ValuePtr owner(result);
    benchmark::DoNotOptimize(result);
  }
  state.SetComplexityN(state.range(0));
}

// `text` holds that many bytes of numbers, `other` as many others, `few` a short list.
void OnText(benchmark::State& state, const char* expression) {
  IxoMepValueSet scope;
  scope.OldSetValue("text", IxoMepValue(NumberList(state.range(0), 1'000'000)), true);
  scope.OldSetValue("other", IxoMepValue(NumberList(state.range(0), 2'000'000)), true);
  scope.OldSetValue("few", IxoMepValue(String("1 2 3 no")), true);
  Run(state, expression, scope);
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void OnBinary(benchmark::State& state, const char* expression) {
  IxoMepValueSet scope;
  String bytes = String::Filled(static_cast<std::int32_t>(state.range(0)), '\xE4');
  scope.OldSetValue("text", IxoMepValue(bytes), true);
  Run(state, expression, scope);
  state.SetBytesProcessed(state.iterations() * state.range(0));
}

void OnArray(benchmark::State& state, const char* expression) {
  IxoMepValueSet scope;
  scope.OldSetValue("list", NumberArray(state.range(0)), true);
  Run(state, expression, scope);
}

// `m` maps numbers to themselves.
void OnMap(benchmark::State& state, const char* expression) {
  IxoMepValueSet scope;
  IxoMepValue map(IxoMepValueType::Map);
  for (int i = 0; i < static_cast<int>(state.range(0)); ++i) {
    const IxoMepValue value(i);
    map.SetValue(&value, &value);
  }
  scope.OldSetValue("m", map, true);
  Run(state, expression, scope);
}

void TextSizes(benchmark::internal::Benchmark* bench) {
  bench->RangeMultiplier(10)->Range(kSmallText, kBigText)->Unit(benchmark::kMillisecond);
  bench->Complexity(benchmark::oN);
}

void CountSizes(benchmark::internal::Benchmark* bench) {
  bench->RangeMultiplier(10)->Range(100, 100'000)->Unit(benchmark::kMillisecond);
  bench->Complexity();
}

}  // namespace

// Token lists.
BENCHMARK_CAPTURE(OnText, tokcnt, "tokcnt(text)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, token_last, "token(text, 1000000000)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokindex_absent, "tokindex(text, \"no\")")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokcat, "tokcat(text, other)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokunion, "tokunion(text, other)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokunion_few, "tokunion(text, few)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokisect, "tokisect(text, other)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokdiff, "tokdiff(text, other)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, strarray, "strarray(text)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, tokstr, "tokstr(strarray(text))")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, valarray, "valarray(text)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, fortok, "fortok(t, text, \" \", 0)")->Apply(TextSizes);

// Search and replacement.
BENCHMARK_CAPTURE(OnText, search_absent, "search(text, \"1 no\", 0)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, bsearch_absent, "bsearch(text, \"1 no\", -1)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, replall_character, "replall(text, \" \", \", \")")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, replall_text, "replall(text, \"12\", \"\")")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnText, regex_absent, "regex(\"[a-z]\", text)")->Apply(TextSizes);

// Encodings.
BENCHMARK_CAPTURE(OnBinary, base64, "base64decode(base64encode(text))")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnBinary, utf8, "fromutf8(toutf8(text))")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnBinary, encodeuri, "encodeuri(text)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnBinary, iupper, "iupper(text)")->Apply(TextSizes);
BENCHMARK_CAPTURE(OnMap, tourlquerystring, "tourlquerystring(m)")->Apply(CountSizes);

// Arrays; each run sorts a fresh copy. By a lambda the neighbours are exchanged pass by pass, as
// the language says, which is quadratic.
BENCHMARK_CAPTURE(OnArray, sort, "work := list, work.sort()")->Apply(CountSizes);
BENCHMARK_CAPTURE(OnArray, sort_by_lambda, "work := list, work.sort(lambda(a, b, a > b))")
    ->RangeMultiplier(10)
    ->Range(10, 1000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK_CAPTURE(OnArray, asinsert, "work := {}, for(i, 0, LEN list - 1, asinsert(work, list[i]))")
    ->Apply(CountSizes);
