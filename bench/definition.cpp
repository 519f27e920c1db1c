// Definition texts: read, walk and free, by size and by depth of nesting. The rate in bytes a
// second belongs to the text; it should be the same in every row of a family. "of_text" is the
// most memory that a reading and its walk took beside the text, in bytes for each byte of text.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "ixomep/host/memory_budget.h"
#include "ixomep/parser/parser.h"

namespace {

constexpr std::int64_t kMegabyte = 1'000'000;

// Elements with a value and attributes of every common kind, one a few lines.
String FlatText(std::int64_t bytes) {
  std::string text;
  for (int i = 0; static_cast<std::int64_t>(text.size()) < bytes; ++i) {
    text += "STATION \"station " + std::to_string(i) +
            "\"\n  width: 12.5cm  count: " + std::to_string(i) +
            "\n  title: de: \"Arbeitsplatz\"\n  visible\n  area: (w * h)\n";
  }
  return String(text);
}

// Elements of about 180 bytes: a string, a measure, a modifier, an option and a body of two
// elements. The expressions all differ.
String MixedText(std::int64_t bytes, bool has_expressions) {
  std::string text;
  for (int i = 0; static_cast<std::int64_t>(text.size()) < bytes; ++i) {
    const std::string number = std::to_string(i);
    text += "STATION \"station number " + number +
            "\"\n  width: 12.5cm\n  title: de: \"Arbeitsplatz " + number + "\"\n  visible\n";
    if (has_expressions) text += "  area: (w * h + " + number + ")\n";
    text += "  {\n    SLOT \"left\" size: 3cm count: " + number +
            "\n    SLOT \"right\" size: 4.5cm label: \"the other\"\n  }\n";
  }
  return String(text);
}

// One body in the other.
String NestedText(std::int64_t depth) {
  std::string text;
  for (std::int64_t i = 0; i < depth; ++i) text += "GROUP a: 1 {\n";
  text += "LEAF b: 2\n";
  for (std::int64_t i = 0; i < depth; ++i) text += "}\n";
  return String(text);
}

// A walk over all elements at all depths. It asks for keywords, for the names, modifiers and value
// types of all attributes, for all bodies, and, if wished, for the values of all strings, integers
// and measures by the names of their attributes.
class Walk {
 public:
  explicit Walk(bool asks_for_values) : asks_for_values_(asks_for_values) {}

  std::int64_t Over(IxoMepParser& parser) {
    levels_.push_back({&parser, 0});
    while (!levels_.empty()) {
      Level& level = levels_.back();
      if (level.parser->SetCurElemIndex(level.next)) {
        Visit(*level.parser, level.next++);
      } else {
        levels_.pop_back();
      }
    }
    return found_;
  }

 private:
  struct Level {
    IxoMepParser* parser;
    std::int32_t next;
  };

  void Visit(IxoMepParser& parser, std::int32_t index) {
    found_ += parser.GetKeyword(index).Len() + static_cast<int>(parser.GetValueType());
    if (asks_for_values_) found_ += parser.GetStrValue().Len();
    const std::int32_t count = parser.GetAttrCount();
    IxoMepParser* const body = parser.GetBodyParser();
    for (std::int32_t i = 0; i < count; ++i) {
      const String name = parser.GetAttrNameOfPos(i);
      found_ += name.Len() + parser.GetModifierOfPos(i).Len();
      const IxoMepValueType type = parser.GetValueTypeOfPos(i);
      found_ += static_cast<int>(type);
      if (asks_for_values_) AskForValue(parser, name, type);
      if (type != IxoMepValueType::Undefined) continue;
      if (IxoMepParser* inner = parser.GetBodyParserOfPos(i)) levels_.push_back({inner, 0});
    }
    if (body != nullptr) levels_.push_back({body, 0});
  }

  void AskForValue(const IxoMepParser& parser, const String& name, IxoMepValueType type) {
    if (type == IxoMepValueType::String) {
      found_ += parser.GetStrValue(name).Len();
    } else if (type == IxoMepValueType::Measure) {
      found_ += parser.GetValueTMM(name);
    } else if (type == IxoMepValueType::Integer) {
      found_ += parser.GetIntValue(name);
    }
  }

  bool asks_for_values_;
  std::int64_t found_ = 0;
  std::vector<Level> levels_;
};

// The same walk by the pointers that a parser hands out, for which every element becomes an object.
std::int64_t WalkObjects(const IxoMepParser& outermost) {
  std::vector<const IxoMepParser*> waiting = {&outermost};
  std::int64_t found = 0;
  while (!waiting.empty()) {
    const IxoMepParser& parser = *waiting.back();
    waiting.pop_back();
    for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
      const IxoMepElement& element = *parser.GetElement(i);
      found += element.GetKeyword().Len() + element.GetAttrCount();
      for (std::int32_t k = 0; k < element.GetAttrCount(); ++k) {
        if (const IxoMepParser* const body = element.GetAttr(k)->GetBodyParser()) {
          waiting.push_back(body);
        }
      }
      if (const IxoMepParser* const body = element.GetBodyParser()) waiting.push_back(body);
    }
  }
  return found;
}

void ReadWalkFree(benchmark::State& state, const String& text, bool asks_for_values = false) {
  std::size_t most = 0;
  const std::size_t before = ixomep::MemoryBudget::InUse();
  for (auto _ : state) {
    IxoMepParser parser(text, "bench");
    if (parser.Parse() != IMEPERR_NONE) state.SkipWithError(parser.GetErrorText().c_str());
    benchmark::DoNotOptimize(Walk(asks_for_values).Over(parser));
    most = std::max(most, ixomep::MemoryBudget::InUse() - before);
  }
  state.SetBytesProcessed(state.iterations() * text.Len());
  state.counters["of_text"] = static_cast<double>(most) / text.Len();
}

