#pragma once

#include <gtest/gtest.h>

#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

#include "CCvarBag.h"
#include "instrument/remote/BagCommands.h"
#include "instrument/remote/Session.h"
#include "tests/support/IsolatedHome.h"

namespace cvars::remote {

/// A command line without error, and what it answers.
struct AnswerCase {
  const char* command;
  const char* answer;
};

/// A command line that changes nothing, and its error.
struct RefusedCase {
  const char* command;
  int error;
};

/// The session of one client, which reaches the bags that a test adds.
class SessionFixture : public testing::Test {
 protected:
  void AddBag(CvarBag& bag) { EXPECT_EQ(AddBagCommands(m_table, bag), S_OK); }
  /// Makes a bag of cvars; its commands keep the cvars alive.
  void AddBag(const wchar_t* name, std::initializer_list<CvarCore*> cvars) {
    const CComPtr<CCvarBag> bag = CCvarBag::Create(name, nullptr);
    for (CvarCore* cvar : cvars) EXPECT_EQ(bag->Add(cvar), S_OK);
    AddBag(*bag);
  }

  std::string Ask(std::string_view line) { return m_session.Execute(line); }
  /// The number of the oldest error, 0 for none.
  int TakeError() { return static_cast<int>(m_session.Status().TakeError()); }

  /// Runs every row after a line that brings back where each starts from.
  void ExpectAnswers(std::span<const AnswerCase> rows, std::string_view reset = {}) {
    for (const AnswerCase& row : rows) {
      SCOPED_TRACE(row.command);
      if (!reset.empty()) Ask(reset);
      EXPECT_EQ(Ask(row.command), row.answer);
      EXPECT_EQ(TakeError(), 0);
    }
  }

  /// Runs every row, each of which answers nothing, leaves one error and keeps what a query
  /// answers.
  void ExpectRefusals(std::span<const RefusedCase> rows, std::string_view query,
                      std::string_view unchanged) {
    for (const RefusedCase& row : rows) {
      SCOPED_TRACE(row.command);
      EXPECT_EQ(Ask(row.command), "");
      EXPECT_EQ(TakeError(), row.error);
      EXPECT_EQ(Ask(query), unchanged);
      EXPECT_EQ(TakeError(), 0);
    }
  }

 private:
  test::IsolatedHome m_home;

 protected:
  CommandTable m_table;
  Device m_device;

 private:
  Session m_session{m_table, m_device};
};

}  // namespace cvars::remote
