// Work inside the language: loops, building texts and arrays, recursion, sorting.
#include "bench/support/engines.h"

namespace {

using ixomep::bench::Case;

std::vector<Case> Cases() {
  std::vector<Case> cases;
  cases.push_back({.column = "h1 sum of a million",
                   .mep = "s := 0.0, for(i, 1, 1000000){s := s + i}{s}",
                   .lua = "local s = 0.0 for i = 1, 1000000 do s = s + i end return s",
                   .script = "var s = 0; for (var i = 1; i <= 1000000; i++) s = s + i; return s;"});
  cases.push_back(
      {.column = "h2 10 000 text appends",
       .mep = "s := \"\", for(i, 1, 10000){s := s + \"x\"}{LEN s}",
       .lua = "local s = '' for i = 1, 10000 do s = s .. 'x' end return #s",
       .script = "var s = ''; for (var i = 0; i < 10000; i++) s += 'x'; return s.length;"});
  cases.push_back({.column = "h3 100 000 array appends",
                   .mep = "v := {}, for(i, 1, 100000){aappend(v, i)}{LEN v}",
                   .lua = "local v = {} for i = 1, 100000 do v[#v + 1] = i end return #v",
                   .script = "var v = []; for (var i = 0; i < 100000; i++) v.push(i); "
                             "return v.length;"});
  cases.push_back(
      {.column = "h4 fib(22)",
       .mep = "fib(22)",
       .lua = "return fib(22)",
       .script = "return fib(22);",
       .mep_setup = "fib := lambda(n, cond(n < 2, n, fib(n - 1) + fib(n - 2)))",
       .lua_setup = "function fib(n) if n < 2 then return n end "
                    "return fib(n - 1) + fib(n - 2) end",
       .script_setup = "function fib(n) { return n < 2 ? n : fib(n - 1) + fib(n - 2); }"});
  cases.push_back(
      {.column = "h5 sort of 1000",
       .mep = "v := unsorted, v.sort(), v[0] + v[999]",
       .lua = "local v = {} for i = 1, 1000 do v[i] = unsorted[i] end table.sort(v) "
              "return v[1] + v[1000]",
       .script = "var v = unsorted.slice().sort(function(a, b) { return a - b; }); "
                 "return v[0] + v[999];",
       .mep_setup = "unsorted := {}, for(i, 1, 1000){"
                    "aappend(unsorted, INT ((i * 7919) MOD 10007))}",
       .lua_setup = "unsorted = {} for i = 1, 1000 do unsorted[i] = (i * 7919) % 10007 end",
       .script_setup = "unsorted = []; for (var i = 1; i <= 1000; i++) "
                       "unsorted.push((i * 7919) % 10007);"});
  return cases;
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  for (const Case& measured : Cases()) ixomep::bench::Register(measured, benchmark::kMillisecond);
  benchmark::RunSpecifiedBenchmarks();
}
