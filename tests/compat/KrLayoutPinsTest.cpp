// The layouts modules compile against, pinned. A module embeds, derives from
// or calls through the virtual slots of these classes, so within 20.x their
// size, alignment and slot order never change: a failing pin here means the
// change breaks every module built before it.
#include <gtest/gtest.h>

#include <cstring>

#include "kr1st.h"

// Size and alignment of every exported class.
static_assert(sizeof(KesuAppInfo) == 80 && alignof(KesuAppInfo) == 8);
static_assert(sizeof(KesuAppRegistry) == 32 && alignof(KesuAppRegistry) == 8);
static_assert(sizeof(KrHeapOperators) == 1 && alignof(KrHeapOperators) == 1);
static_assert(sizeof(KrRfArray) == 8 && alignof(KrRfArray) == 8);
static_assert(sizeof(KrRfArrayPropertyDerivationPE) == 8 && alignof(KrRfArrayPropertyDerivationPE) == 8);
static_assert(sizeof(KrRfArrayPropertyDetailsPE) == 8 && alignof(KrRfArrayPropertyDetailsPE) == 8);
static_assert(sizeof(KrRfNumber) == 8 && alignof(KrRfNumber) == 8);
static_assert(sizeof(KrRfNumberRangeCheckPE) == 8 && alignof(KrRfNumberRangeCheckPE) == 8);
static_assert(sizeof(KrRfPointer) == 24 && alignof(KrRfPointer) == 8);
static_assert(sizeof(KrRfProperty) == 8 && alignof(KrRfProperty) == 8);
static_assert(sizeof(KrRfPropertyDerivationPE) == 8 && alignof(KrRfPropertyDerivationPE) == 8);
static_assert(sizeof(KrRfPropertyEnumPE) == 8 && alignof(KrRfPropertyEnumPE) == 8);
static_assert(sizeof(KrRfPropertyRangePE) == 8 && alignof(KrRfPropertyRangePE) == 8);
static_assert(sizeof(KrRfProxy) == 8 && alignof(KrRfProxy) == 8);
static_assert(sizeof(KrRfProxyInterfacePE) == 8 && alignof(KrRfProxyInterfacePE) == 8);
static_assert(sizeof(KrRfProxyObject) == 24 && alignof(KrRfProxyObject) == 8);
static_assert(sizeof(KrRfRangeCheckPE) == 8 && alignof(KrRfRangeCheckPE) == 8);
static_assert(sizeof(KrRfReference) == 24 && alignof(KrRfReference) == 8);
static_assert(sizeof(KrRfReflectionPE) == 8 && alignof(KrRfReflectionPE) == 8);
static_assert(sizeof(KrRfReflectionProviderPR) == 8 && alignof(KrRfReflectionProviderPR) == 8);
static_assert(sizeof(KrRfReflectionReactor) == 8 && alignof(KrRfReflectionReactor) == 8);
static_assert(sizeof(KrRfReflectionService) == 16 && alignof(KrRfReflectionService) == 8);
static_assert(sizeof(KrRfSymbol) == 8 && alignof(KrRfSymbol) == 8);
static_assert(sizeof(KrRfSymbolIterator) == 8 && alignof(KrRfSymbolIterator) == 8);
static_assert(sizeof(KrRfValue) == 8 && alignof(KrRfValue) == 8);
static_assert(sizeof(KrRxClass) == 16 && alignof(KrRxClass) == 8);
static_assert(sizeof(KrRxCopyOnWriteObject) == 16 && alignof(KrRxCopyOnWriteObject) == 8);
static_assert(sizeof(KrRxDLinkerReactor) == 8 && alignof(KrRxDLinkerReactor) == 8);
static_assert(sizeof(KrRxDLinkerReactor2) == 8 && alignof(KrRxDLinkerReactor2) == 8);
static_assert(sizeof(KrRxDictionary) == 8 && alignof(KrRxDictionary) == 8);
static_assert(sizeof(KrRxDictionaryIterator) == 8 && alignof(KrRxDictionaryIterator) == 8);
static_assert(sizeof(KrRxDynamicLinker) == 8 && alignof(KrRxDynamicLinker) == 8);
static_assert(sizeof(KrRxEvent) == 8 && alignof(KrRxEvent) == 8);
static_assert(sizeof(KrRxEventReactor) == 8 && alignof(KrRxEventReactor) == 8);
static_assert(sizeof(KrRxFormatContext) == 8 && alignof(KrRxFormatContext) == 8);
static_assert(sizeof(KrRxFormattablePE) == 8 && alignof(KrRxFormattablePE) == 8);
static_assert(sizeof(KrRxGenHand) == 128 && alignof(KrRxGenHand) == 8);
static_assert(sizeof(KrRxGenLinkedList) == 32 && alignof(KrRxGenLinkedList) == 8);
static_assert(sizeof(KrRxGenLinkedListBackwardIterator) == 16 && alignof(KrRxGenLinkedListBackwardIterator) == 8);
static_assert(sizeof(KrRxGenLinkedListForwardIterator) == 16 && alignof(KrRxGenLinkedListForwardIterator) == 8);
static_assert(sizeof(KrRxGenLinkedListIterator) == 16 && alignof(KrRxGenLinkedListIterator) == 8);
static_assert(sizeof(KrRxGenVoid) == 16 && alignof(KrRxGenVoid) == 8);
static_assert(sizeof(KrRxIterator) == 8 && alignof(KrRxIterator) == 8);
static_assert(sizeof(KrRxKernel) == 16 && alignof(KrRxKernel) == 8);
static_assert(sizeof(KrRxNumberFormat) == 8 && alignof(KrRxNumberFormat) == 8);
static_assert(sizeof(KrRxNumberFormat2) == 8 && alignof(KrRxNumberFormat2) == 8);
static_assert(sizeof(KrRxObject) == 8 && alignof(KrRxObject) == 8);
static_assert(sizeof(KrRxOverrule) == 16 && alignof(KrRxOverrule) == 8);
static_assert(sizeof(KrRxOverruleBase) == 16 && alignof(KrRxOverruleBase) == 8);
static_assert(sizeof(KrRxOverruleInternals) == 16 && alignof(KrRxOverruleInternals) == 8);
static_assert(sizeof(KrRxProtocolReactor) == 8 && alignof(KrRxProtocolReactor) == 8);
static_assert(sizeof(KrRxProtocolReactorIterator) == 8 && alignof(KrRxProtocolReactorIterator) == 8);
static_assert(sizeof(KrRxProtocolReactorList) == 8 && alignof(KrRxProtocolReactorList) == 8);
static_assert(sizeof(KrRxProtocolReactorListIterator) == 8 && alignof(KrRxProtocolReactorListIterator) == 8);
static_assert(sizeof(KrRxProtocolReactorManager) == 8 && alignof(KrRxProtocolReactorManager) == 8);
static_assert(sizeof(KrRxProtocolReactorManagerFactory) == 16 && alignof(KrRxProtocolReactorManagerFactory) == 8);
static_assert(sizeof(KrRxQueryXOverrule) == 16 && alignof(KrRxQueryXOverrule) == 8);
static_assert(sizeof(KrRxService) == 16 && alignof(KrRxService) == 8);
static_assert(sizeof(KrRxSet) == 8 && alignof(KrRxSet) == 8);
static_assert(sizeof(KrRxSymbolFilterPR) == 8 && alignof(KrRxSymbolFilterPR) == 8);
static_assert(sizeof(KrRxTextString) == 40 && alignof(KrRxTextString) == 8);
static_assert(sizeof(KrString) == 16 && alignof(KrString) == 8);
static_assert(sizeof(KrUniqueString) == 1 && alignof(KrUniqueString) == 1);
static_assert(sizeof(KrVtCurrency) == 16 && alignof(KrVtCurrency) == 8);
static_assert(sizeof(KrVtCurrencyFormattable) == 8 && alignof(KrVtCurrencyFormattable) == 8);
static_assert(sizeof(KrVtDate) == 16 && alignof(KrVtDate) == 8);
static_assert(sizeof(KrVtDateFormattable) == 8 && alignof(KrVtDateFormattable) == 8);
static_assert(sizeof(KrVtDateTime) == 16 && alignof(KrVtDateTime) == 8);
static_assert(sizeof(KrVtDateTimeFormattable) == 8 && alignof(KrVtDateTimeFormattable) == 8);
static_assert(sizeof(KrVtDaytime) == 16 && alignof(KrVtDaytime) == 8);
static_assert(sizeof(KrVtPercentage) == 16 && alignof(KrVtPercentage) == 8);
static_assert(sizeof(KrVtPercentageFormattable) == 8 && alignof(KrVtPercentageFormattable) == 8);
static_assert(sizeof(KrVtPermille) == 16 && alignof(KrVtPermille) == 8);
static_assert(sizeof(KrVtPermilleFormattable) == 8 && alignof(KrVtPermilleFormattable) == 8);
static_assert(sizeof(KrVtRatio) == 16 && alignof(KrVtRatio) == 8);
static_assert(sizeof(KrVtRatioFormattable) == 8 && alignof(KrVtRatioFormattable) == 8);
static_assert(sizeof(KrVtTime) == 16 && alignof(KrVtTime) == 8);
static_assert(sizeof(KrVtTimeFormattable) == 8 && alignof(KrVtTimeFormattable) == 8);

