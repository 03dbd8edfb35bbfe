#pragma once
/// @file
/// Turning any object into text and back. A class becomes formattable when a
/// KrRxFormattablePE object is attached to it as a protocol extension; its
/// descendants inherit it. Everybody formats through the two free functions.
///
/// @code
///   wchar_t* text = nullptr;
///   if (krrxFormatObject(&value, text, nullptr) == Kesu::eOk) {
///     show(text);
///     free(text);
///   }
///   krrxParseObject(&value, L"42", nullptr);
/// @endcode

#include "krrxobject.h"

class KrRxFormatContext;

/// The formattable protocol extension: one stateless object per class.
class KR1ST_API KrRxFormattablePE : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxFormattablePE);

 public:
  ~KrRxFormattablePE() override;

  /// On success text receives a new text from malloc, freed by the caller
  /// with free(); on failure text is left as it was.
  virtual Kesu::ErrorStatus toText(const KrRxObject* object, wchar_t*& text,
                                   const KrRxFormatContext* context) = 0;
  /// On success object holds the value read from text.
  virtual Kesu::ErrorStatus fromText(KrRxObject* object, const wchar_t* text,
                                     const KrRxFormatContext* context) = 0;
};

/// The base of the formattables of values holding a T (the integer kinds).
template <typename T>
class KrRxFormattablePE_T : public KrRxFormattablePE {};

/// Writes object through its class's formattable: eInvalidInput for a null
/// object, eNotSupported when the class has none (text untouched in both
/// cases); else what the formattable answers. The context is passed through.
KR1ST_API Kesu::ErrorStatus krrxFormatObject(const KrRxObject* object, wchar_t*& text,
                                             const KrRxFormatContext* context);
/// Reads object from text the same way.
KR1ST_API Kesu::ErrorStatus krrxParseObject(KrRxObject* object, const wchar_t* text,
                                            const KrRxFormatContext* context);
