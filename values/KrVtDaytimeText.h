#pragma once
// The text forms of dates, times and date-times, on the day value itself.
// Writing: "*" for the unset value, U+221E for +infinity, else the kind's
// format printed by the C runtime. Reading: the same two special texts, else
// the kind's scan format as the C runtime's swscanf reads it (date-times by a
// scanner of our own that reads exactly what that scan reads). Texts are wide and
// written into new CRT heap blocks that the caller frees with free().

#include "krerrorstatus.h"
#include "krexport.h"

namespace KrVtDaytimeText {

// "2023-05-17T08:30:05.250Z", with the Z also for model time.
KR1ST_API Kesu::ErrorStatus dateTimeToText(double v, wchar_t*& text);
// "2023-05-17Z" in universal time, "2023-05-17" in model time.
KR1ST_API Kesu::ErrorStatus dateToText(double v, wchar_t*& text);
// "08:30", "08:30:05" or "08:30:05.250", each with a Z in universal time.
KR1ST_API Kesu::ErrorStatus timeToText(double v, wchar_t*& text);

// Reads into v, which keeps its universal flag (and stays unset when unset).
KR1ST_API Kesu::ErrorStatus dateTimeFromText(double& v, const wchar_t* text);
// Reads a fresh model-time date; a Z or z after the last number read makes it universal.
KR1ST_API Kesu::ErrorStatus dateFromText(double& v, const wchar_t* text);
// Reads a fresh model-time time of day; a Z or z after the last number read makes it universal.
KR1ST_API Kesu::ErrorStatus timeFromText(double& v, const wchar_t* text);

}  // namespace KrVtDaytimeText
