// Internal: the bodies of all built-in functions, by family; each family is one source of that
// name. The rows that tie them to names and signatures are in table.cpp, those of the sixteen
// mathematical functions in numbers.cpp.
#pragma once

#include <array>

#include "ixomep/builtins/call.h"

namespace ixomep::builtins {

using Body = IxoMepErrorEnum(Call& call);

Body Cond, While, For, Fortok, Try, Set;                             // control.cpp
Body Eval, Parse, Lambda, Error, Type, ValOfVar, CurVars, Internal;  // meta.cpp
Body Curly, CurlyColon, Array, Map, MErase, Object;                  // collections.cpp
Body TokCnt, Token, TokIndex, TokCat, TokUnion, TokIsect, TokDiff;   // token_lists.cpp
Body TokStr, ValTokStr, StrArray, ValArray;                          // token_lists.cpp
Body AReplace, AAppend, AInsert, AErase, ASInsert;                   // arrays.cpp
Body Search, BSearch, Replace, ReplAll;                              // search.cpp
Body Copy, Lower, Upper, ILower, IUpper, MStr, UIStr, UIVal;         // strings.cpp
Body RegEx, Byte;                                                    // strings.cpp
Body Base64Encode, Base64Decode, ToUtf8, FromUtf8, ToOem, FromOem;   // encodings.cpp
Body EncodeUri, ToUrlQueryString;                                    // encodings.cpp
Body Pow, Min, Max, Random, GetTickCount, Abs;                       // numbers.cpp
Body RgbVal, Rgb2Hsv, HsvVal, Hsv2Rgb;                               // colors.cpp

}  // namespace ixomep::builtins

namespace ixomep {

// The mathematical functions in the order in which their names are compared; each row's body
// takes one Number and gives a Real, its handler is null. In numbers.cpp (constant-initialised).
extern const std::array<BuiltinRow, 16> kMathRows;

}  // namespace ixomep
