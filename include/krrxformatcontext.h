#pragma once
/// @file
/// Contexts through which a host steers how objects are written as text.
/// The library declares these interfaces and passes contexts along untouched;
/// the host implements them (a context hands out the number format to use).
///
/// @code
///   class HostContext : public KrRxFormatContext {
///     KrRxNumberFormat* numberFormat() const override { return mpFormat; }
///     ...
///   };
///   krrxFormatObject(&value, text, &hostContext);
/// @endcode

#include "krrxobject.h"

class KrRxNumberFormat;

/// What a formatting call may consult: the number format in force.
class KR1ST_API KrRxFormatContext : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxFormatContext);

 public:
  ~KrRxFormatContext() override;

  /// The number format for this context; null means the plain C forms.
  virtual KrRxNumberFormat* numberFormat() const = 0;
};

/// How numbers are written and read: decimals, separators and sign. The
/// texts that the format operations hand out come from malloc; the caller
/// frees them with free().
class KR1ST_API KrRxNumberFormat : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxNumberFormat);

 public:
  ~KrRxNumberFormat() override;

  /// Writes value with the given number of decimals into a new text.
  virtual Kesu::ErrorStatus formatDouble(double value, int decimals, wchar_t*& text) const = 0;
  /// Reads a double written in this format; eInvalidInput when the text does not scan.
  virtual Kesu::ErrorStatus parseDouble(const wchar_t* text, double& value) const = 0;
  /// Writes a signed integer into a new text.
  virtual Kesu::ErrorStatus formatInteger(__int64 value, wchar_t*& text) const = 0;
  /// Reads a signed integer written in this format.
  virtual Kesu::ErrorStatus parseInteger(const wchar_t* text, __int64& value) const = 0;
  /// The character between the whole and the fractional part.
  virtual wchar_t decimalSeparator() const = 0;
  /// The character between groups of digits (0 for none).
  virtual wchar_t groupSeparator() const = 0;
};

/// A number format that also knows unsigned numbers, the sign and grouping.
class KR1ST_API KrRxNumberFormat2 : public KrRxNumberFormat {
  KRRX_DECLARE_MEMBERS(KrRxNumberFormat2);

 public:
  ~KrRxNumberFormat2() override;

  /// Writes an unsigned integer into a new text.
  virtual Kesu::ErrorStatus formatUnsigned(unsigned __int64 value, wchar_t*& text) const = 0;
  /// Reads an unsigned integer written in this format.
  virtual Kesu::ErrorStatus parseUnsigned(const wchar_t* text, unsigned __int64& value) const = 0;
  /// The character that marks a negative number.
  virtual wchar_t negativeSign() const = 0;
  /// True when digits are grouped with groupSeparator().
  virtual bool useGrouping() const = 0;
};
