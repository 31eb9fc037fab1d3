#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

class NSNumber;
class PropertyListObject;

// Numbers of a property list as what a decoder asks for. Values of another kind throw NSException
// (NSInvalidUnarchiveOperationException), integers that do not fit NSRangeException; both name the
// key.

/// A number of any kind as an integer from `low` to `high`; reals are truncated toward zero.
int64_t integerFromPropertyList(const PropertyListObject& value, std::string_view key, int64_t low,
                                int64_t high);
/// Any number but 0 is true.
bool boolFromPropertyList(const PropertyListObject& value, std::string_view key);
double doubleFromPropertyList(const PropertyListObject& value, std::string_view key);

/// The number as an object of the kind that is stored; null for values that are no numbers.
std::shared_ptr<NSNumber> numberFromPropertyList(const PropertyListObject& value);

/// Throws NSException: the value under `key` is not `wanted`.
[[noreturn]] void throwWrongKind(std::string_view key, const char* wanted);
