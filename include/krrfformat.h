#pragma once
/// @file
/// Template formatting: fills a text whose placeholders "%<path>%" name
/// properties of an object, each value written through its class's
/// formattable extension; and the evaluator that reads such a path.
///
/// @code
///   wchar_t* text = nullptr;
///   krrfFormatString(L"Door %<name>%: %<width>% wide, on %<layer.name>%", door, text);
///   show(text);      // "Door D1: 900 wide, on Walls"
///   free(text);
/// @endcode

#include "krrxobject.h"

class KrRxFormatContext;

/// The longest text krrfFormatString composes, in characters; what goes
/// beyond it is cut off.
constexpr int kKrrfFormatLimit = 16384;

/// Copies text to a new block in result (the caller frees it with free()),
/// each "%<path>%" replaced by the formatted value of the property path on
/// object (with context passed to the formatter). A placeholder whose path
/// cannot be read or formatted contributes nothing; from an unmatched "%<" on
/// the text is copied unchanged. 3 for a null text or object, else 0 (result
/// untouched when the block cannot be had).
KR1ST_API Kesu::ErrorStatus krrfFormatString(const wchar_t* text, const KrRxObject* object,
                                             const KrRxFormatContext* context, wchar_t*& result);
/// The same with no format context.
KR1ST_API Kesu::ErrorStatus krrfFormatString(const wchar_t* text, const KrRxObject* object, wchar_t*& result);

/// Reads the property path expression ("width", or "layer.colour.name" where
/// every step but the last yields a KrRfProxy whose object the path goes on
/// with) on object into a new instance of the last property's valueType(),
/// which the caller owns (result is set only on success). A step's property
/// is the one of its name on the object's class or its nearest ancestor that
/// has one. With effective the value is read by krrfGetEffectiveValueForObject,
/// otherwise by getValue. 3 for a null argument, an empty step, or an earlier
/// step that yields no proxy or an empty one; 22 for an unknown property; 2
/// when the value class cannot be created; else the reading's status.
KR1ST_API Kesu::ErrorStatus krrfEvaluateString(const wchar_t* expression, const KrRxObject* object,
                                               KrRxObject*& result, bool effective);
/// The same with effective true.
KR1ST_API Kesu::ErrorStatus krrfEvaluateString(const wchar_t* expression, const KrRxObject* object,
                                               KrRxObject*& result);
