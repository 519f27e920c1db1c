// The error codes of the library. The numbers are part of the interface: hosts compare them.
// The text of a code comes from IxoMepError::GetErrorText (values/error.h).
#pragma once

#include <cstdint>

enum IxoMepErrorEnum : std::int32_t {
  IMEPERR_NONE = 0,                   // success
  IMEPERR_BACKSLASH_AT_END = 1,       // a string literal ends in a backslash
  IMEPERR_STRING_NOT_CLOSED = 2,      // a string literal has no closing quote
  IMEPERR_UNEXPECTED_CHARACTER = 3,   // a character that starts nothing, inside an element
  IMEPERR_BAD_SEPARATOR = 4,          // a separator of a map literal, a character after a modifier
  IMEPERR_VALUE_EXPECTED = 5,         // no literal where a value must be
  IMEPERR_UNKNOWN_UNIT = 6,           // a number followed by an unknown unit
  IMEPERR_OUTSIDE_ELEMENT = 8,        // an attribute or a body without an element
  IMEPERR_AFTER_STRING = 9,           // a string directly followed by something
  IMEPERR_AFTER_EXPRESSION = 10,      // an expression directly followed by something
  IMEPERR_OPERAND_EXPECTED = 13,      // an operand is missing
  IMEPERR_CLOSER_EXPECTED = 14,       // a closing bracket is missing
  IMEPERR_TEXT_LEFT_OVER = 15,        // text behind a complete expression
  IMEPERR_NOTHING_OPEN = 16,          // a closing bracket without its opener
  IMEPERR_UNKNOWN_CHARACTER = 17,     // a character that no expression holds
  IMEPERR_DIVISION_BY_ZERO = 18,      // "/" or "MOD" by zero
  IMEPERR_NUMBER_OVERFLOW = 19,       // a number literal out of range
  IMEPERR_UNKNOWN_VARIABLE = 20,      // an unknown variable, or an assignment where none is allowed
  IMEPERR_WRONG_TYPE = 21,            // an operand, index or argument of the wrong type
  IMEPERR_UNKNOWN_FUNCTION = 22,      // a call of an unknown function
  IMEPERR_WRONG_ARGUMENT_COUNT = 23,  // too many or too few arguments
  IMEPERR_UNKNOWN_KEYWORD = 24,       // an upper-case word that is no operator
  IMEPERR_BAD_KEYWORD = 25,           // a keyword directly followed by a lower-case letter
  IMEPERR_INDEX_TOO_SMALL = 26,       // an index below the valid range
  IMEPERR_INDEX_TOO_LARGE = 27,       // an index beyond the valid range
  IMEPERR_AFTER_KEYWORD = 28,         // a keyword directly followed by something
  IMEPERR_BAD_ATTRIBUTE_NAME = 29,    // a character that no attribute name holds
  IMEPERR_AFTER_NUMBER = 30,          // a number directly followed by something
  IMEPERR_NOT_ASSIGNABLE = 31,        // a target that cannot be assigned
  IMEPERR_USER = 32,                  // raised by error(...), and by bad Base64 text
  IMEPERR_UNEXPECTED_TYPE = 36,       // a value of another type than expected; no expression set
  IMEPERR_TOO_LONG = 37,              // a string or array beyond the maximum size or the memory
  IMEPERR_TOO_DEEP = 38,              // an expression nested too deeply, or a limit exceeded
  IMEPERR_NO_SUCH_VARIABLE = 39,      // an editing function names a variable that is not there
  IMEPERR_NOT_CALLABLE = 40,          // a callee that cannot be called
  IMEPERR_UNKNOWN_DIRECTIVE = 41,     // a directive other than @INCLUDE
  IMEPERR_UNKNOWN_MEMBER = 42,        // a property or method that the type does not have
  IMEPERR_INCLUDE_FAILED = 43,        // an included file that cannot be read
};
