#pragma once

#include <locale.h>

#include <stdexcept>

namespace cvars::test {

/// Puts the calling thread into the "C" locale for as long as it lives, so that the C library can
/// serve as the reference of a comparison when the run is in another locale.
class PlainLocale {
 public:
  PlainLocale() : m_plain(newlocale(LC_ALL_MASK, "C", nullptr)) {
    if (m_plain == nullptr) throw std::runtime_error("no \"C\" locale");
    m_before = uselocale(m_plain);
  }
  ~PlainLocale() {
    uselocale(m_before);
    freelocale(m_plain);
  }
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;

 private:
  locale_t m_plain;
  locale_t m_before = nullptr;
};

}  // namespace cvars::test
