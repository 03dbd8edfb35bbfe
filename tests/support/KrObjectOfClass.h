#pragma once
// An object of whatever class a test made at run time, for classes that have
// no C++ class of their own: it stands in for their objects and, attached
// to another class, for protocol extensions of them.
//
//   KrRxClass* protocol = newKrRxClass(L"Probe", L"KrRxObject", 0, nullptr, nullptr, nullptr);
//   KrObjectOfClass extension(protocol);
//   host->addX(protocol, &extension);

#include "krrxobject.h"

class KrObjectOfClass : public KrRxObject {
 public:
  explicit KrObjectOfClass(KrRxClass* cls) : mpClass(cls) {}
  KrRxClass* isA() const override { return mpClass; }

 private:
  KrRxClass* mpClass;
};
