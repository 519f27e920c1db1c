// Duktape as an engine of the benchmarks. A script is a function of the variables.
#include <duktape.h>

#include "bench/support/engine.h"

namespace {

using ixomep::bench::Engine;
using ixomep::bench::Script;
using ixomep::bench::Value;

duk_ret_t HostMax(duk_context* context) {
  const double a = duk_to_number(context, 0);
  const double b = duk_to_number(context, 1);
  duk_push_number(context, a > b ? a : b);
  return 1;
}

class DuktapeScript : public Script {
 public:
  // The function lies on top of the stack and stays there, below everything compiled later.
  DuktapeScript(duk_context* context, std::size_t count)
      : context_(context),
        count_(static_cast<int>(count)),
        function_(duk_get_heapptr(context, -1)) {
    duk_push_global_stash(context_);
    duk_dup(context_, -2);
    duk_put_prop_index(context_, -2, next_index++);  // keeps it alive
    duk_pop_2(context_);
  }

  void Run(const Value* values) override {
    duk_set_top(context_, 0);
    duk_push_heapptr(context_, function_);
    for (int i = 0; i < count_; ++i) Push(values[i]);
    duk_pcall(context_, count_);
  }

  Value Result() override {
    if (duk_is_string(context_, -1)) return Value::Of(std::string(duk_get_string(context_, -1)));
    if (duk_is_boolean(context_, -1))
      return Value::Of(static_cast<int>(duk_get_boolean(context_, -1)));
    return Value::Of(static_cast<double>(duk_to_number(context_, -1)));
  }

 private:
  void Push(const Value& value) {
    switch (value.kind) {
      case Value::Kind::Integer:
        return duk_push_int(context_, value.integer);
      case Value::Kind::Real:
        return duk_push_number(context_, value.real);
      case Value::Kind::Text:
        duk_push_lstring(context_, value.text.data(), value.text.size());
    }
  }

  static inline duk_uarridx_t next_index = 0;
  duk_context* context_;
  int count_;
  void* function_;
};

class DuktapeEngine : public Engine {
 public:
  DuktapeEngine() : context_(duk_create_heap_default()) {
    duk_push_c_function(context_, &HostMax, 2);
    duk_put_global_string(context_, "hostmax");
  }
  ~DuktapeEngine() override { duk_destroy_heap(context_); }

  std::unique_ptr<Script> Compile(const std::string& setup, const std::string& expression,
                                  const std::vector<std::string>& names) override {
    if (duk_peval_string(context_, setup.c_str()) != 0) return nullptr;
    std::string parameters;
    for (const std::string& name : names) parameters += (parameters.empty() ? "" : ", ") + name;
    const std::string text = "(function(" + parameters + ") {" + expression + "})";
    if (duk_peval_string(context_, text.c_str()) != 0) return nullptr;
    return std::make_unique<DuktapeScript>(context_, names.size());
  }

  bool CompileOnly(const std::string& expression) override {
    const std::string text = "(function() {" + expression + "})";
    const bool done = duk_pcompile_string(context_, 0, text.c_str()) == 0;
    duk_set_top(context_, 0);
    return done;
  }

 private:
  duk_context* context_;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) Engine* MakePeerEngine() {
  return new DuktapeEngine;
}
