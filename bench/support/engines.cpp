// Loads the peers' modules, checks that all engines agree and registers what is to be measured.
#include "bench/support/engines.h"

#include <iostream>
#include <utility>

#include "bench/support/modules.h"

namespace ixomep::bench {

namespace {

struct Peer {
  const char* name;
  const char* file;
  Dialect dialect;
};

constexpr Peer kPeers[] = {
    {"Lua 5.4", "libpeer_lua.so", Dialect::Lua},
    {"LuaJIT", "libpeer_luajit.so", Dialect::Lua},
    {"Duktape", "libpeer_duktape.so", Dialect::Script},
    {"muParserX", "libpeer_muparserx.so", Dialect::Formula},
};

std::unique_ptr<Engine> Load(const Peer& peer) {
  return std::unique_ptr<Engine>(
      static_cast<Engine*>(MakeFromModule(peer.name, peer.file, "MakePeerEngine")));
}

std::vector<NamedEngine> LoadAll() {
  std::vector<NamedEngine> engines;
  engines.push_back({"Mep", Dialect::Mep, MakeMepEngine()});
  for (const Peer& peer : kPeers) {
    if (auto engine = Load(peer)) engines.push_back({peer.name, peer.dialect, std::move(engine)});
  }
  return engines;
}

std::string ResultsOf(Script& script, const Case& measured) {
  std::string results;
  for (const auto& input : measured.inputs) {
    script.Run(input.data());
    results += script.Result().Shown() + ";";
  }
  return results;
}

}  // namespace

const std::vector<NamedEngine>& Engines() {
  static const std::vector<NamedEngine> engines = LoadAll();
  return engines;
}

const std::string& Case::TextFor(Dialect dialect) const {
  const std::string* const texts[] = {&mep, &lua, &script, &formula};
  return *texts[static_cast<int>(dialect)];
}

const std::string& Case::SetupFor(Dialect dialect) const {
  static const std::string none;
  const std::string* const texts[] = {&mep_setup, &lua_setup, &script_setup, &none};
  return *texts[static_cast<int>(dialect)];
}

void Register(const Case& measured, benchmark::TimeUnit unit) {
  std::string expected;
  for (const NamedEngine& named : Engines()) {
    const std::string& text = measured.TextFor(named.dialect);
    if (text.empty()) continue;
    std::shared_ptr<Script> script =
        named.engine->Compile(measured.SetupFor(named.dialect), text, measured.names);
    const std::string results = script != nullptr ? ResultsOf(*script, measured) : "no program";
    if (named.dialect == Dialect::Mep) expected = results;
    if (results != expected) {
      std::cerr << measured.column << " of " << named.name << " is left out: it gives " << results
                << " instead of " << expected << "\n";
      continue;
    }
    benchmark::RegisterBenchmark((measured.column + "/" + named.name).c_str(),
                                 [script, inputs = measured.inputs](benchmark::State& state) {
                                   std::size_t next = 0;
                                   for (auto _ : state) {
                                     script->Run(inputs[next].data());
                                     if (++next == inputs.size()) next = 0;
                                   }
                                 })
        ->Unit(unit);
  }
}

}  // namespace ixomep::bench
