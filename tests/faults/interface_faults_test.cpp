// Every allocation below the interface fails, one after the other, in what is neither an evaluation
// nor a definition text: methods, expression objects, scopes, values, errors, ports, encodings.
// What reports by code gives 37 or 38; a value or scope that cannot be built or changed is left as
// it was and says so by std::bad_alloc, as nothing else could.
#include <gtest/gtest.h>

#include <functional>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/host/encodings.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/reg_ex.h"
#include "ixomep/messages/message.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/values/error.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"
#include "tests/faults/failing_new.h"
#include "tests/support/eval.h"
#include "tests/support/test_host.h"

namespace ixomep::test {
namespace {

using Type = IxoMepValueType;

const String kLong("a text that is too long to be stored in place");
const String kSource("x + {1, \"some text\"}");

class Answering : public IxoMessagePort {
 public:
  Answering() : IxoMessagePort(Core()) {}
  bool IsAvailable() override { return true; }
  void Activate() override {}
  void Deactivate() override {}
  void Receive(IxoMessage& message) override { message.SetAnswer(kLong); }
};

// What an operation works on, made anew for each attempt.
struct World {
  World() {
    scope.OldSetValue("x", IxoMepValue(kLong), true);
    scope.OldSetValue("list", list, true);
    object.MoveValue("p", new IxoMepValue(list));
    object.MoveValue("m", new IxoMepValue(ValueOf("lambda(a, {a, \"some more text\", a})")));
    EXPECT_EQ(parser.SetExpression("list[1] := {x, x + x}", error), IMEPERR_NONE);
    EXPECT_EQ(place.SetExpression("list[2]", error), IMEPERR_NONE);
    EXPECT_EQ(call.SetExpression("cond(1, {x, x + x})", error), IMEPERR_NONE);
  }
  IxoMepValue list = ValueOf("{1, {\"k\": 2, 3: \"text of some length\"}, \"another text\"}");
  IxoMepValue map = ValueOf("{\"k\": {1, 2}, 2: \"text of some length\"}");
  IxoMepValue object{Type::Object};
  IxoMepValue text{kLong};
  IxoMepValueSet outer;
  IxoMepValueSet scope{&outer};
  IxoMepExpressionParser parser;
  IxoMepExpressionParser place;
  IxoMepExpressionParser call;
  IxoMepValue* result = nullptr;
  String error;
  IxoMepValueList no_args;
  IxoMepValueList map_arg{&map};
  IxoMepValueList text_arg{&text};

  World(const World&) = delete;
  World& operator=(const World&) = delete;
  ~World() { delete result; }

