#pragma once
// Symbols and classes for the reflection tests and the fuzz driver: a symbol
// and a property described by plain data, and a small class tree to hang
// them on. Plain code, no test framework.

#include <functional>

#include "kr1st.h"

// Data1 carries the high word, Data4 the low one: the two 64-bit halves.
GUID* krWriteTestGuid(GUID* buffer, unsigned long high, unsigned long low);

// The descriptive operations of a symbol or property of the tests, from
// plain data: its name (also shown), GUID halves and value class.
template <typename Symbol>
class TestDescribed : public Symbol {
 public:
  TestDescribed(const wchar_t* name, unsigned long guidHigh, unsigned long guidLow, KrRxClass* valueType)
      : mpName(name), mGuidHigh(guidHigh), mGuidLow(guidLow), mpValueType(valueType) {}

  KrRxClass* valueType() const override { return mpValueType; }
  GUID* getGuid(GUID* buffer) const override { return krWriteTestGuid(buffer, mGuidHigh, mGuidLow); }
  const wchar_t* displayName() const override { return mpName; }
  const wchar_t* name() const override { return mpName; }
  const wchar_t* description() const override { return nullptr; }

 private:
  const wchar_t* mpName;
  unsigned long mGuidHigh;
  unsigned long mGuidLow;
  KrRxClass* mpValueType;
};

// A symbol whose name and GUID are given; counts its destructions.
class TestSymbol : public TestDescribed<KrRfSymbol> {
 public:
  TestSymbol(const wchar_t* name, unsigned long guidHigh = 0, unsigned long guidLow = 0,
             KrRxClass* valueType = nullptr)
      : TestDescribed(name, guidHigh, guidLow, valueType) {}
  ~TestSymbol() override { ++gDestroyed; }

  static int gDestroyed;
};

// A property whose reading is a function of the object and the value.
// Properties share a GUID high word and differ by their first letter.
class TestProperty : public TestDescribed<KrRfProperty> {
 public:
  typedef std::function<Kesu::ErrorStatus(const KrRxObject*, KrRxObject*)> Reader;

  TestProperty(const wchar_t* name, KrRxClass* valueType, Reader reader = nullptr)
      : TestDescribed(name, 0x50524F50, name[0], valueType), mReader(reader) {}

  Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const override {
    return mReader ? mReader(object, value) : KrRfProperty::getValue(object, value);
  }

 private:
  Reader mReader;
};

// A three-level tree: Animal <- Mammal <- Dog, and Plant beside it,
// registered by the reflection tests' environment.
class Animal : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Animal);
};
class Mammal : public Animal {
  KRRX_DECLARE_MEMBERS(Mammal);
};
class Dog : public Mammal {
  KRRX_DECLARE_MEMBERS(Dog);
};
class Plant : public KrRxObject {
  KRRX_DECLARE_MEMBERS(Plant);
};
