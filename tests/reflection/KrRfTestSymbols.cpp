#include "KrRfTestSymbols.h"

#include <cstring>

KRRX_CONS_DEFINE_MEMBERS(Animal, KrRxObject)
KRRX_CONS_DEFINE_MEMBERS(Mammal, Animal)
KRRX_CONS_DEFINE_MEMBERS(Dog, Mammal)
KRRX_CONS_DEFINE_MEMBERS(Plant, KrRxObject)

int TestSymbol::gDestroyed = 0;

GUID* krWriteTestGuid(GUID* buffer, unsigned long high, unsigned long low) {
  memset(buffer, 0, sizeof(GUID));
  buffer->Data1 = high;
  memcpy(buffer->Data4 + 4, &low, 4);
  return buffer;
}
