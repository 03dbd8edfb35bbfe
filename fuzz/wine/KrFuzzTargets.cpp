#include "KrFuzzTargets.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "KrRfTestDoor.h"
#include "kr1st.h"

namespace {

// What a formattable hands out: on eOk a new text, freed here; on a refusal
// (eInvalidInput, eOutOfMemory) no text. Ratio arithmetic may throw
// std::overflow_error, the library's one documented exception here.
const char* writeBack(const KrRxObject& object, std::wstring* written = nullptr) {
  wchar_t* text = nullptr;
  Kesu::ErrorStatus status;
  try {
    status = krrxFormatObject(&object, text, nullptr);
  } catch (const std::overflow_error&) {
    return KrVtRatio::cast(&object) && !text ? nullptr : "an overflow outside ratio arithmetic";
  }
  if (status == Kesu::eOk) {
    if (!text) return "written without a text";
    if (written) *written = text;
    free(text);
    return nullptr;
  }
  if (text) return "a refused write handed out a text";
  return status == Kesu::eInvalidInput || status == Kesu::eOutOfMemory ? nullptr : "a write answered an undefined status";
}

template <typename Value>
using ValueOf = std::decay_t<decltype(std::declval<const Value&>().value())>;

// Values the target object starts from: the day value's special states and
// ordinary numbers for the floating kinds, any bit pattern for the others.
template <typename Value>
ValueOf<Value> startValue(uint64_t choice) {
  using T = ValueOf<Value>;
  if constexpr (std::is_floating_point_v<T>) {
    const T starts[] = {0.0, -0.0, 2460000.25, -2460000.75, std::numeric_limits<T>::quiet_NaN(),
                        std::numeric_limits<T>::infinity(), 0.125, 1e300};
    return starts[choice % (sizeof starts / sizeof *starts)];
  } else {
    return static_cast<T>(choice);
  }
}

template <typename T>
bool sameBits(const T& a, const T& b) {
  return memcmp(&a, &b, sizeof a) == 0;
}

// krrxParseObject on a value object: eOk, or eInvalidInput with the value
// untouched; a value read is written back, and exact kinds read their own
// text back to the same value.
template <typename Value>
KrFuzzVerdict feedValue(const wchar_t* text, uint64_t choice) {
  using T = ValueOf<Value>;
  Value value(startValue<Value>(choice));
  const T before = value.value();
  Kesu::ErrorStatus status = krrxParseObject(&value, text, nullptr);
  if (status == Kesu::eInvalidInput)
    return {false, sameBits(value.value(), before) ? nullptr : "a refused text changed the value"};
  if (status != Kesu::eOk) return {false, "a read answered an undefined status"};
  if (!text) return {true, "a null text was read"};
  std::wstring written;
  if (const char* wrong = writeBack(value, &written)) return {true, wrong};
  if constexpr (std::is_integral_v<T>) {
    Value again(static_cast<T>(value.value() ^ 1));
    if (krrxParseObject(&again, written.c_str(), nullptr) != Kesu::eOk || again.value() != value.value())
      return {true, "a written text does not read back"};
  }
  return {true, nullptr};
}

// A text string takes any non-null text exactly and writes it back unchanged.
KrFuzzVerdict feedTextString(const wchar_t* text, uint64_t choice) {
  const wchar_t* start = choice % 2 ? L"seven u" : L"a text longer than the inline room";
  KrRxTextString string(start, -1);
  Kesu::ErrorStatus status = krrxParseObject(&string, text, nullptr);
  if (!text) return {false, status == Kesu::eInvalidInput && wcscmp(string, start) == 0 ? nullptr : "a null text was read"};
  if (status != Kesu::eOk) return {false, "a text was refused"};
  if (wcscmp(string, text) != 0) return {true, "the text read is not the text given"};
  std::wstring written;
  if (const char* wrong = writeBack(string, &written)) return {true, wrong};
  return {true, written == text ? nullptr : "the text written is not the text read"};
}

const int kConversionFlags[] = {0, 1, 4, 5, 8, 9, 12, 13};

// One number conversion: it returns, or throws the integer 0 only under
// kThrowOnFailure (an empty string only with kThrowOnEmpty too); an empty
// string gives the failure value.
template <typename R>
KrFuzzVerdict checkConversion(const KrString& string, R (KrString::*convert)(int) const, int flags) {
  const bool empty = string.isEmpty();
  const R failure = static_cast<R>(flags & KrString::kFailAllBits ? ~0ULL : 0ULL);
  R result;
  try {
    result = (string.*convert)(flags);
  } catch (int thrown) {
    if (thrown != 0) return {false, "a conversion threw another integer than 0"};
    if (!(flags & KrString::kThrowOnFailure)) return {false, "a conversion threw without kThrowOnFailure"};
    if (empty && !(flags & KrString::kThrowOnEmpty)) return {false, "an empty string threw without kThrowOnEmpty"};
    return {false, nullptr};
  }
  if (!empty) return {true, nullptr};
  if (static_cast<uint64_t>(result) != static_cast<uint64_t>(failure))
    return {true, "an empty string gave another value than the failure value"};
  const int throwOnEmpty = KrString::kThrowOnFailure | KrString::kThrowOnEmpty;
  return {true, (flags & throwOnEmpty) == throwOnEmpty ? "an empty string did not throw" : nullptr};
}

// The text as a narrow-only string: the low byte of each unit.
KrString narrowOf(const wchar_t* text) {
  if (!text) return KrString(static_cast<const char*>(nullptr));
  std::string bytes;
  for (; *text && (*text & 0xFF); ++text) bytes += static_cast<char>(*text & 0xFF);
  return KrString(bytes.c_str());
}

// Each conversion on the text as a wide-only and as a narrow-only string;
// taken when the first conversion of the wide string returned.
template <typename... R>
KrFuzzVerdict feedConversions(const wchar_t* text, uint64_t choice, R (KrString::*... convert)(int) const) {
  const int flags = kConversionFlags[choice % (sizeof kConversionFlags / sizeof *kConversionFlags)];
  KrFuzzVerdict first = {false, nullptr};
  bool firstSeen = false;
  for (const KrString& string : {KrString(text), narrowOf(text)}) {
    for (KrFuzzVerdict verdict : {checkConversion(string, convert, flags)...}) {
      if (!firstSeen) first = verdict, firstSeen = true;
      if (verdict.wrong) return verdict;
    }
  }
  return first;
}

KrFuzzVerdict feedDeciFamily(const wchar_t* text, uint64_t choice) {
  return feedConversions(text, choice, &KrString::asDeci, &KrString::asHex, &KrString::asUDeci, &KrString::asUHex,
                         &KrString::asDeci64, &KrString::asHex64, &KrString::asUDeci64, &KrString::asUHex64);
}

KrFuzzVerdict feedDbHandle(const wchar_t* text, uint64_t choice) {
  return feedConversions(text, choice, &KrString::asKrDbHandle);
}

bool isDigit(wchar_t unit) { return unit >= L'0' && unit <= L'9'; }

// A symbol name: only a..z, A..Z, 0..9 and '_', never a leading digit, and
// at most four units per unit of the text; a null text is refused untouched.
KrFuzzVerdict feedCamelCase(const wchar_t* text, uint64_t) {
  wchar_t* name = nullptr;
  Kesu::ErrorStatus status = krrfToCamelCase(text, name);
  if (!text) return {false, status == Kesu::eInvalidInput && !name ? nullptr : "a null text was converted"};
  if (status != Kesu::eOk) return {false, "a conversion answered an undefined status"};
  if (!name) return {true, "converted without a name"};
  const char* wrong = nullptr;
  size_t length = wcslen(name);
  for (size_t i = 0; i < length && !wrong; ++i) {
    const wchar_t unit = name[i];
    const bool letter = (unit >= L'a' && unit <= L'z') || (unit >= L'A' && unit <= L'Z');
    if (!letter && !isDigit(unit) && unit != L'_') wrong = "a name holds a unit other than a letter, digit or '_'";
  }
  if (!wrong && length && isDigit(name[0])) wrong = "a name begins with a digit";
  if (!wrong && length > 4 * wcslen(text) + 1) wrong = "a name is longer than its transliteration";
  free(name);
  return {true, wrong};
}

// The door that paths and templates are read on, with a frame of oak (a
// door without a frame of its own), made on first use and kept for the run.
struct FramedDoor {
  TestDoor door, frame;
  FramedDoor() {
    describeTestDoor();
    door.mpFrame = &frame;
    frame.mName = L"oak";
  }
};
const KrRxObject* fuzzDoor() {
  static FramedDoor framed;
  return &framed.door;
}

// Reading a path on the door: eOk with a new value of the last step's value
// class, or a refusal that leaves the result alone with one of the statuses
// a path, a value class or a reading can answer.
KrFuzzVerdict feedEvaluate(const wchar_t* text, uint64_t choice) {
  const KrRxObject* door = fuzzDoor();
  KrRxObject* const untouched = const_cast<KrRxObject*>(door);
  KrRxObject* value = untouched;
  Kesu::ErrorStatus status = choice % 3 == 2 ? krrfEvaluateString(text, door, value)
                                             : krrfEvaluateString(text, door, value, choice % 3 == 1);
  if (status != Kesu::eOk) {
    if (value != untouched) return {false, "a refused path set the result"};
    if (!text) return {false, status == Kesu::eInvalidInput ? nullptr : "a null text was not refused with 3"};
    const bool defined = status == Kesu::eNotApplicable || status == Kesu::eNotSupported ||
                         status == Kesu::eInvalidInput || status == Kesu::eKeyNotFound || status == Kesu::eOutOfMemory;
    return {false, defined ? nullptr : "a path answered an undefined status"};
  }
  if (!text) return {true, "a null text was read"};
  if (value == untouched || !value) return {true, "a read path gave no new value"};
  const wchar_t* last = wcsrchr(text, L'.');
  const bool sameClass = value->isA() == testDoorValueType(last ? last + 1 : text);
  delete value;
  return {true, sameClass ? nullptr : "a read value is not of the last property's value class"};
}

// Filling a template from the door: eOk with a new text of at most the
// limit, which begins with the text before the first "%<" (all of the text
// when it has none), cut at the limit.
KrFuzzVerdict feedFormat(const wchar_t* text, uint64_t choice) {
  wchar_t* filled = nullptr;
  Kesu::ErrorStatus status = choice % 2 ? krrfFormatString(text, fuzzDoor(), filled)
                                        : krrfFormatString(text, fuzzDoor(), nullptr, filled);
  if (!text) return {false, status == Kesu::eInvalidInput && !filled ? nullptr : "a null text was filled"};
  if (status != Kesu::eOk) return {false, "a template answered an undefined status"};
  if (!filled) return {true, "filled without a text"};
  const wchar_t* open = wcsstr(text, L"%<");
  const size_t literal = std::min<size_t>(open ? size_t(open - text) : wcslen(text), kKrrfFormatLimit);
  const size_t length = wcslen(filled);
  const char* wrong = length > size_t(kKrrfFormatLimit) ? "a filled text is longer than the limit"
                      : length < literal || wmemcmp(filled, text, literal) != 0
                          ? "a filled text does not begin with the template's literal head"
                          : nullptr;
  free(filled);
  return {true, wrong};
}

const std::vector<std::wstring> kIntegerSeeds = {
    L"0", L"-128", L"127", L"255", L"-32768", L"65535", L"-2147483648", L"4294967295",
    L"-9223372036854775808", L"18446744073709551615", L"18446744073709551616", L"+7", L"  42abc", L"0x1F", L"1e5", L"-"};
const std::vector<std::wstring> kFloatSeeds = {
    L"1234.500", L"-0.000", L"1.000E+10", L"*", L"\u221E", L"-\u221E", L"1e308", L"-1e-320", L"4.9e-324",
    L"nan", L"inf", L"0x1p3", L".5", L"12.34.56", L"1.#INF", L"-1.#IND"};

}  // namespace

