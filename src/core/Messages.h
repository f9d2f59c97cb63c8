// Every message of the library, in one list. The texts are part of the library's interface and stay as they are,
// "occured", the capitals of "Integer Underflow" and the lone %2 of the signature error included.
#pragma once

namespace OrvUQL::message {

// Calls.
inline constexpr const wchar_t* notAMethod = L"Identifier '%1' is not a method of '%2'";
inline constexpr const wchar_t* notStatic =
    L"Unable to call non-static method '%1' of class '%2' without a class instance";
inline constexpr const wchar_t* tooManyParameters = L"Too many parameters specified for method %1. It expects only %2";
inline constexpr const wchar_t* parameterNotOptional = L"Parameter %1 of method '%2' is not optional";
inline constexpr const wchar_t* badSignature = L"Internal error in method %2";
inline constexpr const wchar_t* invalidUse = L"Invalid use of '%1' in the current context at position %2";

// Conversions.
inline constexpr const wchar_t* cannotConvertString = L"Cannot convert string '%1' to %2";
inline constexpr const wchar_t* cannotConvertToNumber = L"Cannot convert string '%1' to a number";
inline constexpr const wchar_t* intOverflow =
    L"Data overflow occured while converting a floating point number %1 to integer";
inline constexpr const wchar_t* nullToInt = L"Cannot convert the object 'null' to type 'Int'";
inline constexpr const wchar_t* nullToDouble = L"Cannot convert the object 'null' to type 'Double'";
inline constexpr const wchar_t* nullToNumeric = L"Cannot convert the object 'null' to a numeric type";
inline constexpr const wchar_t* objectToVariant = L"Unable to convert object '%1' to 'VARIANT' data type";
inline constexpr const wchar_t* unsupportedVariant = L"Unable to convert unsupported VARIANT data type: %1";
inline constexpr const wchar_t* valueToUnit = L"Cannot convert value '%1' of type '%2' to type 'Unit'";
inline constexpr const wchar_t* unitToCategory = L"Cannot convert unit '%1' of category '%2' to category '%3'";

// Methods and functions.
inline constexpr const wchar_t* badRadix = L"The radix must be between 2 and 36";
inline constexpr const wchar_t* badRoundingPrecision = L"Rounding precision must be between 0 and 15";
inline constexpr const wchar_t* invalidUnitName = L"Invalid unit name '%1'";
inline constexpr const wchar_t* emptyCharCode = L"Non-empty string is required for CharCode";
inline constexpr const wchar_t* wrongNumberOfParameters = L"Wrong number of parameters";
inline constexpr const wchar_t* notAnArray = L"The parameter must be an array";
inline constexpr const wchar_t* negativeSquareRoot = L"Negative value for square root: %1";
inline constexpr const wchar_t* invalidArgument = L"Invalid argument for function '%1': %2";
inline constexpr const wchar_t* internalErrorInMethod = L"Internal error in method '%1'";
inline constexpr const wchar_t* invalidNumberOfParameters = L"Invalid number of parameters";
inline constexpr const wchar_t* invalidCharacterCode = L"Invalid character code: %1";

// Limits of an evaluation; the insert is "steps", "memory" or "time".
inline constexpr const wchar_t* limitExceeded = L"Evaluation limit exceeded: %1";
inline constexpr const wchar_t* cancelled = L"Evaluation cancelled";

// Operators and comparison.
inline constexpr const wchar_t* cannotCompare =
    L"Cannot compare object '%1' to object '%2'. Incompatible types for this operation";
inline constexpr const wchar_t* unitPowers = L"Incompatible unit powers of the operands: '%1' and '%2'";
inline constexpr const wchar_t* integerOverflow = L"Integer overflow";
inline constexpr const wchar_t* integerUnderflow = L"Integer Underflow";
inline constexpr const wchar_t* divisionByZero = L"Division By Zero";
inline constexpr const wchar_t* internalError = L"Internal error";

// Automation objects.
inline constexpr const wchar_t* notAProperty = L"'%1' is not a property of object '%2'";
inline constexpr const wchar_t* propertyFailed =
    L"Failed to invoke the method '%1' of object '%2'. COM method returned error code %3";
inline constexpr const wchar_t* enumerationFailed =
    L"Failed to invoke the _NewEnum method of the object '%1'. COM method returned error code %2";

// Parsing.
inline constexpr const wchar_t* parseError = L"Error parsing query: %1 at position %2";
inline constexpr const wchar_t* unexpectedEnd = L"Unexpected end of line";
inline constexpr const wchar_t* unexpectedToken = L"Unexpected token '%1'";
inline constexpr const wchar_t* colonExpected = L"':' expected";
inline constexpr const wchar_t* bracketExpected = L"Closing ']' expected";
inline constexpr const wchar_t* parenthesisExpected = L"Closing parenthesis expected";
inline constexpr const wchar_t* braceExpected = L"Closing '}' expected";
inline constexpr const wchar_t* unitValueExpected = L"Unit numeric value expected";
inline constexpr const wchar_t* unitNameExpected = L"Unit name expected";
inline constexpr const wchar_t* unknownUnit = L"Unknown unit name '%1'";
inline constexpr const wchar_t* unterminatedString = L"Unterminated string constant";

} // namespace OrvUQL::message
