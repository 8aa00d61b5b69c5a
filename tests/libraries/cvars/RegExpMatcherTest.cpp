#include "RegExpMatcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

#include "platform/ComponentModule.h"
#include "platform/Components.h"

namespace {

using cvars::RegExpMatcher;

/// A component that finds what it is told to find, and keeps what was asked of it.
class RecordingRegExp final
    : public cvars::platform::Component<cvars::platform::Offers<IVorRegExp, IID_IVorRegExp>> {
 public:
  RecordingRegExp() { ++s_live; }
  ~RecordingRegExp() override { --s_live; }

  HRESULT get_Pattern(BSTR*) override { return E_NOTIMPL; }
  HRESULT put_Pattern(const wchar_t* pattern) override {
    s_pattern = pattern;
    return s_patternAnswer;
  }
  HRESULT get_IgnoreCase(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT put_IgnoreCase(VARIANT_BOOL ignoreCase) override {
    s_ignoreCase = ignoreCase;
    return S_OK;
  }
  HRESULT get_Global(VARIANT_BOOL*) override { return E_NOTIMPL; }
  HRESULT put_Global(VARIANT_BOOL global) override {
    s_global = global;
    return S_OK;
  }
  HRESULT Test(const wchar_t* text, VARIANT_BOOL* found) override {
    *found = std::wstring(text) == L"found" ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }

  static inline std::atomic<int> s_live = 0;
  static inline std::wstring s_pattern;
  static inline HRESULT s_patternAnswer = S_OK;
  static inline VARIANT_BOOL s_ignoreCase = 55;
  static inline VARIANT_BOOL s_global = 55;
};

class Factory final
    : public cvars::platform::Component<cvars::platform::Offers<IClassFactory, IID_IClassFactory>> {
 public:
  HRESULT CreateInstance(IUnknown*, REFIID iid, void** object) override {
    ++s_asked;
    *object = nullptr;
    if (s_fails) return E_FAIL;
    CComPtr<RecordingRegExp> made;
    made.Attach(new RecordingRegExp);
    return made->QueryInterface(iid, object);
  }
  HRESULT LockServer(int) override { return S_OK; }

  static inline bool s_fails = false;
  static inline int s_asked = 0;
};

class RegExpMatcherTest : public testing::Test {
 protected:
  void SetUp() override {
    Factory::s_fails = false;
    Factory::s_asked = 0;
    RecordingRegExp::s_patternAnswer = S_OK;
    CComPtr<Factory> factory;
    factory.Attach(new Factory);
    ASSERT_EQ(
        CoRegisterClassObject(CLSID_RegExp, factory, CLSCTX_ALL, REGCLS_MULTIPLEUSE, &m_cookie),
        S_OK);
  }
  void TearDown() override {
    EXPECT_EQ(CoRevokeClassObject(m_cookie), S_OK);
    EXPECT_EQ(RecordingRegExp::s_live, 0);
  }

  DWORD m_cookie = 0;
};

TEST_F(RegExpMatcherTest, MakesItsComponentWithItselfAndKeepsIt) {
  {
    RegExpMatcher matcher(0);
    EXPECT_EQ(Factory::s_asked, 1);
    EXPECT_EQ(matcher.LastResult(), S_OK);
    EXPECT_TRUE(matcher.Matches(L"[^01]", L"found"));
    EXPECT_EQ(RecordingRegExp::s_pattern, L"[^01]");
    EXPECT_FALSE(matcher.Matches(L"[^01]", L"not"));
    EXPECT_EQ(Factory::s_asked, 1);
    EXPECT_EQ(RecordingRegExp::s_live, 1);
  }
  EXPECT_EQ(RecordingRegExp::s_live, 0);
}

TEST_F(RegExpMatcherTest, SwitchesBothOptionsOffUnlessTheyAreAskedFor) {
  const RegExpMatcher none(0);
  EXPECT_EQ(RecordingRegExp::s_ignoreCase, VARIANT_FALSE);
  EXPECT_EQ(RecordingRegExp::s_global, VARIANT_FALSE);
  const RegExpMatcher ignoring(RegExpMatcher::kIgnoreCase);
  EXPECT_EQ(RecordingRegExp::s_ignoreCase, VARIANT_TRUE);
  EXPECT_EQ(RecordingRegExp::s_global, VARIANT_FALSE);
  const RegExpMatcher global(RegExpMatcher::kGlobal);
  EXPECT_EQ(RecordingRegExp::s_ignoreCase, VARIANT_FALSE);
  EXPECT_EQ(RecordingRegExp::s_global, VARIANT_TRUE);
}

TEST_F(RegExpMatcherTest, FindsNothingWithoutAComponentAndTriesAgainAtTheNextUse) {
  Factory::s_fails = true;
  RegExpMatcher matcher(0);
  EXPECT_EQ(matcher.LastResult(), E_FAIL);
  EXPECT_FALSE(matcher.Matches(L"[^01]", L"found"));
  EXPECT_EQ(matcher.LastResult(), E_FAIL);
  EXPECT_EQ(Factory::s_asked, 2);
  Factory::s_fails = false;
  EXPECT_TRUE(matcher.Matches(L"[^01]", L"found"));
  EXPECT_EQ(matcher.LastResult(), S_OK);
  EXPECT_EQ(Factory::s_asked, 3);
}

TEST_F(RegExpMatcherTest, FindsNothingByAPatternThatIsRefused) {
  RegExpMatcher matcher(0);
  RecordingRegExp::s_patternAnswer = E_INVALIDARG;
  EXPECT_FALSE(matcher.Matches(L"[", L"found"));
  EXPECT_EQ(matcher.LastResult(), E_INVALIDARG);
}

TEST(RegExpMatcherThreads, MayUseOneMatcherAtOnceWithPatternsOfTheirOwn) {
  RegExpMatcher matcher(0);
  std::atomic<int> wrong = 0;
  {
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < 4; ++thread) {
      threads.emplace_back([&matcher, &wrong, thread] {
        const wchar_t* const pattern = thread % 2 == 0 ? L"[^01]" : L"[^0-9A-F]";
        for (int i = 0; i < 200; ++i) {
          if (matcher.Matches(pattern, L"A5") != (thread % 2 == 0)) ++wrong;
        }
      });
    }
  }
  EXPECT_EQ(wrong, 0);
}

}  // namespace