namespace {

// The virtual slot a member function pointer names: the Itanium C++ ABI
// (MinGW's) stores one plus the slot's byte offset in the vtable.
template <typename MemberFunction>
long slotOf(MemberFunction function) {
  static_assert(sizeof(function) == 2 * sizeof(void*), "a pointer to member function is two words");
  uintptr_t word;
  std::memcpy(&word, &function, sizeof(word));
  return word & 1 ? static_cast<long>((word - 1) / sizeof(void*)) : -1;
}

// Exposes the protected protocol lookup for its slot.
struct SlotProbe : KrRxObject {
  static long subQueryXSlot() { return slotOf(&SlotProbe::subQueryX); }
};

}  // namespace

// Slots 0 and 1 are the two destructors.
TEST(KrLayoutPinsTest, RootSlotOrder) {
  EXPECT_EQ(slotOf(&KrRxObject::isA), 2);
  EXPECT_EQ(slotOf(&KrRxObject::clone), 3);
  EXPECT_EQ(slotOf(&KrRxObject::copyFrom), 4);
  EXPECT_EQ(slotOf(&KrRxObject::isEqualTo), 5);
  EXPECT_EQ(slotOf(&KrRxObject::comparedTo), 6);
  EXPECT_EQ(SlotProbe::subQueryXSlot(), 7);
}

