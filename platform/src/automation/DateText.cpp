#include "DateText.h"

#include <chrono>
#include <cmath>

#include "NumberText.h"

namespace cvars::platform {

namespace {

using namespace std::chrono;

constexpr int kSecondsPerDay = 86400;
constexpr sys_days kDayZero = year{1899} / December / 30;

std::wstring TwoDigits(int value) { return (value < 10 ? L"0" : L"") + FormatInteger(value); }

std::wstring FormatTime(int seconds) {
  const int hour = seconds / 3600;
  const int shown = hour % 12 == 0 ? 12 : hour % 12;
  return FormatInteger(shown) + L":" + TwoDigits(seconds / 60 % 60) + L":" +
         TwoDigits(seconds % 60) + (hour < 12 ? L" AM" : L" PM");
}

class DateReader {
 public:
  explicit DateReader(std::wstring_view text) : m_rest(text.substr(0, text.find(L'\0'))) {}

  bool Read(DATE& date) {
    int days = 0;
    int seconds = 0;
    SkipBlanks();
    const std::wstring_view start = m_rest;
    const bool hasDate = ReadDay(days);
    if (!hasDate) m_rest = start;
    SkipBlanks();
    if (m_rest.empty() ? !hasDate : !ReadTime(seconds)) return false;
    SkipBlanks();
    if (!m_rest.empty()) return false;
    const double fraction = static_cast<double>(seconds) / kSecondsPerDay;
    date = days < 0 ? days - fraction : days + fraction;
    return IsValidDate(date);
  }

 private:
  wchar_t Peek() const { return m_rest.empty() ? L'\0' : m_rest.front(); }
  void SkipBlanks() {
    while (Peek() == L' ' || Peek() == L'\t') m_rest.remove_prefix(1);
  }
  bool Take(wchar_t wanted) {
    if (Peek() != wanted) return false;
    m_rest.remove_prefix(1);
    return true;
  }
  bool ReadNumber(int& value) {
    std::size_t count = 0;
    for (value = 0; Peek() >= L'0' && Peek() <= L'9' && count < 4; ++count) {
      value = value * 10 + (Peek() - L'0');
      m_rest.remove_prefix(1);
    }
    return count > 0;
  }

  bool ReadDay(int& days) {
    int first = 0;
    int second = 0;
    int third = 0;
    if (!ReadNumber(first)) return false;
    const wchar_t separator = Peek();
    if (separator != L'/' && separator != L'-') return false;
    if (!Take(separator) || !ReadNumber(second) || !Take(separator) || !ReadNumber(third)) {
      return false;
    }
    const bool yearFirst = first > 31;
    int yearNumber = yearFirst ? first : third;
    if (yearNumber < 30) {
      yearNumber += 2000;
    } else if (yearNumber < 100) {
      yearNumber += 1900;
    }
    const year_month_day day = year{yearNumber} /
                               month{static_cast<unsigned>(yearFirst ? second : first)} /
                               std::chrono::day{static_cast<unsigned>(yearFirst ? third : second)};
    if (!day.ok()) return false;
    days = static_cast<int>((sys_days{day} - kDayZero).count());
    return true;
  }

  bool ReadTime(int& seconds) {
    int hour = 0;
    int minute = 0;
    int second = 0;
    if (!ReadNumber(hour) || !Take(L':') || !ReadNumber(minute)) return false;
    if (Take(L':') && !ReadNumber(second)) return false;
    SkipBlanks();
    if (!m_rest.empty()) {
      const wchar_t half = UpperCase(Peek());
      if ((half != L'A' && half != L'P') || hour < 1 || hour > 12) return false;
      m_rest.remove_prefix(1);
      if (UpperCase(Peek()) != L'M') return false;
      m_rest.remove_prefix(1);
      hour = hour % 12 + (half == L'P' ? 12 : 0);
    }
    if (hour > 23 || minute > 59 || second > 59) return false;
    seconds = (hour * 60 + minute) * 60 + second;
    return true;
  }

  std::wstring_view m_rest;
};

}  // namespace

bool IsValidDate(DATE date) noexcept { return date >= -657434.0 && date < 2958466.0; }

HRESULT FormatDate(DATE date, std::wstring& text) {
  if (!IsValidDate(date)) return E_INVALIDARG;
  // The time of day counts forwards from midnight on both sides of day zero.
  const double whole = std::trunc(date);
  int days = static_cast<int>(whole);
  int seconds = static_cast<int>(std::nearbyint(std::abs(date - whole) * kSecondsPerDay));
  if (seconds == kSecondsPerDay) {
    ++days;
    seconds = 0;
  }
  text.clear();
  if (days != 0) {
    const year_month_day day{kDayZero + std::chrono::days{days}};
    text = FormatInteger(static_cast<unsigned>(day.month())) + L"/" +
           FormatInteger(static_cast<unsigned>(day.day())) + L"/" +
           FormatInteger(static_cast<int>(day.year()));
  }
  if (days != 0 && seconds == 0) return S_OK;
  if (days != 0) text += L' ';
  text += FormatTime(seconds);
  return S_OK;
}

HRESULT ParseDate(std::wstring_view text, DATE& date) {
  return DateReader(text).Read(date) ? S_OK : DISP_E_TYPEMISMATCH;
}

}  // namespace cvars::platform
