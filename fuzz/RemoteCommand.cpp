// The command language of remote clients, from bytes to answers.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "instrument/model/Oscilloscope.h"
#include "instrument/remote/BagCommands.h"
#include "instrument/remote/LineReader.h"
#include "instrument/remote/NumericParameter.h"
#include "instrument/remote/Session.h"
#include "instrument/remote/StandardCommands.h"

namespace {

using namespace cvars;
using namespace cvars::remote;

/// Looks at every parameter in every way.
class Examine final : public Command {
 public:
  ScpiError Set(const CommandCall& call) const override {
    for (const Parameter& parameter : call.unit.parameters) {
      unsigned whole = 0;
      std::string number;
      std::string suffix;
      (void)ReadWholeNumber(parameter, 255, whole);
      (void)SplitDecimal(parameter.text, number, suffix);
      if (parameter.kind == Parameter::Kind::kString) (void)Unquote(parameter.text);
    }
    return ScpiError::kNone;
  }
  ScpiError Query(const CommandCall& call, std::string& answer) const override {
    answer += call.unit.data;
    return Set(call);
  }
};

CommandTable MakeTable() {
  CommandTable table;
  AddStandardCommands(table);
  table.AddVerbatim("A", std::make_shared<Examine>());
  // Names, numbers and units meet the settings of the instrument.
  static const model::Oscilloscope scope;
  for (const CComPtr<CCvarBag>& bag : scope.Bags()) {
    if (AddBagCommands(table, *bag) != S_OK) std::abort();
  }
  return table;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const CommandTable table = MakeTable();
  static const Device device;
  Session session(table, device);
  LineReader reader;
  // The first byte says in which pieces the rest arrives.
  const std::size_t pieceSize = size == 0 ? 1 : data[0] + std::size_t{1};
  for (std::size_t begin = 1; begin < size; begin += pieceSize) {
    const std::size_t length = std::min(pieceSize, size - begin);
    std::copy_n(data + begin, length, reader.Prepare(length).begin());
    reader.Commit(length);
    std::string_view line;
    for (;;) {
      const LineReader::Result result = reader.Next(line);
      if (result == LineReader::Result::kNothing) break;
      if (result == LineReader::Result::kLine) (void)session.Execute(line);
    }
  }
  return 0;
}
