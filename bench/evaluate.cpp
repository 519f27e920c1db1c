// Evaluation by a host: one compiled expression, the variables set each time. Column by column
// this library beside its peers.
#include "bench/support/engines.h"

namespace {

using ixomep::bench::Case;
using ixomep::bench::Value;

std::vector<Case> Cases() {
  const auto n = [](int i) { return Value::Of(i); };
  const auto r = [](double d) { return Value::Of(d); };
  const auto s = [](const char* t) { return Value::Of(std::string(t)); };
  std::vector<Case> cases;
  cases.push_back({.column = "a arithmetic",
                   .names = {"w", "h", "k"},
                   .inputs = {{n(10), n(4), n(2)}, {n(7), n(1), n(3)}, {n(0), n(5), n(-4)}},
                   .mep = "(w * 2 + h) / 3 - 1.5 * k",
                   .lua = "return (w * 2 + h) / 3 - 1.5 * k",
                   .script = "return (w * 2 + h) / 3 - 1.5 * k;",
                   .formula = "(w * 2 + h) / 3 - 1.5 * k"});
  Case logic{.column = "b integer logic",
             .names = {"a", "b", "c"},
             .inputs = {{n(4), n(9), n(1)}, {n(1), n(9), n(1)}, {n(1), n(20), n(0)}},
             .mep = "a > 3 AND b < 10 OR NOT c",
             .lua = "return a > 3 and b < 10 or c == 0",
             .script = "return a > 3 && b < 10 || c == 0;",
             .formula = "a > 3 && b < 10 || c == 0"};
  cases.push_back(logic);
  logic.column = "b' real logic";
  logic.inputs = {{r(4.5), r(9.5), r(1)}, {r(1.5), r(9.5), r(1)}, {r(1.5), r(20.5), r(0)}};
  cases.push_back(logic);
  cases.push_back({.column = "c text",
                   .names = {"name", "n"},
                   .inputs = {{s("table"), n(17)}, {s("a chair"), n(3)}},
                   .mep = "name + \" (\" + STR n + \")\"",
                   .lua = "return name .. ' (' .. n .. ')'",
                   .script = "return name + ' (' + n + ')';",
                   .formula = ""});
  cases.push_back({.column = "d choice",
                   .names = {"x"},
                   .inputs = {{n(5)}, {n(50)}, {n(500)}},
                   .mep = "cond(x < 10, \"small\", x < 100, \"medium\", \"large\")",
                   .lua = "return x < 10 and 'small' or x < 100 and 'medium' or 'large'",
                   .script = "return x < 10 ? 'small' : x < 100 ? 'medium' : 'large';",
                   .formula = "x < 10 ? \"small\" : (x < 100 ? \"medium\" : \"large\")"});
  cases.push_back({.column = "e host function",
                   .names = {"x", "y"},
                   .inputs = {{n(5), n(7)}, {n(3), n(2)}},
                   .mep = "hostmax(x, y)",
                   .lua = "return hostmax(x, y)",
                   .script = "return hostmax(x, y);",
                   .formula = "hostmax(x, y)"});
  cases.push_back({.column = "f array of 1000",
                   .names = {"i", "j"},
                   .inputs = {{n(3), n(900)}, {n(0), n(999)}},
                   .mep = "a[i] + a[j]",
                   .lua = "return a[i] + a[j]",
                   .script = "return a[i] + a[j];",
                   .formula = "",
                   .mep_setup = "a := {}, for(n, 0, 999){aappend(a, n)}",
                   .lua_setup = "a = {} for n = 0, 999 do a[n] = n end",
                   .script_setup = "a = []; for (var n = 0; n < 1000; n++) a.push(n);"});
  cases.push_back({.column = "g map of 100",
                   .names = {"k"},
                   .inputs = {{s("key3")}, {s("key99")}},
                   .mep = "m[k]",
                   .lua = "return m[k]",
                   .script = "return m[k];",
                   .formula = "",
                   .mep_setup = "m := {\"x\": 0}, for(n, 0, 99){m[\"key\" + STR n] := n}",
                   .lua_setup = "m = {} for n = 0, 99 do m['key' .. n] = n end",
                   .script_setup = "m = {}; for (var n = 0; n < 100; n++) m['key' + n] = n;"});
  return cases;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const Case& measured : Cases()) ixomep::bench::Register(measured, benchmark::kNanosecond);
  benchmark::RunSpecifiedBenchmarks();
}
