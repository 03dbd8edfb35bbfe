#pragma once
// Symbols and classes for the reflection tests and the fuzz driver: a symbol
// and a property described by plain data, and a small class tree to hang
// them on. Plain code, no test framework.

#include <functional>

#include "kr1st.h"

// A symbol whose name and GUID are given; counts its destructions.
class TestSymbol : public KrRfSymbol {
 public:
  TestSymbol(const wchar_t* name, unsigned long guidHigh = 0, unsigned long guidLow = 0,
             KrRxClass* valueType = nullptr);
  ~TestSymbol() override { ++gDestroyed; }

  KrRxClass* valueType() const override { return mpValueType; }
  GUID* getGuid(GUID* buffer) const override;
  const wchar_t* displayName() const override { return mpName; }
  const wchar_t* name() const override { return mpName; }
  const wchar_t* description() const override { return nullptr; }

  static int gDestroyed;

 private:
  const wchar_t* mpName;
  unsigned long mGuidHigh;
  unsigned long mGuidLow;
  KrRxClass* mpValueType;
};

// A property whose reading is a function of the object and the value.
class TestProperty : public KrRfProperty {
 public:
  typedef std::function<Kesu::ErrorStatus(const KrRxObject*, KrRxObject*)> Reader;

  TestProperty(const wchar_t* name, KrRxClass* valueType, Reader reader = nullptr);

  KrRxClass* valueType() const override { return mpValueType; }
  GUID* getGuid(GUID* buffer) const override;
  const wchar_t* displayName() const override { return mpName; }
  const wchar_t* name() const override { return mpName; }
  const wchar_t* description() const override { return nullptr; }
  Kesu::ErrorStatus getValue(const KrRxObject* object, KrRxObject* value) const override;

 private:
  const wchar_t* mpName;
  KrRxClass* mpValueType;
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