void Sizes(benchmark::internal::Benchmark* benchmark) {
  for (const std::int64_t size : {64'000, 1'000'000, 5'000'000, 16'000'000, 48'000'000}) {
    benchmark->Arg(size);
  }
}

void Flat(benchmark::State& state) { ReadWalkFree(state, FlatText(state.range(0))); }
BENCHMARK(Flat)->Apply(Sizes);

void FlatWithValues(benchmark::State& state) {
  ReadWalkFree(state, FlatText(state.range(0)), /*asks_for_values=*/true);
}
BENCHMARK(FlatWithValues)->Arg(5 * kMegabyte);

void Mixed(benchmark::State& state) { ReadWalkFree(state, MixedText(state.range(0), false)); }
BENCHMARK(Mixed)->Apply(Sizes);

void MixedWithValues(benchmark::State& state) {
  ReadWalkFree(state, MixedText(state.range(0), false), /*asks_for_values=*/true);
}
BENCHMARK(MixedWithValues)->Arg(5 * kMegabyte);

void MixedWithExpressions(benchmark::State& state) {
  ReadWalkFree(state, MixedText(state.range(0), true));
}
BENCHMARK(MixedWithExpressions)->Arg(5 * kMegabyte);

// The texts have about one size; what differs is how deep their bodies stand.
void Nested(benchmark::State& state) {
  const String one = NestedText(state.range(0));
  String text;
  while (text.Len() < kMegabyte) text += one;
  ReadWalkFree(state, text);
}
BENCHMARK(Nested)->RangeMultiplier(10)->Range(1, 10'000);

void NestedByPointers(benchmark::State& state) {
  const String text = NestedText(state.range(0));
  const std::size_t before = ixomep::MemoryBudget::InUse();
  std::size_t most = 0;
  for (auto _ : state) {
    IxoMepParser parser(text, "bench");
    if (parser.Parse() != IMEPERR_NONE) state.SkipWithError(parser.GetErrorText().c_str());
    benchmark::DoNotOptimize(WalkObjects(parser));
    most = std::max(most, ixomep::MemoryBudget::InUse() - before);
  }
  state.SetBytesProcessed(state.iterations() * text.Len());
  state.counters["of_text"] = static_cast<double>(most) / text.Len();
}
BENCHMARK(NestedByPointers)->Arg(100'000);

// --- Memory by shape ----------------------------------------------------------------------------

std::string Times(std::int64_t count, const std::string& part) {
  std::string text;
  for (std::int64_t i = 0; i < count; ++i) text += part;
  return text;
}

std::string InEachOther(std::int64_t depth, const std::string& open, const std::string& close) {
  return Times(depth, open) + Times(depth, close);
}

// Elements in each other, each line as far indented as it is deep.
std::string Indented(std::int64_t depth) {
  std::string text;
  for (std::int64_t i = 0; i < depth; ++i) text += Times(i, "  ") + "ITEM {\n";
  for (std::int64_t i = depth; i-- > 0;) text += Times(i, "  ") + "}\n";
  return text;
}

// The part again and again; a "#" in it becomes a number that is not there twice.
String Filled(const std::string& part) {
  std::string text;
  for (int i = 0; static_cast<std::int64_t>(text.size()) < kMegabyte; ++i) {
    const std::size_t sign = part.find('#');
    text += sign == std::string::npos
                ? part
                : part.substr(0, sign) + std::to_string(i) + part.substr(sign + 1);
  }
  return String(text);
}

void Shape(benchmark::State& state, const std::string& part) { ReadWalkFree(state, Filled(part)); }

// Down to the shortest elements there are.
BENCHMARK_CAPTURE(Shape, "items in items, indented, depth 3", Indented(3));
BENCHMARK_CAPTURE(Shape, "items in items, indented, depth 10", Indented(10));
BENCHMARK_CAPTURE(Shape, "items in items, with values", InEachOther(1000, "ITEM 1 {\n", "}\n"));
BENCHMARK_CAPTURE(Shape, "items in items", InEachOther(1000, "ITEM {\n", "}\n"));
BENCHMARK_CAPTURE(Shape, "items in items, on one line", InEachOther(1000, "ITEM { ", "} "));
BENCHMARK_CAPTURE(Shape, "items side by side", "ITEM { PART { } }\n");
BENCHMARK_CAPTURE(Shape, "items without bodies", "ITEM #\n");
BENCHMARK_CAPTURE(Shape, "A {A {..}}, depth 10", InEachOther(10, "A {", "}"));
BENCHMARK_CAPTURE(Shape, "A {A {..}}, depth 1000", InEachOther(1000, "A {", "}"));
BENCHMARK_CAPTURE(Shape, "A {A {..}}, depth 10000", InEachOther(10000, "A {", "}"));
BENCHMARK_CAPTURE(Shape, "A {B {}}", "A {B {}}");
BENCHMARK_CAPTURE(Shape, "A a b c", "A a b c d e f g h\n");
BENCHMARK_CAPTURE(Shape, "attributes with names of their own", "ITEM size#: 12\n");
BENCHMARK_CAPTURE(Shape, "bodies of attributes", "ITEM rows: { ROW }\n");
BENCHMARK_CAPTURE(Shape, "expressions of their own", "ITEM area: (w * #)\n");
BENCHMARK_CAPTURE(Shape, "calls of their own", "ITEM area: (f(#))\n");
BENCHMARK_CAPTURE(Shape, "statements", "x := #;\n");

}  // namespace

BENCHMARK_MAIN();