  std::string Shown() const {
    return ShownValue(list) + ShownValue(map) + ShownValue(object) + ShownValue(text);
  }
  long Method(IxoMepValue& receiver, const char* name, const IxoMepValueList& args) {
    return receiver.EvaluateMethodCall(Intern(name), args, result, error, false);
  }
};

struct Operation {
  const char* name;
  std::function<long(World&)> run;
};

// Names are interned and argument lists made before the failing begins.
const Operation kByCode[] = {
    {"copy", [](World& w) { return w.Method(w.text, "copy", w.no_args); }},
    {"trim", [](World& w) { return w.Method(w.text, "trim", w.no_args); }},
    {"key", [](World& w) { return w.Method(w.map, "key", w.no_args); }},
    {"empty", [](World& w) { return w.Method(w.list, "empty", w.no_args); }},
    {"insertAllFrom", [](World& w) { return w.Method(w.map, "insertAllFrom", w.map_arg); }},
    {"method of an object", [](World& w) { return w.Method(w.object, "m", w.text_arg); }},
    {"unknown method", [](World& w) { return w.Method(w.object, "none", w.no_args); }},
    {"property",
     [](World& w) { return w.object.GetPropertyValue(Intern("p"), w.result, w.error); }},
    {"SetExpression", [](World& w) -> long { return w.parser.SetExpression(kSource, w.error); }},
    {"Evaluate",
     [](World& w) -> long { return w.parser.Evaluate(&w.scope, w.result, w.error, false, true); }},
    {"handler",
     [](World& w) -> long {
       return w.call.GetTree()->_cond(&w.call, &w.scope, w.result, w.error, false);
     }},
    {"AssignToLValue",
     [](World& w) -> long { return w.place.AssignToLValue(&w.map, &w.scope, w.error); }},
};

bool IsMemoryCode(long code) { return code == IMEPERR_TOO_LONG || code == IMEPERR_TOO_DEEP; }

std::size_t BytesInUse() {
  EmptyFreeLists();
  return MemoryBudget::InUse();
}

TEST(InterfaceFaults, What_reports_by_code_gives_37_or_38) {
  const TestHost host;
  (void)Shown("1 / 0");  // loads the texts of the errors
  for (const Operation& operation : kByCode) {
    long usual = 0;
    {
      World world;
      usual = operation.run(world);
    }
    const std::size_t before = BytesInUse();
    const int failures = SweepFailures([&](int n, FailMode mode) {
      World world;
      EmptyFreeLists();
      long code = 0;
      {
        const FailingNew failing(n, mode);
        EXPECT_NO_THROW(code = operation.run(world)) << operation.name << ", allocation " << n;
      }
      const bool has_failed = FailingNew::HasFailed();
      EXPECT_TRUE(code == usual || (has_failed && IsMemoryCode(code)))
          << operation.name << " gives " << code << " when allocation " << n << " fails";
      EXPECT_TRUE(code == IMEPERR_NONE || world.result == nullptr) << operation.name;
      return has_failed && n < 1000;
    });
    EXPECT_EQ(BytesInUse(), before) << operation.name << " loses memory";
    std::cout << operation.name << ": " << failures << "\n";
  }
}

// Every pooled scope, so that the next one must be allocated.
class AllPooledScopes {
 public:
  AllPooledScopes() {
    scopes_.reserve(100000);
    const FailingNew failing(1, FailMode::FromThenOn);
    try {
      while (scopes_.size() < scopes_.capacity())
        scopes_.push_back(IxoMepValueSetContainer::AllocateValueSet(nullptr));
    } catch (const std::bad_alloc&) {
    }
  }
  AllPooledScopes(const AllPooledScopes&) = delete;
  AllPooledScopes& operator=(const AllPooledScopes&) = delete;
  ~AllPooledScopes() {
    for (IxoMepValueSet* const scope : scopes_) IxoMepValueSetContainer::FreeValueSet(scope);
  }

