#pragma once

#include <gtest/gtest.h>

#include <string>

#include "CComBSTR.h"

namespace cvars::test {

/// The text that an operation hands out; the operation must succeed and give one.
template <class Object, class Target>
std::wstring TextOf(Object& object, HRESULT (Target::*get)(BSTR*)) {
  CComBSTR text;
  EXPECT_EQ((static_cast<Target&>(object).*get)(&text), S_OK);
  EXPECT_NE(text.m_str, nullptr);
  return std::wstring(text.View());
}

}  // namespace cvars::test
