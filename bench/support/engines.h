// The engines that take part: this library's, and those of the peers that were there when the
// benchmarks were configured.
#pragma once

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/support/engine.h"

namespace ixomep::bench {

std::unique_ptr<Engine> MakeMepEngine();

enum class Dialect { Mep, Lua, Script, Formula };  // Lua, JavaScript, muParserX

struct NamedEngine {
  std::string name;
  Dialect dialect;
  std::unique_ptr<Engine> engine;
};

// Mep first. Those that cannot be loaded are named on the error output.
const std::vector<NamedEngine>& Engines();

// One thing to be measured, in every dialect; an empty text leaves those engines out.
struct Case {
  std::string column;
  std::vector<std::string> names = {};
  std::vector<std::vector<Value>> inputs = {{}};  // taken in turn
  std::string mep = {}, lua = {}, script = {}, formula = {};
  std::string mep_setup = {}, lua_setup = {}, script_setup = {};

  const std::string& TextFor(Dialect dialect) const;
  const std::string& SetupFor(Dialect dialect) const;
};

// Registers "<column>/<engine>" for every engine that knows the text. An engine whose results
// differ from this library's is reported and left out.
void Register(const Case& measured, benchmark::TimeUnit unit);

}  // namespace ixomep::bench
