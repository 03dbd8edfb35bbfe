#pragma once
/// @file
/// KrRxTextString: a wide text that is itself a runtime object, so that it can
/// be kept in dictionaries and compared and copied through the generic object
/// operations. It owns its text outright (no sharing); texts of up to 7 units
/// are kept inside the object without allocation.
///
/// Sizes and positions are in UTF-16 units. Despite their names, the "Ascii"
/// members work on the wide text unchanged.

#include <string>

#include "krrxobject.h"

/// A wide text that is a runtime object; short texts need no allocation.
class KR1ST_API KrRxTextString : public KrRxObject {
  KRRX_DECLARE_MEMBERS(KrRxTextString);

 public:
  KrRxTextString() = default;
  /// An empty text with room reserved for capacity units (none when negative).
  explicit KrRxTextString(int capacity);
  /// The first count units of text (all of it when count < 0 or the text is shorter).
  KrRxTextString(const wchar_t* text, int count);
  /// The first count units of other (all of it when count < 0).
  KrRxTextString(const KrRxTextString& other, int count);
  /// Copies the whole text.
  ///@{
  KrRxTextString(const KrRxTextString& other) = default;
  KrRxTextString& operator=(const KrRxTextString& other) = default;
  ///@}
  ~KrRxTextString() override;

  KrRxObject* clone() const override;
  /// eInvalidInput unless other is a KrRxTextString.
  Kesu::ErrorStatus copyFrom(const KrRxObject* other) override;
  bool isEqualTo(const KrRxObject* other) const override;
  /// kNotOrderable unless other is a KrRxTextString; else cmp.
  KrRx::Ordering comparedTo(const KrRxObject* other) const override;

  /// UTF-16 units.
  virtual unsigned int size() const;
  /// Characters: the units outside 0xDBFF..0xDFFF, so a surrogate pair counts
  /// once through its first unit, and not at all when that unit is 0xDBFF.
  virtual unsigned int len() const;
  /// Unit-wise comparison of the two texts.
  virtual KrRx::Ordering cmp(const KrRxTextString* other) const;
  /// Replaces the text by other's, or appends other's text.
  ///@{
  virtual void copy(const KrRxTextString* other);
  virtual void cat(const KrRxTextString* other);
  ///@}
  /// The unit at index, 0 past the end.
  virtual wchar_t getChar(unsigned int index) const;
  /// False when index is past the end; a zero unit cuts the text to index
  /// units, any other replaces the unit at index.
  virtual bool setChar(unsigned int index, unsigned int unit);
  /// Replaces the text (as cpyFromAscii).
  virtual KrRxTextString& operator=(const wchar_t* text);
  /// The text's own terminated buffer.
  virtual operator const wchar_t*() const;
  /// The text's own terminated buffer, as the conversion gives it.
  virtual const wchar_t* getAsciiPtr() const;
  /// Replaces the text; null empties it and gives its heap storage back.
  virtual void cpyFromAscii(const wchar_t* text);
  /// A terminated copy of the text from the C runtime heap; the caller frees it with free().
  virtual wchar_t* cpyToAscii() const;

  /// Empty the text, keeping its storage.
  void initStrData();
  /// Empty the text and give its heap storage back.
  void killStrData();

 private:
  std::wstring mText;
};