 private:
  std::vector<IxoMepValueSet*> scopes_;
};

TEST(InterfaceFaults, A_variable_as_result_stays_its_scopes_when_no_own_scope_can_be_had) {
  (void)Shown("1 / 0");  // loads the texts of the errors
  IxoMepValueSet outer;
  outer.OldSetValue("y", IxoMepValue(kLong), true);
  IxoMepValueSet scope(&outer);
  scope.OldSetValue("x", IxoMepValue(kLong), true);
  IxoMepExpressionParser parser;
  String error;
  ASSERT_EQ(parser.SetExpression("1 + 2", error), IMEPERR_NONE);
  for (const char* const name : {"x", "y"}) {
    IxoMepValue* const variable = scope.OldGetLValue(name);
    IxoMepValue* result = variable;
    IxoMepErrorEnum code = IMEPERR_NONE;
    {
      const AllPooledScopes none_left;
      const FailingNew failing(1, FailMode::Once);
      code = parser.Evaluate(&scope, result, error, false, /*ownScope=*/true);
    }
    EXPECT_EQ(code, IMEPERR_TOO_DEEP);
    EXPECT_EQ(result, nullptr);
    ASSERT_EQ(scope.OldGetLValue(name), variable);
    EXPECT_EQ(Eval(name, &scope).Shown(), "string \"" + std::string(kLong.view()) + "\"");
  }
}

const Operation kNeutral[] = {
    {"GetExpression",
     [](World& w) -> long { return w.parser.GetExpression(&w.scope).IsEmpty() ? 1 : 0; }},
    {"SetConstant",
     [](World& w) -> long {
       w.parser.SetConstant(w.list);
       return w.parser.GetTree() == nullptr ? 1 : 0;
     }},
    {"IsJustOneVarContained",
     [](World& w) -> long { return w.place.IsJustOneVarContained(kLong) ? 1 : 0; }},
    {"GetErrorText",
     [](World&) -> long { return IxoMepError::GetErrorText(IMEPERR_WRONG_TYPE).Len(); }},
    {"FreeValueSet",
     [](World& w) -> long {
       w.scope.Clear();
       return 0;
     }},
    {"message without a receiver",
     [](World&) -> long {
       IxoMessage message;
       return message.SendTo(IxoMessagePort::DB()) ? 1 : 0;
     }},
    {"answer",
     [](World&) -> long {
       IxoMessage message;
       message.SetAnswer(kLong);
       message.SetAnswer(kLong);
       return message.GetAnswer().Len();
     }},
};

TEST(InterfaceFaults, What_reports_nothing_gives_something_neutral) {
  const TestHost host;
  (void)Shown("1 / 0");  // loads the texts of the errors
  for (const Operation& operation : kNeutral) {
    const int failures = SweepFailures([&](int n, FailMode mode) {
      World world;
      EmptyFreeLists();
      {
        const FailingNew failing(n, mode);
        EXPECT_NO_THROW((void)operation.run(world)) << operation.name << ", allocation " << n;
      }
      return FailingNew::HasFailed() && n < 1000;
    });
    std::cout << operation.name << ": " << failures << "\n";
  }
}

// The place for these to report is the exception; a container stays as it was.
const Operation kBuilding[] = {
    {"array of undefined", [](World&) -> long { return IxoMepValue(Type::Array, 20).GetSize(); }},
    {"text", [](World& w) -> long { return w.list.GetText().Len(); }},
    {"SetValue",
     [](World& w) -> long {
       w.map.SetValue(&w.text, &w.list);
       return 0;
     }},
    {"SetStr",
     [](World& w) -> long {
       w.text.SetStr(String(std::string_view("another text that is stored elsewhere")));
       return 0;
     }},
    {"variable",
     [](World& w) -> long {
       w.scope.OldSetValue("x", w.list, false);
       w.scope.OldSetValue("y", w.map, true);
       return 0;
     }},
    {"variables",
     [](World& w) -> long {
       w.outer.Assign(w.scope);
       return 0;
     }},
    {"pooled scope",
     [](World& w) -> long {
       const PooledScope scope(&w.scope);
       scope->OldSetValue("z", w.list, true);
       return 0;
     }},
    {"GetKeysOfMap", [](World& w) -> long { return ValuePtr(w.map.GetKeysOfMap())->GetSize(); }},
    {"CreateExprParser",
     [](World& w) -> long {
       const std::unique_ptr<IxoMepExpressionParser> parser(w.list.CreateExprParser());
       return 0;
     }},
    {"GetAllVars",
     [](World& w) -> long {
       IxoMepValueSetMap all;
       const auto release = [&] {
         for (const auto& [name, value] : all) delete value;
       };
       try {
         w.scope.GetAllVars(all, true);
       } catch (...) {
         release();
         throw;
       }
       release();
       return 0;
     }},
    {"message",
     [](World&) -> long {
       const Answering port;
       IxoMessage message(kLong);
       message.SendToAll();
       return message.SendTo(IxoMessagePort::Core()) ? 0 : 1;
     }},
    {"encodings",
     [](World&) -> long {
       String out;
       (void)Ixo_NewBase64Encode(kLong.view(), out);
       (void)Ixo_NewBase64Decode(out.view(), out);
       (void)ConvertUTF8StringToString(ConvertStringToUTF8(kLong));
       (void)IxoSGMLString::XMLStr(kLong, true);
       return HttpRequest::escapeUrlStyle(kLong, "abc").Len();
     }},
};

TEST(InterfaceFaults, What_cannot_be_built_throws_bad_alloc_and_leaves_all_as_it_was) {
  const TestHost host;
  (void)Shown("1 / 0");  // loads the texts of the errors
  for (const Operation& operation : kBuilding) {
    std::string before_it;
    {
      World world;
      before_it = world.Shown();
      (void)operation.run(world);
    }
    const std::size_t bytes = BytesInUse();
    const int failures = SweepFailures([&](int n, FailMode mode) {
      World world;
      EmptyFreeLists();
      bool thrown = false;
      {
        const FailingNew failing(n, mode);
        try {
          (void)operation.run(world);
        } catch (const std::bad_alloc&) {
          thrown = true;
        }
      }
      const bool has_failed = FailingNew::HasFailed();
      EXPECT_TRUE(has_failed || !thrown) << operation.name;
      if (thrown) {
        EXPECT_EQ(world.Shown(), before_it) << operation.name << ", allocation " << n;
      }
      return has_failed && n < 1000;
    });
    EXPECT_EQ(BytesInUse(), bytes) << operation.name << " loses memory";
    // Kept blocks may be all that an operation needs.
    EXPECT_TRUE(failures > 0 || !kWatchedMemory) << operation.name;
    std::cout << operation.name << ": " << failures << "\n";
  }
  EXPECT_EQ(Shown("1 + 2 * 3"), "integer 7");
}

}  // namespace
}  // namespace ixomep::test
