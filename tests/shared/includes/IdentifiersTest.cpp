// The identifiers of interfaces and classes, which never change: modules compiled apart know them.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "Cvars.h"
#include "platform/Components.h"

namespace {

struct IdentifierCase {
  const char* name;
  GUID value;
  const wchar_t* text;
};
const IdentifierCase kIdentifierCases[] = {
    {"IID_IUnknown", IID_IUnknown, L"{00000000-0000-0000-C000-000000000046}"},
    {"IID_IDispatch", IID_IDispatch, L"{00020400-0000-0000-C000-000000000046}"},
    {"IID_IClassFactory", IID_IClassFactory, L"{00000001-0000-0000-C000-000000000046}"},
    {"IID_IStream", IID_IStream, L"{0000000C-0000-0000-C000-000000000046}"},
    {"IID_IVorCvar", IID_IVorCvar, L"{7205B0A0-E8E6-4D14-80F1-0D21314BE6BA}"},
    {"IID_IVorCvarEventSink", IID_IVorCvarEventSink, L"{39699EE3-8587-40BC-855F-A260E04BFBA5}"},
    {"IID_CvarBag", IID_CvarBag, L"{B4C49663-8BB0-4472-8A41-E7AD9CCAD170}"},
    {"IID_CvarCore", IID_CvarCore, L"{5B1F0C52-7C34-4E0B-8A5E-2E7B51D8C6A4}"},
    {"IID_IVorAsynchronousCvarNotifier", IID_IVorAsynchronousCvarNotifier,
     L"{69226983-92D8-4C33-8ACB-A2756064CDF4}"},
    {"IID_IVorCvarAction", IID_IVorCvarAction, L"{C7A1E3D4-5B28-4F96-8E0D-17F2A94C6B53}"},
    {"IID_IVorCvarBitPattern", IID_IVorCvarBitPattern, L"{2F6C1B0E-94A7-4D0B-8C55-6E1D3A7B9F42}"},
    {"IID_IVorCvarBool", IID_IVorCvarBool, L"{361C0E84-372A-4528-833E-2C5FCDBF66FE}"},
    {"IID_IVorCvarColor", IID_IVorCvarColor, L"{C7158AA1-8C89-4C1A-A08A-E451877E805E}"},
    {"IID_IVorCvarDouble", IID_IVorCvarDouble, L"{E6B1A4B1-6C0B-4C0E-9A4E-0B1F5B7E2D31}"},
    {"IID_IVorCvarDoubleLockstep", IID_IVorCvarDoubleLockstep,
     L"{5A7D0E93-B64F-4C21-8E1A-F3926D80C74B}"},
    {"IID_IVorCvarEnum", IID_IVorCvarEnum, L"{3E99DE60-5B42-4EA4-B519-333DCA61BE1B}"},
    {"IID_IVorCvarFileName", IID_IVorCvarFileName, L"{47D5B0E3-6A92-4C37-A5F8-13E9C04B7D33}"},
    {"IID_IVorCvarImage", IID_IVorCvarImage, L"{D2E6A7C4-5B19-4E0D-8C73-9F3B1A64C044}"},
    {"IID_IVorCvarInt", IID_IVorCvarInt, L"{2C8E5D17-94A3-4F6B-B1D0-7A3E96C4158F}"},
    {"IID_IVorCvarLongInt", IID_IVorCvarLongInt, L"{91F4A6B2-3D5C-4E87-A02B-C86F1D7E4039}"},
    {"IID_IVorCvarObjectName", IID_IVorCvarObjectName, L"{9A1C7F06-3D58-4B8A-8E4C-5C1E0DA7B622}"},
    {"IID_IVorCvarRegister", IID_IVorCvarRegister, L"{9B3D5A17-60C8-4E2F-9A71-C4E85D0B2F16}"},
    {"IID_IVorCvarString", IID_IVorCvarString, L"{2C9E2B5D-1E0F-4F5B-9B7C-70A3B2D94E11}"},
    {"IID_IVorEventLog", IID_IVorEventLog, L"{DBCFEEDB-1179-4929-8FFE-53DC6DD0643D}"},
    {"IID_IVorEventLogMgr", IID_IVorEventLogMgr, L"{AF9EAD7B-BA4F-43CC-A370-D1B78DBE9D62}"},
    {"IID_IVorMessageBox", IID_IVorMessageBox, L"{CD041425-BDD6-466A-A1F9-BE2B3393BB8C}"},
    {"IID_IVorPhysicalUnit", IID_IVorPhysicalUnit, L"{5C5132E5-0B48-496E-9912-F1D0808224EF}"},
    {"IID_IVorProbe", IID_IVorProbe, L"{4E9A1C66-D2B7-4F05-A3C8-90B15E7F2D48}"},
    {"IID_IVorRegExp", IID_IVorRegExp, L"{889575B5-3969-433E-9214-0ED80A860FB8}"},
    {"IID_IVorResult", IID_IVorResult, L"{83F5D0B2-1A6E-4C39-B7D4-2C08E6A9F571}"},
    {"IID_IVorResultProcessorOutputPin", IID_IVorResultProcessorOutputPin,
     L"{16C7B94A-E83D-4D52-9F20-B5A4D3E1708C}"},
    {"IID_IVorTattlerClient", IID_IVorTattlerClient, L"{B29D383F-0CF3-4CE2-B725-92219799B4FF}"},
    {"CLSID_AsynchronousCvarNotifier", CLSID_AsynchronousCvarNotifier,
     L"{2CC873C4-3530-4910-9411-B0C079C1EE80}"},
    {"CLSID_EventLogMgr", CLSID_EventLogMgr, L"{6BDAD998-AE06-4FE4-B6F7-1AA313975FC4}"},
    {"CLSID_MessageBox", CLSID_MessageBox, L"{BBA42A1A-7DDF-4AD1-A9B4-C4BE12DCABA6}"},
    {"CLSID_PhysicalUnit", CLSID_PhysicalUnit, L"{6618F46D-AAE5-4A01-87F1-7B1A194ECE07}"},
    {"CLSID_RegExp", CLSID_RegExp, L"{E27BA3E9-A748-441A-BC55-1094A25F1589}"},
    {"CLSID_TattlerClient", CLSID_TattlerClient, L"{F64930FB-CFBA-471A-8225-D99B6B5F2695}"},
};

TEST(Identifiers, NeverChange) {
  for (const IdentifierCase& row : kIdentifierCases) {
    wchar_t text[39];
    ASSERT_EQ(StringFromGUID2(row.value, text, 39), 39);
    EXPECT_STREQ(text, row.text) << row.name;
    GUID read = GUID_NULL;
    EXPECT_EQ(CLSIDFromString(row.text, &read), S_OK) << row.name;
    EXPECT_EQ(read, row.value) << row.name;
  }
}

TEST(Identifiers, AreAllDifferent) {
  std::set<std::wstring> texts;
  for (const IdentifierCase& row : kIdentifierCases) {
    EXPECT_TRUE(texts.insert(row.text).second) << row.name;
  }
}

TEST(Identifiers, OfEveryHeaderAreInTheTable) {
  std::set<std::string> known = {"IID_NULL"};
  for (const IdentifierCase& row : kIdentifierCases) known.insert(row.name);
  const std::regex constant("inline constexpr (?:IID|CLSID) (\\w+) =");
  std::size_t found = 0;
  for (const auto& entry :
       std::filesystem::directory_iterator(CVARS_SOURCE_DIR "/shared/includes")) {
    std::ifstream file(entry.path());
    for (std::string line; std::getline(file, line);) {
      std::smatch match;
      if (!std::regex_search(line, match, constant)) continue;
      ++found;
      EXPECT_TRUE(known.contains(match[1])) << match[1] << " of " << entry.path().filename();
    }
  }
  EXPECT_EQ(found, known.size());
}

}  // namespace