const std::vector<KrFuzzTarget>& krfuzzTargets() {
  static const std::vector<KrFuzzTarget> targets = {
      {"KrVtBool", {L"Yes", L"No", L"yes", L"NO", L"true", L"Yes ", L"Ye", L"\u0130es"}, feedValue<KrVtBool>},
      {"KrVtInt8", kIntegerSeeds, feedValue<KrVtInt8>},
      {"KrVtUInt8", kIntegerSeeds, feedValue<KrVtUInt8>},
      {"KrVtInt16", kIntegerSeeds, feedValue<KrVtInt16>},
      {"KrVtUInt16", kIntegerSeeds, feedValue<KrVtUInt16>},
      {"KrVtInt32", kIntegerSeeds, feedValue<KrVtInt32>},
      {"KrVtUInt32", kIntegerSeeds, feedValue<KrVtUInt32>},
      {"KrVtInt64", kIntegerSeeds, feedValue<KrVtInt64>},
      {"KrVtUInt64", kIntegerSeeds, feedValue<KrVtUInt64>},
      {"KrVtFloat64", kFloatSeeds, feedValue<KrVtFloat64>},
      {"KrVtDaytime", kFloatSeeds, feedValue<KrVtDaytime>},
      {"KrVtDate",
       {L"2023-05-17", L"2023-05-17Z", L"2023", L"2023-05Z", L"2023/05/17", L"2023.5.17z", L"-4713-01-01",
        L"32767-12-31", L"2024-02-29", L"2023-02-29", L"*", L"\u221E"},
       feedValue<KrVtDate>},
      {"KrVtTime",
       {L"08:30", L"08:30:05", L"08:30:05.250", L"12:30:15.1234", L"23:59:59.9999Z", L"24:00", L"08:30Z", L"*",
        L"\u221E"},
       feedValue<KrVtTime>},
      {"KrVtDateTime",
       {L"2023-05-17T08:30:05.250Z", L"2023-05-17T08:30:05.250", L"2023", L"2023-05", L"-4713-01-01T00:00:00.000Z",
        L"32767-12-31T23:59:59.9999Z", L"*", L"\u221E"},
       feedValue<KrVtDateTime>},
      {"KrVtRatio",
       {L"1 : 2", L"3", L"3 : 4", L"0.75", L"-9223372036854775808 : 18446744073709551615", L"1 : 0", L"0 : 0",
        L"1e308", L"-1e-300", L"*", L"\u221E"},
       feedValue<KrVtRatio>},
      {"KrVtPercentage", {L"13%", L"13", L"-2147483648%", L"2147483647%", L"12.5%", L"%"}, feedValue<KrVtPercentage>},
      {"KrVtPermille", {L"125\u2030", L"125", L"-2147483648\u2030", L"4294967296\u2030", L"\u2030"},
       feedValue<KrVtPermille>},
      {"KrVtCurrency", {L"12.34", L"-0.01", L"1e15", L"*", L"\u221E", L"-\u221E", L"1e308"}, feedValue<KrVtCurrency>},
      {"KrRxTextString", {L"", L"short", L"seven u", L"a longer text than seven units", L"caf\u00E9", L"\U0001F600"},
       feedTextString},
      {"KrString.asDeci",
       {L"42", L"-2147483648", L"4294967295", L"ffffffff", L"0x7fffffffffffffff", L"-1", L"  12 ", L"", L"x",
        L"18446744073709551616", L"1a", L"-0x80000000"},
       feedDeciFamily},
      {"KrString.asKrDbHandle",
       {L"0", L"1A2B3C4D5E6F7081", L"ffffffffffffffff", L"10000000000000000", L"12G4", L"", L"abcdef", L" 1"},
       feedDbHandle},
      {"krrfToCamelCase",
       {L"Hello World", L"Gr\u00F6\u00DFte H\u00F6he", L"\u00C9lan vital", L"2nd value", L"_private", L"a_b c",
        L"\u0141\u00F3d\u017A \u0160\u010D\u0159", L"x\u00C6\u00DE\u0152\u01C4\u01C9", L" -!?. ", L"42",
        L"\u4E2D\u6587 text", L"\U0001F600 smile"},
       feedCamelCase},
      {"krrfEvaluateString",
       {L"width", L"name", L"frame.name", L"frame.frame.width", L"a.b.c", L"frame..width", L".", L"unreadable",
        L"abstract", L"width.name", L"frame.", L"count"},
       feedEvaluate},
      {"krrfFormatString",
       {L"Width: %<width>%", L"%<", L"%<a.b.c>%", L"%<width>%%<height>%", L"%<name>% door, %<count>% hinges",
        L"frame of %<frame.name>%", L"[%<frame.frame.width>%][%<unreadable>%][%<abstract>%]", L"100 >% and %",
        L"%<>%", L"a %<name>% b %<width c"},
       feedFormat},
  };
  return targets;
}
