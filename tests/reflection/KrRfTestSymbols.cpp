#include "KrRfTestSymbols.h"

#include <cstring>

KRRX_CONS_DEFINE_MEMBERS(Animal, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(Mammal, Animal)
KRRX_CONS_DEFINE_MEMBERS(Dog, Mammal)
KRRX_CONS_DEFINE_MEMBERS(Plant, KrRxObject)

int TestSymbol::gDestroyed = 0;

namespace {

// Data1 carries the high word, Data4 the low one: the two 64-bit halves.
GUID* writeGuid(GUID* buffer, unsigned long high, unsigned long low) {
  memset(buffer, 0, sizeof(GUID));
  buffer->Data1 = high;
  memcpy(buffer->Data4 + 4, &low, 4);
  return buffer;
}

}  // namespace

TestSymbol::TestSymbol(const wchar_t* name, unsigned long guidHigh, unsigned long guidLow, KrRxClass* valueType)
    : mpName(name), mGuidHigh(guidHigh), mGuidLow(guidLow), mpValueType(valueType) {}

GUID* TestSymbol::getGuid(GUID* buffer) const { return writeGuid(buffer, mGuidHigh, mGuidLow); }

TestProperty::TestProperty(const wchar_t* name, KrRxClass* valueType, Reader reader)
    : mpName(name), mpValueType(valueType), mReader(reader) {}

// Properties share a high word and differ by their first letter.
GUID* TestProperty::getGuid(GUID* buffer) const { return writeGuid(buffer, 0x50524F50, mpName[0]); }

Kesu::ErrorStatus TestProperty::getValue(const KrRxObject* object, KrRxObject* value) const {
  return mReader ? mReader(object, value) : KrRfProperty::getValue(object, value);
}
