// How the work of the expression language grows: building, editing and copying of values, the
// built-in functions and methods. Each row is a setup, which is not timed, and an expression;
// `n` is the size.
#include <string>

#include "bench/support/growth.h"

namespace {

using namespace ixomep::bench;

constexpr std::int64_t kFew = 1024;
constexpr std::int64_t kMany = 262144;

struct Row {
  const char* operation;
  const char* setup;
  const char* expression;
  double bound = kLinear;
  std::int64_t first = kFew;
  std::int64_t last = kMany;
};

// A list of n numbers below 100003, an array of them, a map from them and from n names.
constexpr const char* kTokens =
    "b := {}, for(i, 1, n){aappend(b, INT ((i * 7919) MOD 100003))}, t := tokstr(b), "
    "c := {}, for(i, 1, n){aappend(c, INT ((i * 6007) MOD 100003))}, u := tokstr(c)";
constexpr const char* kArray =
    "v := {}, for(i, 1, n){aappend(v, INT ((i * 7919) MOD 100003))}, k := 1";
constexpr const char* kNames =
    "v := {}, for(i, 1, n){aappend(v, \"name \" + STR ((i * 7919) MOD "
    "100003))}";
constexpr const char* kMap = "m := map(), for(i, 0, n - 1){m[i] := i}";
constexpr const char* kNameMap = "m := map(), for(i, 0, n - 1){m[\"name \" + STR i] := i}";
// n letters.
constexpr const char* kText =
    "s := \"a\", while(LEN s < n){s := s + s}, s := copy(s, 0, n), d := 0";

constexpr Row kBuilding[] = {
    {"text, appended", "", "s := \"\", for(i, 1, n){s := s + \"x\"}{LEN s}"},
    // Every step moves the text: the language has texts of one piece.
    {"text, put in front", "", "s := \"\", for(i, 1, n){s := \"x\" + s}{LEN s}", kQuadratic, kFew,
     65536},
    {"array, aappend", "", "v := {}, for(i, 1, n){aappend(v, i)}{LEN v}", kLinearInMemory},
    {"array, ainsert in front", "", "v := {}, for(i, 1, n){ainsert(v, 0, i)}{LEN v}",
     kLinearInMemory},
    // Half of what stands beside the place is moved: the elements of an array are in one piece.
    {"array, asinsert", "", "v := {}, for(i, 1, n){asinsert(v, (i * 7919) MOD 100003)}{LEN v}",
     kQuadratic, kFew, 65536},
    {"array of arrays", "", "v := {}, for(i, 1, n){aappend(v, {i, i})}{LEN v}", kLinearInMemory},
    {"array of n", "", "array(n)", kLinearInMemory},
    {"map by numbers", "", "m := map(), for(i, 1, n){m[i] := i}{LEN m}", kLinearInMemory},
    {"map by texts", "", "m := map(), for(i, 1, n){m[\"name \" + STR i] := i}{LEN m}",
     kLinearInMemory},
};

constexpr Row kArrays[] = {
    {"read by index", kArray, "s := 0, for(i, 0, n - 1){s := s + v[i]}{s}", kLinearInMemory},
    {"areplace each", kArray, "for(i, 0, n - 1){areplace(v, i, i)}"},
    {"element assigned each", kArray, "for(i, 0, n - 1){v[i] := i}"},
    {"aerase from the end", kArray, "w := v, for(i, 1, n){aerase(w, LEN w - 1)}{LEN w}"},
    {"aerase from the front", kArray, "w := v, for(i, 1, n){aerase(w, 0)}{LEN w}", kLinearInMemory},
    {"queue", kArray, "w := v, for(i, 1, n){aappend(w, aerase(w, 0))}{LEN w}", kLinearInMemory},
    {"equality of arrays' texts", kArray, "STR v = STR v"},
    {"sort numbers", kArray, "w := v, w.sort()", kLinearInMemory},
    {"sort texts", kNames, "w := v, w.sort()", kLinearInMemory},
    {"sort sorted numbers", "v := {}, for(i, 1, n){aappend(v, i)}", "w := v, w.sort()",
     kLinearInMemory},
    {"sort equal numbers", "v := {}, for(i, 1, n){aappend(v, 1)}", "w := v, w.sort()",
     kLinearInMemory},
    // Neighbours are exchanged pass by pass, as the language says.
    {"sort by a lambda", kArray, "w := v, w.sort(lambda(a, b, a > b))", kQuadratic, 64, 1024},
};

constexpr Row kMaps[] = {
    {"read by numbers", kMap, "s := 0, for(i, 0, n - 1){s := s + m[i]}{s}", kLinearInMemory},
    {"read by texts", kNameMap, "s := 0, for(i, 0, n - 1){s := s + m[\"name \" + STR i]}{s}",
     kLinearInMemory},
    {"keys in order", kMap, "s := 0, for(i, 0, n - 1){s := s + m.key(i)}{s}", kLinearInMemory},
    {"keys backwards", kMap, "s := 0, for(i, 1, n){s := s + m.key(n - i)}{s}", kLinearInMemory},
    {"merase each", kMap, "w := m, for(i, 0, n - 1){merase(w, i)}{LEN w}", kLinearInMemory},
    {"tourlquerystring", kNameMap, "LEN tourlquerystring(m)", kLinearInMemory},
    {"insertAllFrom", kNameMap, "w := map(), w.insertAllFrom(m), LEN w", kLinearInMemory},
    {"text of", kNameMap, "LEN STR m", kLinearInMemory},
};

// Copies share until one of them is changed.
constexpr Row kCopying[] = {
    {"array, then one change", kArray, "w := v, w[0] := 1", kLinearInMemory},
    {"map, then one change", kMap, "w := m, w[0] := 1", kLinearInMemory},
    {"array handed to n calls", kArray, "f := lambda(a, k, a[k]), for(i, 0, n - 1){f(v, i)}",
     kLinearInMemory},
    {"array assigned n times", kArray, "for(i, 0, n - 1){w := v}"},
    {"map assigned n times", kMap, "for(i, 0, n - 1){w := m}"},
    {"text handed to n calls", kText, "f := lambda(a, LEN a), for(i, 0, n - 1){f(s)}"},
    {"array in an array, n changes", kArray, "w := {v}, for(i, 0, n - 1){w[0][i] := i}"},
    {"array in a map, n changes", kArray, "w := {\"k\": v}, for(i, 0, n - 1){w[\"k\"][i] := i}"},
    {"array in an array, read n times", kArray, "w := {v}, for(i, 0, n - 1){w[0][i]}"},
};

constexpr Row kTokenLists[] = {
    {"tokcnt", kTokens, "tokcnt(t)"},
    {"token, the last", kTokens, "token(t, n - 1)"},
    {"tokindex, absent", kTokens, "tokindex(t, \"no\")"},
    {"tokcat", kTokens, "LEN tokcat(t, u)"},
    {"tokunion", kTokens, "LEN tokunion(t, u)", kLinearInMemory},
    {"tokisect", kTokens, "LEN tokisect(t, u)", kLinearInMemory},
    {"tokdiff", kTokens, "LEN tokdiff(t, u)", kLinearInMemory},
    {"tokstr", kTokens, "LEN tokstr(b)"},
    {"valtokstr", kTokens, "LEN valtokstr(b)"},
    {"strarray", kTokens, "LEN strarray(t)"},
    {"valarray", kTokens, "LEN valarray(t)"},
    {"fortok", kTokens, "fortok(w, t, \" \", 0)"},
    // A token by its number is looked for from the front.
    {"token by token", kTokens, "for(i, 0, n - 1, token(t, i))", kQuadratic, 256, 4096},
};

constexpr Row kTexts[] = {
    {"search, absent", kText, "search(s, \"ab\", 0)"},
    {"bsearch, absent", kText, "bsearch(s, \"ba\", -1)"},
    {"search for half the text", kText, "search(s, copy(s, 0, INT (n / 2)) + \"b\", 0)"},
    {"bsearch for half the text", kText, "bsearch(s, \"b\" + copy(s, 0, INT (n / 2)), -1)"},
    {"replace", kText, "LEN replace(s, \"ab\", \"c\")"},
    {"replall, each byte", kText, "LEN replall(s, \"a\", \"bc\")"},
    {"replall, all gone", kText, "LEN replall(s, \"aa\", \"\")"},
    {"upper", kText, "LEN upper(s)"},
    {"iupper", kText, "LEN iupper(s)"},
    {"mstr", kText, "LEN mstr(s)"},
    {"base64", kText, "LEN base64decode(base64encode(s))"},
    {"utf8", kText, "LEN fromutf8(toutf8(s))"},
    {"oem", kText, "LEN fromoem(tooem(s))"},
    {"encodeuri", kText, "LEN encodeuri(s)"},
    {"copy, byte by byte", kText, "for(i, 0, n - 1){copy(s, i, 1)}"},
    {"method copy", kText, "LEN s.copy(0, n)"},
    {"method trim", kText, "LEN s.trim()"},
    {"method without", kText, "LEN s.without(\"b\")"},
    {"method lastIndexOf", kText, "s.lastIndexOf(\"b\")"},
    {"comparison of equal texts", kText, "(s + \"b\") = (s + \"b\")"},
    {"regex, absent", kText, "regex(\"[b-z]\", s)"},
    {"regex, nested repeats", kText, "try(regex(\"^(a+)+[b-c]$\", s), 0)", kLinear, 64, kFew},
};

constexpr Row kControl[] = {
    {"for", "", "s := 0.0, for(i, 1, n){s := s + i}{s}", kLinearInMemory},
    {"while", "", "s := 0, while(s < n){s := s + 1}{s}"},
    {"calls of a lambda", "", "f := lambda(a, a + 1), s := 0, for(i, 1, n){s := f(s)}{s}"},
    {"eval of a text", "", "for(i, 1, n){eval(parse(\"1 + 2\"))}", kLinear, kFew, 65536},
    {"try that fails", "", "for(i, 1, n){try(1 / 0, 0)}", kLinear, kFew, 65536},
};

template <std::size_t kCount>
void RegisterAll(const std::string& family, const Row (&rows)[kCount],
                 Evaluation evaluation = Evaluation::First) {
  for (const Row& row : rows) {
    RegisterExpression({family, row.operation, row.first, row.last, row.bound}, evaluation,
                       row.setup, row.expression);
  }
}

}  // namespace

int main(int argc, char** argv) {
  RegisterAll("building", kBuilding);
  RegisterAll("arrays", kArrays);
  RegisterAll("maps", kMaps);
  RegisterAll("copying", kCopying);
  RegisterAll("token lists", kTokenLists);
  RegisterAll("texts", kTexts);
  RegisterAll("control", kControl);
  // What loops do most, when the tree is known already.
  RegisterAll("building again", kBuilding, Evaluation::Again);
  RegisterAll("arrays again", kArrays, Evaluation::Again);
  RegisterAll("copying again", kCopying, Evaluation::Again);
  RegisterAll("control again", kControl, Evaluation::Again);
  return RunGrowth(argc, argv);
}
