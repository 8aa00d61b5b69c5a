// Walks every setting of the instrument as a remote client would.

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "CComBSTR.h"
#include "IVorCvar.h"
#include "instrument/remote/WireText.h"
#include "tests/instrument/model/ScopeFixture.h"

namespace cvars::remote {
namespace {

// What holds for every cvar of a type.
struct TypeRow {
  const char* type;
  std::vector<std::string> refused;  // parameters of the wrong kind
  int error;                         // what each of them answers
  bool hasQuery = true;
};

const TypeRow kTypes[] = {
    {"Action", {" 5", " ON", " 'x'"}, -108, false},
    {"BitPattern", {" word", " (1:4)", " #15hello"}, -104},
    {"Bool", {" MAYBE", " NOT"}, -224},
    {"Color", {" 'zebra'"}, -224},
    {"Double", {" word", " 'text'", " (1:4)"}, -104},
    {"DoubleLockstep", {" word", " 'text'", " (1:4)"}, -104},
    {"Enum", {" NOSUCHCHOICE", " 'no such choice'"}, -224},
    {"FileName", {" word", " 5"}, -104},
    {"Image", {" word", " 5"}, -104},
    {"Integer", {" word", " 'text'", " (1:4)"}, -104},
    {"Long Integer", {" word", " 'text'", " (1:4)"}, -104},
    {"Object", {" 'no such object'"}, -224},
    {"ObjectName", {" word", " 5"}, -104},
    {"Register", {" word", " (1:4)"}, -104},
    {"SafeArray", {" word", " 5"}, -104},
    {"String", {" word", " 5"}, -104},
};

struct Setting {
  std::string header;  // "CHANNEL1:SCALE"
  std::string type;
  bool isReadOnly = false;
};

std::string Wire(const CComBSTR& text) {
  std::string wire;
  AppendToWire(text.View(), wire);
  return wire;
}

class WholeTree : public model::ScopeFixture {
 protected:
  WholeTree() {
    for (const CComPtr<CCvarBag>& bag : m_scope.Bags()) {
      std::string bagName;
      AppendToWire(bag->Name(), bagName);
      for (std::size_t i = 0; i < bag->Count(); ++i) {
        const CComPtr<IVorCvar> cvar = bag->At(i);
        CComBSTR name;
        CComBSTR type;
        int isReadOnly = 0;
        int isHidden = 0;
        EXPECT_EQ(cvar->get_NameRemote(&name), S_OK);
        EXPECT_EQ(cvar->get_Type(&type), S_OK);
        EXPECT_EQ(cvar->IsReadOnly(&isReadOnly), S_OK);
        EXPECT_EQ(cvar->IsHidden(&isHidden), S_OK);
        if (isHidden != 0) continue;
        m_settings.push_back({bagName + ":" + Wire(name), Wire(type), isReadOnly != 0});
      }
    }
  }

  // Rows of the table by type; a setting of a type that has none fails the test.
  const TypeRow& RowOf(const Setting& setting) {
    for (const TypeRow& row : kTypes) {
      if (setting.type == row.type) return row;
    }
    ADD_FAILURE() << setting.header << " has the type " << setting.type << " without a row";
    return kTypes[0];
  }

  std::string Ask(const std::string& line) {
    std::string answer = ScopeFixture::Ask(line);
    if (!answer.empty() && answer.back() == '\n') answer.pop_back();
    return answer;
  }

  std::vector<Setting> m_settings;
};

TEST_F(WholeTree, HasACvarOfEveryType) {
  std::set<std::string> types;
  for (const Setting& setting : m_settings) types.insert(setting.type);
  for (const TypeRow& row : kTypes) EXPECT_TRUE(types.contains(row.type)) << row.type;
}

TEST_F(WholeTree, EverySettingAnswersItsQuery) {
  for (const Setting& setting : m_settings) {
    SCOPED_TRACE(setting.header);
    const std::string answer = Ask(setting.header + "?");
    if (RowOf(setting).hasQuery) {
      EXPECT_EQ(TakeError(), 0);
      EXPECT_FALSE(answer.empty());
    } else {
      EXPECT_EQ(TakeError(), -113);
    }
  }
}

TEST_F(WholeTree, EverySettingTakesWhatItAnsweredAndStaysTheSame) {
  for (const Setting& setting : m_settings) {
    // An object answers what kind of thing it is; choosing one is by its name.
    if (setting.isReadOnly || !RowOf(setting).hasQuery || setting.type == "Object") continue;
    SCOPED_TRACE(setting.header);
    const std::string answer = Ask(setting.header + "?");
    Ask(setting.header + " " + answer);
    EXPECT_EQ(TakeError(), 0) << answer;
    EXPECT_EQ(Ask(setting.header + "?"), answer);
  }
}

TEST_F(WholeTree, EverySettingReturnsToItsDefault) {
  std::map<std::string, std::string> defaults;
  for (const Setting& setting : m_settings) {
    if (RowOf(setting).hasQuery) defaults[setting.header] = Ask(setting.header + "?");
  }
  for (const Setting& setting : m_settings) {
    // A picture has no default.
    if (setting.isReadOnly || !RowOf(setting).hasQuery || setting.type == "Image") continue;
    SCOPED_TRACE(setting.header);
    Ask(setting.header + " DEF");
    EXPECT_EQ(TakeError(), 0);
    EXPECT_EQ(Ask(setting.header + "?"), defaults[setting.header]);
  }
}

TEST_F(WholeTree, NoSettingTakesAParameterOfTheWrongKind) {
  for (const Setting& setting : m_settings) {
    if (setting.isReadOnly) continue;
    SCOPED_TRACE(setting.header);
    const TypeRow& row = RowOf(setting);
    const std::string before = row.hasQuery ? Ask(setting.header + "?") : std::string();
    for (const std::string& parameter : row.refused) {
      Ask(setting.header + parameter);
      EXPECT_EQ(TakeError(), row.error) << parameter;
    }
    if (row.hasQuery) {
      Ask(setting.header);
      EXPECT_EQ(TakeError(), -109);
      EXPECT_EQ(Ask(setting.header + "?"), before);
    }
  }
}

TEST_F(WholeTree, ReadOnlySettingsRefuseWhatTheyAnswered) {
  for (const Setting& setting : m_settings) {
    if (!setting.isReadOnly || !RowOf(setting).hasQuery) continue;
    SCOPED_TRACE(setting.header);
    const std::string answer = Ask(setting.header + "?");
    Ask(setting.header + " " + answer);
    EXPECT_EQ(TakeError(), -203);
  }
}

TEST_F(WholeTree, EveryActionActs) {
  for (const Setting& setting : m_settings) {
    if (setting.type != "Action") continue;
    SCOPED_TRACE(setting.header);
    EXPECT_EQ(Ask(setting.header + ";*OPC?"), "1");
    EXPECT_EQ(TakeError(), 0);
  }
}

}  // namespace
}  // namespace cvars::remote
