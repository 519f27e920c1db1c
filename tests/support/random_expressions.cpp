// Writes random expressions; see random_expressions.h.
#include "tests/support/random_expressions.h"

namespace ixomep::test {

namespace {

constexpr int kMaxLoops = 2;  // nested in one another

// Counts a loop for as long as its body is written.
class InLoop {
 public:
  explicit InLoop(int& loops) : loops_(loops) { ++loops_; }
  InLoop(const InLoop&) = delete;
  InLoop& operator=(const InLoop&) = delete;
  ~InLoop() { --loops_; }

 private:
  int& loops_;
};

std::string InParentheses(const std::string& text) { return "(" + text + ")"; }

}  // namespace

std::string RandomExpressions::Constant() {
  return Pick(
      {"0",          "1",      "2",     "3",      "-1",    "7",         "12",
       "2147483647", "0.5",    "2.0",   "0.0",    "-3.25", "1e300",     "0.30000000000000004",
       "\"\"",       "\"ab\"", "\"x\"", "\"12\"", "{}",    "{1, 2, 3}", "{\"k\": 1, 2: \"z\"}",
       "CM 2",       "PT 3",   "2cm",   "0.5mm",  "2s",    "1.5s"});
}

std::string RandomExpressions::Name() {
  return Pick({"a", "m", "s", "i", "r", "t", "u", "v", "w", "f", "p", "q", "n", "missing"});
}

std::string RandomExpressions::Leaf() {
  if (Chance(55)) return Name();
  return Constant();
}

// Mostly a number, so that not every text ends in a wrong type.
std::string RandomExpressions::Number(int depth) {
  if (depth <= 0 || Chance(30)) {
    return Pick({"i", "i", "r", "p", "n", "a[0]", "a[1]", "m[\"k\"]", "1", "2", "0.5", "-3",
                 "LEN s", "2cm"});
  }
  if (Chance(15)) return Pick({"-", "NOT ", "ROUND ", "REAL "}) + InParentheses(Number(depth - 1));
  if (Chance(10)) return "f(" + Number(depth - 1) + ", " + Number(depth - 1) + ")";
  if (Chance(10)) {
    return "cond(" + Number(depth - 1) + ", " + Number(depth - 1) + ", " + Number(depth - 1) + ")";
  }
  return InParentheses(Number(depth - 1)) +
         Pick({" + ", " - ", " * ", " / ", " = ", " != ", " < ", " <= ", " > ", " >= ", " AND ",
               " OR "}) +
         InParentheses(Number(depth - 1));
}

std::string RandomExpressions::Text(int depth) {
  if (depth <= 0 || Chance(30)) return Pick({"s", "\"ab\"", "\"\"", "a[3]", "STR i", "type(u)"});
  if (Chance(15)) return "STR " + InParentheses(Expression(depth - 1));
  return InParentheses(Text(depth - 1)) + " + " + InParentheses(Text(depth - 1));
}

std::string RandomExpressions::Operator(int depth) {
  if (Chance(50)) return Number(depth);
  if (Chance(30)) return Text(depth);
  if (Chance(25)) {
    return Pick({"-", "NOT ", "REAL ", "STR ", "LEN ", "VAL ", "ROUND ", "FLOOR ", "CEIL ", "INT ",
                 "CM ", "CMS ", "PT ", "PTS ", "ASC ", "CHR "}) +
           InParentheses(Expression(depth - 1));
  }
  return InParentheses(Expression(depth - 1)) +
         Pick({" + ", " + ", " - ", " * ", " / ", " MOD ", " = ", " != ", " < ", " <= ", " > ",
               " >= ", " AND ", " OR ", " SUB ", " IN "}) +
         InParentheses(Expression(depth - 1));
}

std::string RandomExpressions::Subscript(int depth) {
  const std::string base =
      Chance(70) ? Pick({"a", "m", "v", "p", "n"}) : InParentheses(Expression(depth - 1));
  const std::string index = Chance(60) ? Pick({"0", "1", "2", "i", "n", "p", "\"k\"", "s", "i + 1"})
                                       : InParentheses(Expression(depth - 1));
  if (Chance(15)) return base + Pick({".length", ".keys", ".values", ".first"});
  return base + "[" + index + "]" + (Chance(25) ? "[" + Pick({"0", "1", "i", "n"}) + "]" : "");
}

std::string RandomExpressions::Control(int depth) {
  if (Chance(30)) return "try(" + Expression(depth - 1) + ", " + Expression(depth - 1) + ")";
  std::string text = "cond(";
  for (int branches = 1 + Below(2); branches > 0; --branches) {
    text += Expression(depth - 1) + ", " + Expression(depth - 1) + ", ";
  }
  return text + Expression(depth - 1) + ")";
}

std::string RandomExpressions::Loop(int depth) {
  if (loops_ >= kMaxLoops) return Leaf();
  const InLoop in_loop(loops_);
  const std::string last = Chance(50) ? "{" + Sequence(depth - 1) + "}" : "";
  if (Chance(50)) {
    return "for(" + Pick({"i", "n", "w", "r"}) + ", " + Pick({"0", "1", "2", "i", "r"}) + ", " +
           Pick({"2", "3", "4", "0.5", "1"}) + "){" + Sequence(depth - 1) + "}" + last;
  }
  const std::string counter = "count" + std::to_string(counters_++);
  return InParentheses(counter + " := " + Pick({"0", "1"}) + ", while(" + counter + " < 3){" +
                       counter + " := " + counter + " + 1, " + Sequence(depth - 1) + "}" + last);
}

std::string RandomExpressions::Assignment(int depth) {
  if (Chance(40)) {
    const std::string number = Pick({"i", "r", "w", "p", "n"});
    const std::string start = Chance(40) ? number + " + " : std::string();
    return InParentheses(number + " := " + start + Number(depth - 1));
  }
  if (Chance(25))
    return InParentheses("s := " + (Chance(60) ? "s + " + Text(depth - 1) : Text(depth - 1)));
  const std::string name = Pick({"i", "r", "s", "v", "w", "p", "n", "a"});
  if (Chance(35)) return InParentheses(name + " := " + name + " + " + Expression(depth - 1));
  if (Chance(15)) {
    return InParentheses(Pick({"a", "m", "v"}) + "[" + Pick({"0", "1", "i", "\"k\""}) +
                         "] := " + Expression(depth - 1));
  }
  if (Chance(10)) return "set(" + name + ", " + Expression(depth - 1) + ")";
  return InParentheses(name + " := " + Expression(depth - 1));
}

std::string RandomExpressions::Sequence(int depth) {
  std::string text = Attempt(depth);
  for (int more = Below(3); more > 0; --more) text += ", " + Attempt(depth);
  return text;
}

// So that what follows is reached.
std::string RandomExpressions::Attempt(int depth) {
  const std::string text = Expression(depth);
  return Chance(60) ? "try(" + text + ", " + Leaf() + ")" : text;
}

std::string RandomExpressions::Lambda(int depth) {
  static const std::vector<std::string_view> kParameters = {
      "",          "p, ",    "n, ",          "p, n, ",         "n, i, ",
      "p, q, s, ", "p, p, ", "p, q, n, i, ", "p, q, n, i, r, "};
  return "lambda(" + Pick(kParameters) + InParentheses(Sequence(depth - 1)) + ")";
}

// The lambda goes into a name first and is then called a few times, more with every level.
std::string RandomExpressions::Call(int depth) {
  if (Chance(25)) {
    return Pick({"hsum(", "hsum(", "hset(", "htree(", "hunset(", "hfail("}) +
           (Chance(70) ? Expression(depth - 1) + ", " + Expression(depth - 1) : std::string()) +
           ")";
  }
  std::string arguments;
  for (int count = Below(4); count > 0; --count) {
    arguments += Expression(depth - 1) + (count > 1 ? ", " : "");
  }
  if (Chance(50) || loops_ >= kMaxLoops) return Pick({"f", "f", "g", "v"}) + "(" + arguments + ")";
  const InLoop in_loop(loops_);
  const std::string name = "call" + std::to_string(counters_++);
  std::string text = name + " := " + Lambda(depth);
  for (int calls = 1 + Below(3); calls > 0; --calls) text += ", " + name + "(" + arguments + ")";
  return InParentheses(text);
}

// d counts down and is assigned nowhere.
std::string RandomExpressions::Recursion(int depth) {
  if (loops_ >= kMaxLoops) return Leaf();
  const InLoop in_loop(loops_);
  const std::string name = "rec" + std::to_string(counters_++);
  const bool two = Chance(50);
  const std::string next = name + (two ? "(d - 1, " + Expression(depth - 1) + ")" : "(d - 1)");
  const std::string work = Chance(50) ? Assignment(depth - 1) : Expression(depth - 1);
  const std::string step =
      Pick({"p + ", "i + ", "1 + ", "\"s\" + ", "missing = ", "p, ", ""}) + next;
  return InParentheses(name + " := lambda(d, " + (two ? "p, " : "") + "cond(d < 1, " + Leaf() +
                       ", (" + (Chance(40) ? work + ", " : std::string()) + step + "))), " + name +
                       "(" + Pick({"2", "3", "5"}) + (two ? ", i" : "") + ")");
}

std::string RandomExpressions::Library(int depth) {
  switch (Below(7)) {
    case 0:
      return "aappend(" + Pick({"a", "v", "s", "p"}) + ", " + Expression(depth - 1) + ")";
    case 1:
      return "type(" + Expression(depth - 1) + ")";
    case 2:
      return "min(" + Expression(depth - 1) + ", " + Expression(depth - 1) + ")";
    case 3:
      return "valofvar(\"" + Name() + "\")";
    case 4:
      return "curvars()";
    case 5:
      return "error(" + Expression(depth - 1) + ")";
    default:
      return "sqrt(" + Expression(depth - 1) + ")";
  }
}

std::string RandomExpressions::Expression(int depth) {
  if (depth <= 0) return Leaf();
  switch (Below(16)) {
    case 0:
    case 1:
    case 2:
    case 3:
      return Operator(depth);
    case 4:
    case 5:
      return Subscript(depth);
    case 6:
      return Control(depth);
    case 7:
      return Loop(depth);
    case 8:
    case 9:
      return Assignment(depth);
    case 10:
      return InParentheses(Sequence(depth - 1));
    case 11:
    case 12:
      return Call(depth);
    case 13:
      return Recursion(depth);
    case 14:
      return Library(depth);
    default:
      return Leaf();
  }
}

std::string RandomExpressions::Next() {
  counters_ = 0;
  return Sequence(1 + Below(4));
}

}  // namespace ixomep::test
