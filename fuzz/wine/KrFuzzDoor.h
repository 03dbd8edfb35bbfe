#pragma once
// The reflected object that the template and path targets read: a door with
// a number, a count, a text, a frame (another door, reached through a proxy
// step) and two properties that cannot be read, made once and kept for the
// whole run.
//
//   KrRxObject* value = nullptr;
//   krrfEvaluateString(L"frame.width", krfuzzDoor(), value);   // the frame's width

#include "kr1st.h"

// The door, whose frame has no frame of its own; made and described on the
// first call.
const KrRxObject* krfuzzDoor();
// The value class of the door's property of that name, or null when the
// door has none.
KrRxClass* krfuzzDoorValueType(const wchar_t* name);