TEST(KrLayoutPinsTest, LinkerAndReactorSlotOrder) {
  using NarrowLookup = void* (KrRxDynamicLinker::*)(const wchar_t*, const char*) const;
  using AppsByTrigger = bool (KrRxDynamicLinker::*)(const wchar_t*);
  EXPECT_EQ(slotOf(NarrowLookup(&KrRxDynamicLinker::getSymbolAddress)), 9);
  EXPECT_EQ(slotOf(&KrRxDynamicLinker::loadModule), 11);
  EXPECT_EQ(slotOf(&KrRxDynamicLinker::registerService), 13);
  EXPECT_EQ(slotOf(&KrRxDynamicLinker::ProductKey), 26);
  EXPECT_EQ(slotOf(AppsByTrigger(&KrRxDynamicLinker::loadApps)), 30);
  EXPECT_EQ(slotOf(&KrRxDynamicLinker::sendAppMessage), 33);
  EXPECT_EQ(slotOf(&KrRxDLinkerReactor::rxAppWillBeLoaded), 8);
  EXPECT_EQ(slotOf(&KrRxDLinkerReactor::rxAppUnloadAborted), 13);
  EXPECT_EQ(slotOf(&KrRxDLinkerReactor2::rxAppCouldBeLoaded), 14);
}
