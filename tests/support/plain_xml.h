// Definition texts as XML, written word for word as the format is described, without a thought of
// speed: what the converter is compared with. Also the texts of numbers in the plain way.
#pragma once

#include <cstdint>
#include <string>

#include "ixomep/parser/parser.h"

namespace ixomep::test {

// The elements of a parser. `references`: all but ASCII as numeric references, else UTF-8.
std::string PlainXml(const IxoMepParser& parser, bool references, int level = 0);

// Twelve significant digits in fixed notation, from printf; for finite numbers.
std::string PlainReal(double number);
// Tenths of a millimetre in centimetres.
std::string PlainTenths(std::int32_t tenths);
// YY:DDD:HH:MM:SS; for times below a hundred years.
std::string PlainTime(double seconds);

}  // namespace ixomep::test
