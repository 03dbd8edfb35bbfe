#pragma once
/// @file
/// Symbol filters and reflection providers: the protocol reactors through
/// which reflection asks a class's modules for help. A symbol filter may hide
/// a symbol on some objects; a reflection provider supplies the symbols of a
/// class on first request.
///
/// @code
///   class HideLocked : public KrRxSymbolFilterPR { ... };   // module's own
///   factory->createReactorManager(Door::desc())
///          ->createReactorList(KrRxSymbolFilterPR::desc())->addReactor(&hideLocked);
///   if (krrxSymbolIsApplicable(door, widthProperty, nullptr)) show(widthProperty);
/// @endcode

#include "krrfreflection.h"
#include "krrxprotocolreactor.h"

/// Only the first filter attached to each class is asked; a filter on a
/// class answers for the objects of every class derived from it.
class KR1ST_API KrRxSymbolFilterPR : public KrRxProtocolReactor {
  KRRX_DECLARE_MEMBERS(KrRxSymbolFilterPR);

 public:
  /// False to hide symbol on object; context is the caller's, passed through.
  virtual bool isSymbolApplicable(const KrRxObject* object, const KrRfSymbol* symbol,
                                  const KrRxReflectionContext* context) const = 0;
};

/// True unless the first symbol filter of object's class or of one of its
/// ancestors hides symbol; false for a null object.
KR1ST_API bool krrxSymbolIsApplicable(const KrRxObject* object, const KrRfSymbol* symbol,
                                      const KrRxReflectionContext* context);

/// Supplies the symbols of a class when the reflection service is asked for
/// them (KrRfReflectionService::requestReflectionPE) and the class has none.
class KR1ST_API KrRfReflectionProviderPR : public KrRxProtocolReactor {
  KRRX_DECLARE_MEMBERS(KrRfReflectionProviderPR);

 public:
  /// Adds cls's symbols through service->reflectionPE(cls, true), if this
  /// provider has any for cls; the next provider is asked when it had none.
  virtual void provideSymbols(KrRxClass* cls, KrRfReflectionService* service) const = 0;
};
