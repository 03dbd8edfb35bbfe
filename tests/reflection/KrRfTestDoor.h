#pragma once
// A door described to the reflection service, for the tests and the fuzz
// driver that read property paths and fill templates. Plain code, no test
// framework: both kinds of program link it.
//
//   describeTestDoor();
//   TestDoor front;
//   krrfFormatString(L"%<name>%: %<width>% wide", &front, text);

#include <string>

#include "kr1st.h"

// A door with numbers of several value classes, a name and a frame (another
// door, read through a pointer property).
class TestDoor : public KrRxObject {
  KRRX_DECLARE_MEMBERS(TestDoor);

 public:
  double mWidth = 5.0;
  double mInstalled = 2460082.0;  // 2023-05-17 as a day value
  double mSlope = 0.75;
  double mShare = 0.125;
  double mPrice = 1234.5;
  int mCount = 3;
  std::wstring mName = L"front";
  TestDoor* mpFrame = nullptr;
};

// Registers TestDoor and adds its properties: width (KrVtFloat64), count
// (KrVtInt32), name (KrRxTextString), frame (KrRxObjectPointer), installed
// (KrVtDate), slope (KrVtRatio), share (KrVtPercentage), price
// (KrVtCurrency), and three that yield no text: unreadable (no reading),
// abstract (a value class that cannot be created) and plain (a value class
// without a formattable). Later calls do nothing.
void describeTestDoor();

// The value class of the door's property of that name, or null when there is none.
KrRxClass* testDoorValueType(const wchar_t* name);
