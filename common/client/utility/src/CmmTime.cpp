#include "common/client/utility/src/CmmTime.h"

#include <windows.h>

#include <bit>
#include <cwchar>

#include "common/client/utility/src/CmmWrappingMath.h"

namespace Cmm {

namespace {

constexpr int64_t kSecondsPerMinute = 60;
constexpr int64_t kSecondsPerHour = 3600;
constexpr int64_t kSecondsPerDay = 86400;

constexpr int64_t kInvalid = -1;
constexpr int64_t kFileTimePerSecond = 10000000;
constexpr int64_t kFileTimeOf1970 = 116444736000000000;
constexpr int64_t kSecondsFrom1601To1970 = 11644473600;

enum class Zone { kUtc, kLocal };

Zone ZoneFrom(int local) {
  return local != 0 ? Zone::kLocal : Zone::kUtc;
}

int64_t SecondsOf(struct tm& fields, Zone zone) {
  return zone == Zone::kLocal ? mktime(&fields) : _mkgmtime(&fields);
}

int64_t SecondsOf(int year, int month, int day, int hour, int minute, int second, int dst, Zone zone) {
  if (day < 1 || day > 31 || month < 1 || month > 12 || year < 1970) return kInvalid;
  struct tm fields = {};
  fields.tm_year = year - 1900;
  fields.tm_mon = month - 1;
  fields.tm_mday = day;
  fields.tm_hour = hour;
  fields.tm_min = minute;
  fields.tm_sec = second;
  fields.tm_isdst = dst;
  return SecondsOf(fields, zone);
}

int64_t SecondsOf(const FILETIME& fileTime) {
  const int64_t since1970 =
      internal::WrappingSubtract(std::bit_cast<int64_t>(fileTime), kFileTimeOf1970) / kFileTimePerSecond;
  return static_cast<uint32_t>(since1970);
}

int64_t SecondsOf(const SYSTEMTIME& t, int dst, Zone zone) {
  if (zone == Zone::kLocal)
    return SecondsOf(t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond, dst, zone);
  FILETIME fileTime;
  return SystemTimeToFileTime(&t, &fileTime) ? SecondsOf(fileTime) : kInvalid;
}

// The runtime's own fields of this thread, good until its next conversion; null when there are none.
const struct tm* FieldsOf(int64_t seconds, Zone zone) {
  const time_t moment = seconds;
  return zone == Zone::kLocal ? localtime(&moment) : gmtime(&moment);
}

SYSTEMTIME SystemTimeOf(const struct tm& fields) {
  SYSTEMTIME t = {};
  t.wYear = static_cast<WORD>(fields.tm_year + 1900);
  t.wMonth = static_cast<WORD>(fields.tm_mon + 1);
  t.wDayOfWeek = static_cast<WORD>(fields.tm_wday);
  t.wDay = static_cast<WORD>(fields.tm_mday);
  t.wHour = static_cast<WORD>(fields.tm_hour);
  t.wMinute = static_cast<WORD>(fields.tm_min);
  t.wSecond = static_cast<WORD>(fields.tm_sec);
  return t;
}

int DayOfYear(const SYSTEMTIME& t) {
  constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const bool isLeapYear = t.wYear % 4 == 0 && (t.wYear % 100 != 0 || t.wYear % 400 == 0);
  return kDaysBefore[t.wMonth - 1] + t.wDay - 1 + (isLeapYear && t.wMonth > 2 ? 1 : 0);
}

struct tm FieldsOf(const SYSTEMTIME& t) {
  struct tm fields = {};
  fields.tm_year = t.wYear - 1900;
  fields.tm_mon = t.wMonth - 1;
  fields.tm_mday = t.wDay;
  fields.tm_hour = t.wHour;
  fields.tm_min = t.wMinute;
  fields.tm_sec = t.wSecond;
  fields.tm_wday = t.wDayOfWeek;
  fields.tm_yday = DayOfYear(t);
  fields.tm_isdst = -1;
  return fields;
}

int LocalField(int64_t seconds, int tm::*field, int base = 0) {
  const struct tm* fields = FieldsOf(seconds, Zone::kLocal);
  return fields != nullptr ? fields->*field + base : 0;
}

void GetFields(int64_t seconds, Zone zone, struct tm& fields) {
  if (const struct tm* found = FieldsOf(seconds, zone)) fields = *found;
}

void GetFields(int64_t seconds, Zone zone, SYSTEMTIME& fields) {
  if (const struct tm* found = FieldsOf(seconds, zone)) fields = SystemTimeOf(*found);
}

// The format is the caller's own, and strftime takes nothing that it could be checked against.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
size_t FormatFields(int64_t seconds, Zone zone, char* buffer, size_t size, const char* format) {
  const struct tm* fields = FieldsOf(seconds, zone);
  return fields != nullptr ? strftime(buffer, size, format, fields) : 0;
}
#pragma GCC diagnostic pop

size_t FormatFields(int64_t seconds, Zone zone, wchar_t* buffer, size_t size, const wchar_t* format) {
  const struct tm* fields = FieldsOf(seconds, zone);
  return fields != nullptr ? wcsftime(buffer, size, format, fields) : 0;
}

}  // namespace

// ---- CSeconds ----------------------------------------------------------------------------------------

CSeconds::CSeconds(int64_t seconds) : m_seconds(seconds) {}

CSeconds::CSeconds(int days, int hours, int minutes, int seconds)
    : m_seconds(days * kSecondsPerDay + hours * kSecondsPerHour + minutes * kSecondsPerMinute + seconds) {}

CSeconds::CSeconds(const CSeconds& other) = default;

CSeconds& CSeconds::operator=(const CSeconds& other) = default;

CSeconds& CSeconds::operator=(int64_t seconds) {
  m_seconds = seconds;
  return *this;
}

int64_t CSeconds::GetDays() const {
  return m_seconds / kSecondsPerDay;
}

int64_t CSeconds::GetHours() const {
  return m_seconds / kSecondsPerHour;
}

int64_t CSeconds::GetMinutes() const {
  return m_seconds / kSecondsPerMinute;
}

int64_t CSeconds::GetSeconds() const {
  return m_seconds;
}

int CSeconds::GetHourOfDay() const {
  return static_cast<int>(GetHours() % 24);
}

int CSeconds::GetMinuteOfHour() const {
  return static_cast<int>(GetMinutes() % 60);
}

int CSeconds::GetSecondOfMinute() const {
  return static_cast<int>(GetSeconds() % 60);
}

CSeconds CSeconds::operator+(const CSeconds& other) const {
  return internal::WrappingAdd(m_seconds, other.m_seconds);
}

CSeconds CSeconds::operator-(const CSeconds& other) const {
  return internal::WrappingSubtract(m_seconds, other.m_seconds);
}

CSeconds& CSeconds::operator+=(const CSeconds& other) {
  return *this = *this + other;
}

CSeconds& CSeconds::operator-=(const CSeconds& other) {
  return *this = *this - other;
}

int CSeconds::operator==(const CSeconds& other) const {
  return m_seconds == other.m_seconds;
}

int CSeconds::operator!=(const CSeconds& other) const {
  return m_seconds != other.m_seconds;
}

int CSeconds::operator<(const CSeconds& other) const {
  return m_seconds < other.m_seconds;
}

int CSeconds::operator<=(const CSeconds& other) const {
  return m_seconds <= other.m_seconds;
}

int CSeconds::operator>(const CSeconds& other) const {
  return m_seconds > other.m_seconds;
}

int CSeconds::operator>=(const CSeconds& other) const {
  return m_seconds >= other.m_seconds;
}

// ---- CTime -------------------------------------------------------------------------------------------

int64_t CTime::GetTickCount() {
  return time(nullptr);
}

int64_t CTime::GetCurrentGmtTime() {
  return time(nullptr);
}

void CTime::ResetTimeZone() {
  _tzset();
}

CTime::CTime(int64_t seconds) : m_seconds(seconds) {}

CTime::CTime(const CTime& other) = default;

CTime& CTime::operator=(const CTime& other) = default;

CTime& CTime::operator=(int64_t seconds) {
  m_seconds = seconds;
  return *this;
}

CTime::CTime(struct tm& fields, int local) : m_seconds(SecondsOf(fields, ZoneFrom(local))) {}

CTime::CTime(int year, int month, int day, int hour, int minute, int second, int dst, int local)
    : m_seconds(SecondsOf(year, month, day, hour, minute, second, dst, ZoneFrom(local))) {}

CTime::CTime(const SYSTEMTIME& fields, int local, int dst)
    : m_seconds(SecondsOf(fields, dst, ZoneFrom(local))) {}

CTime::CTime(const FILETIME& fileTime) : m_seconds(SecondsOf(fileTime)) {}

CTime::CTime(unsigned short, unsigned short, int) : m_seconds(kInvalid) {}

bool CTime::IsValid() const {
  return m_seconds != kInvalid;
}

int64_t CTime::GetTime() const {
  return m_seconds;
}

CTime::operator int64_t() const {
  return m_seconds;
}

void CTime::GetGmtTm(struct tm& fields) const {
  GetFields(m_seconds, Zone::kUtc, fields);
}

void CTime::GetLocalTm(struct tm& fields) const {
  GetFields(m_seconds, Zone::kLocal, fields);
}

void CTime::GetAsSystemTime(SYSTEMTIME& fields) const {
  GetFields(m_seconds, Zone::kUtc, fields);
}

void CTime::GetAsLocalTime(SYSTEMTIME& fields) const {
  GetFields(m_seconds, Zone::kLocal, fields);
}

bool CTime::GetlocalTm2(struct tm& fields) const {
  const struct tm* utc = FieldsOf(m_seconds, Zone::kUtc);
  if (utc == nullptr) return false;
  const SYSTEMTIME utcFields = SystemTimeOf(*utc);
  SYSTEMTIME localFields;
  if (!SystemTimeToTzSpecificLocalTime(nullptr, &utcFields, &localFields)) return false;
  fields = FieldsOf(localFields);
  return true;
}

void CTime::GetAsFileTime(FILETIME& fileTime) const {
  const int64_t low = static_cast<int32_t>(m_seconds);
  fileTime = std::bit_cast<FILETIME>((low + kSecondsFrom1601To1970) * kFileTimePerSecond);
}

int CTime::GetYear() const {
  return LocalField(m_seconds, &tm::tm_year, 1900);
}

int CTime::GetMonth() const {
  return LocalField(m_seconds, &tm::tm_mon, 1);
}

int CTime::GetDay() const {
  return LocalField(m_seconds, &tm::tm_mday);
}

int CTime::GetHour() const {
  return LocalField(m_seconds, &tm::tm_hour);
}

int CTime::GetMinute() const {
  return LocalField(m_seconds, &tm::tm_min);
}

int CTime::GetSecond() const {
  return LocalField(m_seconds, &tm::tm_sec);
}

int CTime::GetDayOfWeek() const {
  return LocalField(m_seconds, &tm::tm_wday, 1);
}

size_t CTime::Format(char* buffer, size_t size, const char* format) const {
  return FormatFields(m_seconds, Zone::kLocal, buffer, size, format);
}

size_t CTime::Format(wchar_t* buffer, size_t size, const wchar_t* format) const {
  return FormatFields(m_seconds, Zone::kLocal, buffer, size, format);
}

size_t CTime::FormatGmt(char* buffer, size_t size, const char* format) const {
  return FormatFields(m_seconds, Zone::kUtc, buffer, size, format);
}

size_t CTime::FormatGmt(wchar_t* buffer, size_t size, const wchar_t* format) const {
  return FormatFields(m_seconds, Zone::kUtc, buffer, size, format);
}

// ---- CClock ------------------------------------------------------------------------------------------

static_assert(CLOCKS_PER_SEC == 1000);

CClock::CClock() : m_start(clock()) {}

void CClock::Reset() {
  m_start = clock();
}

CClock::operator long() const {
  return m_start;
}

long CClock::Elapse() const {
  return static_cast<long>(static_cast<unsigned long>(clock()) - static_cast<unsigned long>(m_start));
}

long CClock::StepUp() {
  const long elapsed = Elapse();
  m_start = static_cast<long>(static_cast<unsigned long>(m_start) + static_cast<unsigned long>(elapsed));
  return elapsed;
}

}  // namespace Cmm
