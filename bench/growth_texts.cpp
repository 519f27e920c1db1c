// How the work around the language grows: compiling and evaluating large expressions, literals,
// texts of values, definition texts with their queries, includes, protection and XML, messages.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/growth.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/host/host.h"
#include "ixomep/messages/message.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/protected_text.h"
#include "ixomep/values/slot.h"
#include "ixomep/values/string_address_map.h"

namespace {

using namespace ixomep::bench;
using MakeText = std::string (*)(std::int64_t size);

// --- Expressions --------------------------------------------------------------------------------

std::string Sum(std::int64_t n) { return "1" + Repeated(" + 1", n); }
std::string Parenthesised(std::int64_t n) { return Repeated("(1 + ", n) + "1" + Repeated(")", n); }
std::string Nested(std::int64_t n) { return Repeated("cond(1, ", n) + "1" + Repeated(", 0)", n); }
std::string Signs(std::int64_t n) { return Repeated("- ", n) + "1"; }
std::string Sequence(std::int64_t n) { return "x := 0" + Repeated(", x := x + 1", n); }
std::string Variables(std::int64_t n) {
  return "0" + Numbered(", v# := #", n) + Numbered(", v#", n);
}
std::string ArrayLiteral(std::int64_t n) { return "{0" + Numbered(", #", n) + "}"; }
std::string MapLiteral(std::int64_t n) { return "{\"k\": 0" + Numbered(", \"k#\": #", n) + "}"; }
std::string DeepArray(std::int64_t n) { return Repeated("{", n) + "1" + Repeated("}", n); }
std::string StringLiteral(std::int64_t n) { return "\"" + Repeated("a\\n", n / 2) + "\""; }
std::string Subscripts(std::int64_t n) { return "a := {1}, a" + Repeated("[0]", n); }
std::string Conditions(std::int64_t n) { return "cond(" + Repeated("0, 1, ", n) + "2)"; }

void Compile(IxoMepExpressionParser& expression, const std::string& text) {
  String error;
  Check(expression.SetExpression(String(text), error), error);
}

void RegisterCompiling(const char* operation, MakeText text) {
  Register({"compiling", operation, 256, 65536, kLinearInMemory}, [text](std::int64_t n) -> Work {
    return [made = text(n)] {
      IxoMepExpressionParser expression;
      Compile(expression, made);
    };
  });
}

void RegisterEvaluating(const Growth& growth, MakeText text) {
  Register(growth, [text](std::int64_t n) -> Work {
    const auto expression = std::make_shared<IxoMepExpressionParser>();
    Compile(*expression, text(n));
    return [expression] {
      IxoMepValueSet scope;
      IxoMepValue* result = nullptr;
      String error;
      const int code = expression->Evaluate(&scope, result, error, false, false);
      const ixomep::ValuePtr owner(result);
      Check(code, error);
    };
  });
}

void RegisterExpressions() {
  const std::pair<const char*, MakeText> wide[] = {{"array", ArrayLiteral},
                                                   {"map", MapLiteral},
                                                   {"many conditions", Conditions},
                                                   {"string", StringLiteral}};
  for (const auto& [operation, text] : wide) {
    RegisterCompiling(operation, text);
    RegisterEvaluating({"evaluating", operation, 256, 16384, kLinearInMemory}, text);
  }
  // A tree that is deeper than the language lets calls be is not evaluated.
  const std::pair<const char*, MakeText> deep[] = {
      {"sum", Sum},      {"sequence", Sequence},    {"variables", Variables},      {"signs", Signs},
      {"calls", Nested}, {"deep array", DeepArray}, {"parentheses", Parenthesised}};
  for (const auto& [operation, text] : deep) {
    RegisterEvaluating({"evaluating", operation, 7, 7 * 16, kLinearInMemory}, text);
  }
  const std::pair<const char*, MakeText> chains[] = {
      {"sum", Sum}, {"sequence", Sequence}, {"variables", Variables}, {"signs", Signs}};
  for (const auto& [operation, text] : chains) RegisterCompiling(operation, text);
  // The grammar goes that deep on the native stack.
  const std::pair<const char*, MakeText> nested[] = {{"calls", Nested},
                                                     {"deep array", DeepArray},
                                                     {"parentheses", Parenthesised},
                                                     {"subscripts", Subscripts}};
  for (const auto& [operation, text] : nested) {
    const MakeText make = text;
    Register({"compiling", operation, 64, 4096, kLinearInMemory}, [make](std::int64_t n) -> Work {
      return [made = make(n)] {
        IxoMepExpressionParser expression;
        Compile(expression, made);
      };
    });
  }
  Register({"compiling", "text of the tree", 256, 65536, kLinearInMemory},
           [](std::int64_t n) -> Work {
             const auto expression = std::make_shared<IxoMepExpressionParser>();
             Compile(*expression, Sum(n));
             return [expression] { benchmark::DoNotOptimize(expression->GetExpression(nullptr)); };
           });
}

// --- Values -------------------------------------------------------------------------------------

std::shared_ptr<IxoMepValue> Literal(const std::string& text) {
  std::int32_t position = 0, code = 0;
  String error;
  std::shared_ptr<IxoMepValue> value(
      IxoMepValue::Create(String(text), position, code, error, nullptr, 1));
  Check(code, error);
  return value;
}

// Arrays in each other, deeper than a literal may be.
std::shared_ptr<IxoMepValue> NestedArrays(std::int64_t depth) {
  auto value = std::make_unique<IxoMepValue>(IxoMepValueType::Array);
  for (std::int64_t i = 0; i < depth; ++i) {
    auto outer = std::make_unique<IxoMepValue>(IxoMepValueType::Array);
    outer->Append(value.release());
    value = std::move(outer);
  }
  return value;
}

using Subject = std::function<std::shared_ptr<IxoMepValue>(std::int64_t)>;

void RegisterValue(const char* what, const Subject& make) {
  Register({"values", std::string(what) + ", text", 256, 65536, kLinearInMemory},
           [make](std::int64_t n) -> Work {
             return [value = make(n)] { benchmark::DoNotOptimize(value->GetText()); };
           });
  Register({"values", std::string(what) + ", copied", 256, 65536, kLinearInMemory},
           [make](std::int64_t n) -> Work {
             return [value = make(n)] {
               const IxoMepValue copy(*value);
               benchmark::DoNotOptimize(copy.GetSize());
             };
           });
}

void RegisterValues() {
  const std::pair<const char*, MakeText> literals[] = {
      {"array", ArrayLiteral},
      {"map", MapLiteral},
      {"string", StringLiteral},
      {"digits", [](std::int64_t n) { return "0." + Repeated("7", n); }},
  };
  for (const auto& [operation, text] : literals) {
    const MakeText make = text;
    Register({"literals", operation, 256, 65536, kLinearInMemory},
             [make](std::int64_t n) -> Work { return [made = make(n)] { Literal(made); }; });
    RegisterValue(operation, [make](std::int64_t n) { return Literal(make(n)); });
  }
  RegisterValue("arrays in each other", NestedArrays);
  Register({"names", "variables of a scope", 16, 4096, kLinearInMemory},
           [](std::int64_t n) -> Work {
             auto names = std::make_shared<std::vector<const char*>>();
             for (std::int64_t i = 0; i < n; ++i) {
               names->push_back(
                   IxoMepStringAddressMap::GetAddress(String("variable " + std::to_string(i))));
             }
             return [names] {
               IxoMepValueSet scope;
               for (const char* name : *names) scope.NewSetValue(name, IxoMepValue(1), true);
               for (const char* name : *names) benchmark::DoNotOptimize(scope.NewGetValue(name));
             };
           });
  Register({"names", "interned", 1024, 262144, kLinearInMemory}, [](std::int64_t n) -> Work {
    auto names = std::make_shared<std::vector<String>>();
    for (std::int64_t i = 0; i < n; ++i) names->push_back(String("name " + std::to_string(i)));
    return [names] {
      for (const String& name : *names) {
        benchmark::DoNotOptimize(IxoMepStringAddressMap::GetAddress(name));
      }
    };
  });
}

// --- Definition texts ---------------------------------------------------------------------------

std::string Elements(std::int64_t n) {
  return Numbered("STATION \"no #\" width: 12.5cm count: # title: de: \"Platz\" on\n", n);
}
std::string Bodies(std::int64_t n) {
  return Repeated("GROUP a: 1 {\n", n) + "LEAF b: 2\n" + Repeated("}\n", n);
}
std::string AttributeBodies(std::int64_t n) {
  return "A" + Repeated(" b: { C", n) + Repeated(" }", n);
}
std::string Attributes(std::int64_t n) { return "A" + Numbered(" n#: #", n); }
std::string IndexedAttributes(std::int64_t n) { return "A" + Numbered(" n[#]: #", n); }
std::string Statements(std::int64_t n) { return Numbered("x# := #;\n", n); }
std::string Comments(std::int64_t n) { return Repeated("(* comment *)\n", n) + "A"; }
std::string Expressions(std::int64_t n) { return "A" + Numbered(" n#: (w * #)", n); }

using Parsed = std::shared_ptr<IxoMepConverter>;

Parsed Read(const std::string& text) {
  auto parser = std::make_shared<IxoMepConverter>(String(text));
  Check(parser->Parse(), parser->GetErrorText());
  return parser;
}

void RegisterQuery(const Growth& growth, MakeText text, void (*query)(IxoMepConverter&)) {
  Register(growth, [text, query](std::int64_t n) -> Work {
    return [parser = Read(text(n)), query] { query(*parser); };
  });
}

void RegisterReading() {
  const std::pair<const char*, MakeText> texts[] = {
      {"elements", Elements},
      {"bodies in each other", Bodies},
      {"attribute bodies in each other", AttributeBodies},
      {"attributes", Attributes},
      {"statements", Statements},
      {"comments", Comments},
      {"expressions", Expressions}};
  for (const auto& [operation, text] : texts) {
    const MakeText make = text;
    Register({"definition read", operation, 256, 65536, kLinearInMemory},
             [make](std::int64_t n) -> Work { return [made = make(n)] { Read(made); }; });
  }
  Register({"definition read", "error behind it", 256, 65536, kLinearInMemory},
           [](std::int64_t n) -> Work {
             return [text = Elements(n) + "A b: \"open"] {
               IxoMepParser parser{String(text), String("growth")};
               if (parser.Parse() == 0) Check(1, "no error");
             };
           });
  Register({"protected text", "made and read", 4096, 1048576, kLinear}, [](std::int64_t n) -> Work {
    return [text = String(Repeated("(* cipher *) \n", n / 14))] {
      IxoMepParser parser(ixomep::ProtectText(text), "growth");
      Check(parser.Parse(), parser.GetErrorText());
    };
  });
}

void AskEachByName(IxoMepConverter& parser) {
  const std::int32_t count = parser.GetAttrCount();
  for (std::int32_t i = 0; i < count; ++i) parser.GetIntValue(parser.GetAttrNameOfPos(i));
}

void RegisterQueries() {
  RegisterQuery({"queries", "elements walked", 256, 65536, kLinearInMemory}, Elements,
                [](IxoMepConverter& parser) {
                  for (std::int32_t i = 0; parser.SetCurElemIndex(i); ++i) {
                    benchmark::DoNotOptimize(parser.GetStrValue());
                    benchmark::DoNotOptimize(parser.GetValueTMM("width"));
                  }
                });
  RegisterQuery({"queries", "text of each element", 256, 65536, kLinearInMemory}, Elements,
                [](IxoMepConverter& parser) {
                  for (std::int32_t i = 0; i < parser.GetElemCount(); ++i) {
                    benchmark::DoNotOptimize(parser.GetElemText(i));
                  }
                });
  RegisterQuery({"queries", "attributes by position", 256, 65536, kLinearInMemory}, Attributes,
                [](IxoMepConverter& parser) {
                  for (std::int32_t i = 0; i < parser.GetAttrCount(); ++i) {
                    benchmark::DoNotOptimize(parser.GetValueOfPos(i));
                  }
                });
  RegisterQuery({"queries", "attributes by name", 256, 65536, kLinear}, Attributes, AskEachByName);
  // These are objects.
  RegisterQuery({"queries", "indexed attributes by name", 256, 65536, kLinearInMemory},
                IndexedAttributes, AskEachByName);
  RegisterQuery(
      {"queries", "an absent name", 256, 65536, kLinearInMemory}, Attributes,
      [](IxoMepConverter& parser) { benchmark::DoNotOptimize(parser.IsContained("absent")); });
  RegisterQuery({"queries", "bodies walked down", 4096, 1048576, kLinearInMemory}, Bodies,
                [](IxoMepConverter& parser) {
                  const IxoMepParser* level = &parser;
                  while (level != nullptr) level = level->GetBodyParser(0);
                });
  for (const auto& [operation, text, bound] :
       {std::tuple{"elements", MakeText{Elements}, kLinearInMemory},
        std::tuple{"attributes", MakeText{Attributes}, kLinearInMemory},
        std::tuple{"statements", MakeText{Statements}, kLinearInMemory}}) {
    RegisterQuery({"xml written", operation, 256, 65536, bound}, text, [](IxoMepConverter& parser) {
      benchmark::DoNotOptimize(parser.ToXML(true, "r"));
    });
  }
  // The indents of the result grow with the depth.
  RegisterQuery({"xml written", "bodies in each other", 64, 4096, kQuadraticInMemory}, Bodies,
                [](IxoMepConverter& parser) { benchmark::DoNotOptimize(parser.ToXML(true, "r")); });
}

// --- Includes -----------------------------------------------------------------------------------

// Serves files of one element, and a chain of files that include each other.
class Files : public IxoHost {
 public:
  Files() : previous_(Install(this)) {}
  ~Files() override { Install(previous_); }
  bool ReadTextFile(const String& name, String& text) override {
    text = String("PART \"" + std::string(name.view()) + "\" a: 1\n");
    return true;
  }

