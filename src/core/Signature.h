// Parameter signatures: checking the arguments of a call, and describing a method for the help listing.
#pragma once

#include "OrvUQL/Object.h"

namespace OrvUQL::detail {

/// Evaluates and converts `args` as the letters of `signature` say and appends them to `params`, which owns them,
/// also on failure. May throw std::bad_alloc.
bool CollectArguments(QueryEngine* engine, const wchar_t* methodName, const wchar_t* signature,
                      const QueryElementList& args, ObjectList& params, IError** err);

/// "int, [int]", "[expression, ...]".
OrvStringT DescribeSignature(const wchar_t* signature);

} // namespace OrvUQL::detail
