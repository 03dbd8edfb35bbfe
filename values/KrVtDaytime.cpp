#include "krvtdaytime.h"

#include <cmath>

#include "values/KrVtDayValue.h"
#include "values/KrVtValueClass.h"

KRVT_DEFINE_VALUE_MEMBERS(KrVtDaytime, KrVtFloat64)
KRVT_DEFINE_VALUE_MEMBERS(KrVtDate, KrVtDaytime)
KRVT_DEFINE_VALUE_MEMBERS(KrVtTime, KrVtDaytime)
KRVT_DEFINE_VALUE_MEMBERS(KrVtDateTime, KrVtDaytime)

namespace {
const double kRataDieEpoch = 1721424.0;
const double kLilianEpoch = 2299159.0;
}  // namespace

KrVtDaytime::KrVtDaytime(__int64 secondsSince1970) : KrRfValueT<double>(KrVtDay::fromSeconds(secondsSince1970)) {}

KrVtDaytime::KrVtDaytime(const tm& t) : KrRfValueT<double>(KrVtDay::fromTm(t)) {}

KrVtDaytime::operator __int64() const { return KrVtDay::toSeconds(mValue); }

KrVtDaytime::operator tm() const { return KrVtDay::toTm(mValue); }

Kesu::ErrorStatus KrVtDaytime::getDate(short& year, short& month, short& day) const {
  return KrVtDay::getDate(mValue, year, month, day);
}

Kesu::ErrorStatus KrVtDaytime::setDate(short year, short month, short day) {
  return KrVtDay::setDate(mValue, year, month, day);
}

Kesu::ErrorStatus KrVtDaytime::getTime(short& hour, short& minute, short& second, short& millisecond) const {
  return KrVtDay::getTime(mValue, hour, minute, second, millisecond);
}

Kesu::ErrorStatus KrVtDaytime::setTime(short hour, short minute, short second, short millisecond) {
  return KrVtDay::setTime(mValue, hour, minute, second, millisecond);
}

bool KrVtDaytime::isUniversal() const { return KrVtDay::isUniversal(mValue); }

void KrVtDaytime::getUniversalTime() { mValue = KrVtDay::fromSeconds(_time64(nullptr)); }

bool KrVtDaytime::modelToUniversal(short hours, short minutes) {
  return KrVtDay::modelToUniversal(mValue, hours, minutes);
}

bool KrVtDaytime::universalToModel(short hours, short minutes) {
  return KrVtDay::universalToModel(mValue, hours, minutes);
}

double KrVtDaytime::julianFraction() const { return std::fabs(mValue - 0.5); }

void KrVtDaytime::setJulianFraction(double j) { mValue = std::copysign(std::fabs(j) + 0.5, j); }

double KrVtDaytime::rataDieFraction() const { return std::floor(std::fabs(mValue) - kRataDieEpoch); }

void KrVtDaytime::setRataDieFraction(double r) { mValue = -std::fabs(r + kRataDieEpoch); }

double KrVtDaytime::lilianFraction() const { return std::floor(std::fabs(mValue) - kLilianEpoch); }

void KrVtDaytime::setLilianFraction(double l) { mValue = -std::fabs(l + kLilianEpoch); }

double operator-(const KrVtDaytime& a, const KrVtDaytime& b) { return KrVtDay::difference(a.value(), b.value()); }

KrVtDaytime operator+(const KrVtDaytime& v, double days) { return KrVtDay::addDays(v.value(), days); }

KrVtDaytime operator+(double days, const KrVtDaytime& v) { return KrVtDay::addDays(v.value(), days); }

KrVtDaytime operator*(const KrVtDaytime& v, double factor) { return KrVtDay::scaled(v.value(), factor); }

KrVtDaytime operator/(const KrVtDaytime& v, double factor) { return KrVtDay::divided(v.value(), factor); }
