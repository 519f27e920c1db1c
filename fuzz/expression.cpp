// Fuzz target: expression texts. Each is compiled and, when that succeeds, evaluated plainly and
// strictly, walked, by side programs and by quick trees, which must agree in all that they leave
// behind.
#include "fuzz/support/bytes.h"
#include "fuzz/support/evaluation.h"
#include "fuzz/support/fuzz_host.h"

using namespace ixomep::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const FuzzHost host;
  IxoMepExpressionParser parser;
  String error;
  const IxoMepErrorEnum code = parser.SetExpression(String(TextOf(data, size)), error);
  Check((code == IMEPERR_NONE) == (parser.GetTree() != nullptr), "a code and a tree, or neither");
  Check(code == IMEPERR_NONE || !error.IsEmpty(), "a failure without a message");
  if (code != IMEPERR_NONE) return 0;
  (void)CheckBothWays(parser, {});
  (void)CheckBothWays(parser, {.strict = true, .own_scope = true});
  (void)CheckBothWays(parser, {.own_scope = true});
  CheckQuickly(parser);
  return 0;
}