 private:
  IxoHost* previous_;
};

void RegisterIncludes() {
  for (const bool is_cached : {false, true}) {
    Register({"includes", is_cached ? "one file, cached" : "files", 256, 65536, kLinearInMemory},
             [is_cached](std::int64_t n) -> Work {
               const std::string line = is_cached ? "@INCLUDE \"file.mep\"\nA b: #\n"
                                                  : "@INCLUDE \"file#.mep\"\nA b: #\n";
               return [text = Numbered(line, n), is_cached] {
                 const Files files;
                 IxoMepParser parser{String(text), String("growth")};
                 parser.SetUseIncludeCache(is_cached);
                 Check(parser.Parse(), parser.GetErrorText());
                 benchmark::DoNotOptimize(parser.GetCompleteText());
               };
             });
  }
}

// --- Messages -----------------------------------------------------------------------------------

class Port : public IxoMessagePort {
 public:
  explicit Port(const char* name) : IxoMessagePort(name) {}
  bool IsAvailable() override { return true; }
  void Activate() override {}
  void Receive(IxoMessage& message) override { message.SetAnswer("yes"); }
  void Deactivate() override {}
};

struct Ports {
  std::vector<std::string> names;
  std::vector<std::unique_ptr<Port>> ports;
};

std::shared_ptr<Ports> MakePorts(std::int64_t n) {
  auto made = std::make_shared<Ports>();
  for (std::int64_t i = 0; i < n; ++i) made->names.push_back("port " + std::to_string(i));
  for (const std::string& name : made->names) {
    made->ports.push_back(std::make_unique<Port>(name.c_str()));
  }
  return made;
}

void RegisterMessages() {
  Register({"messages", "to all, with answers", 256, 65536, kLinearInMemory},
           [](std::int64_t n) -> Work {
             return [ports = MakePorts(n)] {
               IxoMessage message("hello");
               message.SendToAll();
               benchmark::DoNotOptimize(message.GetAnswer());
             };
           });
  Register({"messages", "to one by address", 256, 65536, kLinear}, [](std::int64_t n) -> Work {
    return [ports = MakePorts(n)] { IxoMessage("hello").SendTo(ports->names.back().c_str()); };
  });
  // Texts are looked for among all names.
  Register({"messages", "to one by text", 256, 65536, kLinearInMemory}, [](std::int64_t n) -> Work {
    return [ports = MakePorts(n), name = "port " + std::to_string(n - 1)] {
      IxoMessage("hello").SendTo(name.c_str());
    };
  });
  Register({"messages", "ports made and gone", 256, 65536, kLinearInMemory},
           [](std::int64_t n) -> Work { return [n] { MakePorts(n); }; });
}

}  // namespace

int main(int argc, char** argv) {
  RegisterExpressions();
  RegisterValues();
  RegisterReading();
  RegisterQueries();
  RegisterIncludes();
  RegisterMessages();
  return RunGrowth(argc, argv);
}
