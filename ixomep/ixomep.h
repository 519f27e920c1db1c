// Everything public: an application includes this one header. The classes stand in the global
// namespace under their own names; what the library adds beside them stands in ixomep.
//
//   values      IxoMepValue, IxoMepObject, IxoMepStringAddressMap, IxoMepError
//   expressions IxoMepExpressionParser, IxoMepValueSet, IxoMepExprNode
//   texts       IxoMepParser, IxoMepElement, IxoMepAttribute, IxoMepConverter
//   messages    IxoMessage, IxoMessagePort, IxoMessagePortManager
//   the host    IxoHost, and the names that stand for the host's libraries (String, Color, ...)
//
// Failures are return codes (IxoMepErrorEnum) with a text beside them; nothing is thrown across
// this interface. One thread at a time.
#pragma once

#include "ixomep/export.h"
#include "ixomep/expr/error_place.h"
#include "ixomep/expr/expression_parser.h"
#include "ixomep/expr/node.h"
#include "ixomep/expr/node_type.h"
#include "ixomep/expr/value_set.h"
#include "ixomep/expr/value_set_pool.h"
#include "ixomep/host/assertion.h"
#include "ixomep/host/cipher.h"
#include "ixomep/host/clock.h"
#include "ixomep/host/color.h"
#include "ixomep/host/core_time.h"
#include "ixomep/host/encodings.h"
#include "ixomep/host/files.h"
#include "ixomep/host/host.h"
#include "ixomep/host/international.h"
#include "ixomep/host/limits.h"
#include "ixomep/host/memory_budget.h"
#include "ixomep/host/numbers.h"
#include "ixomep/host/reg_ex.h"
#include "ixomep/host/res_id.h"
#include "ixomep/host/string.h"
#include "ixomep/host/windowing.h"
#include "ixomep/messages/message.h"
#include "ixomep/messages/message_port.h"
#include "ixomep/messages/message_port_manager.h"
#include "ixomep/parser/converter.h"
#include "ixomep/parser/element.h"
#include "ixomep/parser/parser.h"
#include "ixomep/parser/protected_text.h"
#include "ixomep/values/error.h"
#include "ixomep/values/error_code.h"
#include "ixomep/values/object.h"
#include "ixomep/values/string_address_map.h"
#include "ixomep/values/value.h"
#include "ixomep/values/value_type.h"
