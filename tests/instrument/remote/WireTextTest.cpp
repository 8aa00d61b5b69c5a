#include "instrument/remote/WireText.h"

#include <gtest/gtest.h>

#include <string>

namespace cvars::remote {
namespace {

struct WireCase {
  const wchar_t* text;
  const char* wire;
};

constexpr WireCase kWireCases[] = {
    {L"", ""},
    {L"1.5E-3", "1.5E-3"},
    {L"\u00b5", "\xC2\xB5"},
    {L"\u03a9", "\xCE\xA9"},
    {L"\u20ac", "\xE2\x82\xAC"},
    {L"\U0001F600", "\xF0\x9F\x98\x80"},
    {L"\uFFFD", "\xEF\xBF\xBD"},
};

TEST(WireTextTest, WritesAndReadsUtf8) {
  for (const WireCase& row : kWireCases) {
    std::string wire;
    AppendToWire(row.text, wire);
    EXPECT_EQ(wire, row.wire);
    EXPECT_EQ(FromWire(row.wire), row.text);
  }
}

TEST(WireTextTest, WhatIsNoCharacterIsReplaced) {
  std::string wire;
  AppendToWire(std::wstring(1, static_cast<wchar_t>(0xD800)), wire);
  AppendToWire(std::wstring(1, static_cast<wchar_t>(0x110000)), wire);
  EXPECT_EQ(wire, "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(WireTextTest, BytesThatAreNoUtf8AreReplaced) {
  EXPECT_EQ(FromWire("a\xFF"
                     "b"),
            L"a\uFFFDb");
  EXPECT_EQ(FromWire("\x80"), L"\uFFFD");
  EXPECT_EQ(FromWire("\xC2"), L"\uFFFD");                      // cut
  EXPECT_EQ(FromWire("\xC0\x80"), L"\uFFFD\uFFFD");            // longer than needed
  EXPECT_EQ(FromWire("\xED\xA0\x80"), L"\uFFFD\uFFFD\uFFFD");  // a surrogate
  EXPECT_EQ(FromWire("\xE2\x82x"), L"\uFFFD\uFFFDx");
}

}  // namespace
}  // namespace cvars::remote
