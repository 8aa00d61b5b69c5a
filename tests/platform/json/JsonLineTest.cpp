#include "platform/JsonLine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace {

using cvars::platform::JsonLine;
using cvars::platform::ReadJsonLine;

TEST(JsonLine, WritesOneFlatObject) {
  JsonLine line;
  line.Text("text", std::string_view("a")).Number("number", std::int64_t{-5});
  line.Number("large", std::uint64_t{18446744073709551615u}).Number("real", 0.25).Flag("on", true);
  EXPECT_EQ(line.Line(),
            R"({"text":"a","number":-5,"large":18446744073709551615,"real":0.25,"on":true})");
  EXPECT_EQ(JsonLine().Line(), "{}");
}

TEST(JsonLine, EscapesWhatWouldBreakTheLine) {
  JsonLine line;
  line.Text("t", std::wstring_view(L"\"\\\n\r\t\x01\u03A9", 7));
  EXPECT_EQ(line.Line(), "{\"t\":\"\\\"\\\\\\n\\u000d\\u0009\\u0001\xCE\xA9\"}");
}

TEST(JsonLine, WritesWhatIsNoNumberAsText) {
  JsonLine line;
  line.Number("a", std::nan("")).Number("b", HUGE_VAL);
  EXPECT_EQ(line.Line(), R"({"a":"nan","b":"inf"})");
}

TEST(JsonLine, ReadsBackWhatItWrites) {
  const std::wstring text(L"\"\\\n\r\t\x01 \u03A9 \U0001F600 {},:");
  JsonLine line;
  line.Text("text", std::wstring_view(text)).Number("number", -1.5e300).Flag("on", false);
  const auto members = ReadJsonLine(line.Line());
  ASSERT_TRUE(members);
  EXPECT_EQ(members->at("text"), "\"\\\n\r\t\x01 \xCE\xA9 \xF0\x9F\x98\x80 {},:");
  EXPECT_EQ(members->at("number"), "-1.5e+300");
  EXPECT_EQ(members->at("on"), "false");
}

TEST(JsonLine, ReadsEscapesAndBlanks) {
  const auto members = ReadJsonLine(R"( { "a" : "\u00e9\ud83d\ude00\/" , "b" : null } )");
  ASSERT_TRUE(members);
  EXPECT_EQ(members->at("a"), "\xC3\xA9\xF0\x9F\x98\x80/");
  EXPECT_EQ(members->at("b"), "null");
}

TEST(JsonLine, EveryCutLineIsRefused) {
  const std::string whole = R"({"time":"now","type":2,"on":true})";
  for (std::size_t length = 0; length < whole.size(); ++length) {
    EXPECT_FALSE(ReadJsonLine(whole.substr(0, length))) << length;
  }
  EXPECT_TRUE(ReadJsonLine(whole));
}

TEST(JsonLine, WhatIsNoFlatObjectIsRefused) {
  for (const char* line : {"", "[]", "{\"a\":{}}", "{\"a\":[1]}", "{\"a\" 1}", "{\"a\":1 \"b\":2}",
                           "{\"a\":\"\\x\"}", "{\"a\":\"\\u12g4\"}", "{} {}", "{a:1}"}) {
    EXPECT_FALSE(ReadJsonLine(line)) << line;
  }
}

}  // namespace
