#pragma once
// The reflection extension of one class: its own symbols in a sorted
// dictionary that admits only symbols.

#include "krrfreflection.h"
#include "runtime/KrRxImpDictionary.h"

class KR1ST_API KrRfImpReflectionPE : public KrRfReflectionPE {
  KRRX_DECLARE_MEMBERS(KrRfImpReflectionPE);

 public:
  explicit KrRfImpReflectionPE(KrRxClass* ownerClass);

  KrRxClass* ownerClass() const override;
  Kesu::ErrorStatus addSymbol(KrRfSymbol* symbol) override;
  Kesu::ErrorStatus removeSymbol(KrRfSymbol* symbol) override;
  KrRfSymbolIterator* newSymbolIterator(const KrRxClass* cls) const override;
  KrRfSymbol* findSymbol(const wchar_t* name) const override;
  KrRfSymbol* symbolAt(const wchar_t* name) const override;
  using KrRfReflectionPE::symbolAt;

  // The symbols in insertion order.
  const KrRxImpDictionary& symbols() const { return mSymbols; }

  // cls's own extension (not an inherited one), or null.
  static KrRfReflectionPE* ownExtensionOf(const KrRxClass* cls);
  // The extension cls answers for reflection: its own or its nearest ancestor's; or null.
  static KrRfReflectionPE* extensionOf(const KrRxClass* cls);

 private:
  KrRxClass* mpOwnerClass;
  KrRxImpDictionary mSymbols;

  friend struct KrRfImpReflectionPELayout;
};
