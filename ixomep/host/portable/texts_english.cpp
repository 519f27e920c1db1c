// The English texts of the default host: what is wrong and what was expected, for every error
// code, the limits of a host, and the labels of error reports. One table {resource number, text},
// in ascending order. A "%" word is filled in by the code that reports the error, at its first
// occurrence; a text has only the words that every reporter of its code fills.
#include "ixomep/host/portable/default_host.h"

#include <algorithm>
#include <iterator>

namespace ixomep::portable {
namespace {

struct Resource {
  std::int32_t number;
  std::string_view text;
};

constexpr Resource kTexts[] = {
    {16101, "A string ends in a backslash; the character that it protects is missing."},
    {16102, "A string is not closed; its closing quotation mark is missing."},
    {16103,
     "The character \"%c\" is unexpected here; a keyword, an attribute or a body is expected."},
    {16104, "The character \"%c\" is unexpected here; a separator or the end is expected."},
    {16105, "A value is expected here: a string, a number, a time or a bracketed value."},
    {16106, "\"%s\" is no unit; m, cm, mm, pt or s is expected behind a number."},
    {16108, "\"%s\" is unexpected here; a keyword has to come first."},
    {16109, "A string is followed directly by another character; a blank is expected behind it."},
    {16110,
     "An expression is followed directly by another character; a blank is expected behind it."},
    {16113, "A value or a name is missing in an expression."},
    {16114, "\"%1\" is expected here."},
    {16115, "An expression should end here; an operator or a separator is missing."},
    {16116, "\"%1\" closes nothing; there is no \"%2\" that belongs to it."},
    {16117, "An expression contains a character that has no meaning there."},
    {16118, "A number is divided by zero."},
    {16119, "A number is too large or too small to be read: %func"},
    {16120,
     "A variable is used that does not exist, or one would be changed where nothing may be "
     "changed."},
    {16121, "A value has the wrong type: %func"},
    {16122, "The function \"%s\" is not known."},
    {16123, "The number of arguments is wrong: %func"},
    {16124, "\"%s\" is no operator; a word in upper-case letters has to be one."},
    {16125, "\"%s\" is no keyword; a keyword has upper-case letters and \"_\" only."},
    {16126, "An index is below the first element of the %type."},
    {16127, "An index is beyond the last element of the %type."},
    {16128, "A keyword is followed directly by \"%c\"; a blank is expected behind it."},
    {16129,
     "The name of an attribute contains a character that names do not have; letters, digits, "
     "\"_\" and \"-\" are expected."},
    {16130, "A value is followed directly by another character; a blank is expected behind it."},
    {16131,
     "A place that can be assigned is expected, such as the bare name of a variable; a captured "
     "variable is constant in the lambda."},
    {16132, "%s"},
    {16136, "The attribute %attr should be of the type %type1, but is of the type %type2."},
    {16137, "A text becomes too long."},
    {16138, "The expression is nested too deeply."},
    {16139, "The variable \"%varname\" does not exist: %func"},
    {16140, "Something is called that is neither a function nor a lambda."},
    {16141, "\"%s\" is no directive; @INCLUDE is the only one."},
    {16142, "A value of the type %type has no property or method \"%property\"."},
    {16143, "The file %filename cannot be read."},
    {16201, "The limit of %1 steps is exceeded."},
    {16202, "The limit of %1 bytes of memory is exceeded."},
    {16203, "The limit of %1 calls inside each other is exceeded."},
    {16204, "The evaluation is interrupted."},
    {33570582, "Line"},
    {33570583, "in"},
    {33570584, "End the application?"},
};

static_assert(std::is_sorted(std::begin(kTexts), std::end(kTexts),
                             [](const Resource& a, const Resource& b) {
                               return a.number < b.number;
                             }));
static_assert(std::size(kTexts) == 37 + 4 + 3);

}  // namespace

std::string_view EnglishText(std::int32_t number) noexcept {
  const auto* found = std::lower_bound(
      std::begin(kTexts), std::end(kTexts), number,
      [](const Resource& row, std::int32_t wanted) { return row.number < wanted; });
  return found == std::end(kTexts) || found->number != number ? std::string_view() : found->text;
}

}  // namespace ixomep::portable
