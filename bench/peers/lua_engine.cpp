// Lua 5.4 and LuaJIT as engines of the benchmarks: the same source built against each. A script is
// a function of the variables, which is their fastest way to get values from a host.
#include <lua.hpp>

#include "bench/support/engine.h"

namespace {

using ixomep::bench::Engine;
using ixomep::bench::Script;
using ixomep::bench::Value;

int HostMax(lua_State* state) {
  const double a = luaL_checknumber(state, 1);
  const double b = luaL_checknumber(state, 2);
  lua_pushnumber(state, a > b ? a : b);
  return 1;
}

class LuaScript : public Script {
 public:
  LuaScript(lua_State* state, std::size_t count)
      : state_(state),
        count_(static_cast<int>(count)),
        function_(luaL_ref(state, LUA_REGISTRYINDEX)) {}
  ~LuaScript() override { luaL_unref(state_, LUA_REGISTRYINDEX, function_); }

  void Run(const Value* values) override {
    lua_settop(state_, 0);  // the result of before
    lua_rawgeti(state_, LUA_REGISTRYINDEX, function_);
    for (int i = 0; i < count_; ++i) Push(values[i]);
    lua_pcall(state_, count_, 1, 0);
  }

  Value Result() override {
    if (lua_type(state_, -1) == LUA_TSTRING)
      return Value::Of(std::string(lua_tostring(state_, -1)));
    if (lua_isboolean(state_, -1)) return Value::Of(lua_toboolean(state_, -1));
    return Value::Of(static_cast<double>(lua_tonumber(state_, -1)));
  }

 private:
  void Push(const Value& value) {
    switch (value.kind) {
      case Value::Kind::Integer:
        return lua_pushinteger(state_, value.integer);
      case Value::Kind::Real:
        return lua_pushnumber(state_, value.real);
      case Value::Kind::Text:
        lua_pushlstring(state_, value.text.data(), value.text.size());
    }
  }

  lua_State* state_;
  int count_;
  int function_;
};

class LuaEngine : public Engine {
 public:
  LuaEngine() : state_(luaL_newstate()) {
    luaL_openlibs(state_);
    lua_pushcfunction(state_, &HostMax);
    lua_setglobal(state_, "hostmax");
  }
  ~LuaEngine() override { lua_close(state_); }

  std::unique_ptr<Script> Compile(const std::string& setup, const std::string& expression,
                                  const std::vector<std::string>& names) override {
    if (luaL_loadstring(state_, setup.c_str()) != 0 || lua_pcall(state_, 0, 0, 0) != 0)
      return nullptr;
    std::string parameters;
    for (const std::string& name : names) parameters += (parameters.empty() ? "" : ", ") + name;
    const std::string text =
        (names.empty() ? std::string() : "local " + parameters + " = ...\n") + expression;
    if (luaL_loadstring(state_, text.c_str()) != 0) return nullptr;
    return std::make_unique<LuaScript>(state_, names.size());
  }

  bool CompileOnly(const std::string& expression) override {
    const bool done = luaL_loadstring(state_, expression.c_str()) == 0;
    lua_settop(state_, 0);
    return done;
  }

 private:
  lua_State* state_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Engine* MakePeerEngine() { return new LuaEngine; }
