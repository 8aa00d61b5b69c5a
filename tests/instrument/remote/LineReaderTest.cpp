#include "instrument/remote/LineReader.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace cvars::remote {
namespace {

/// Feeds a text in pieces of a size and gives the lines; an overrun shows as "<overrun>".
std::vector<std::string> Lines(std::string_view text, std::size_t pieceSize) {
  LineReader reader;
  std::vector<std::string> lines;
  for (std::size_t begin = 0; begin < text.size(); begin += pieceSize) {
    const std::string_view piece = text.substr(begin, pieceSize);
    const std::span<char> room = reader.Prepare(piece.size());
    std::copy(piece.begin(), piece.end(), room.begin());
    reader.Commit(piece.size());
    std::string_view line;
    for (;;) {
      const LineReader::Result result = reader.Next(line);
      if (result == LineReader::Result::kNothing) break;
      lines.emplace_back(result == LineReader::Result::kLine ? line : "<overrun>");
    }
  }
  return lines;
}

struct LineCase {
  const char* name;
  std::string input;
  std::vector<std::string> lines;
};

const LineCase kLineCases[] = {
    {"LineFeedEndsALine", "*IDN?\n*RST\n", {"*IDN?", "*RST"}},
    {"CarriageReturnStaysAsABlank", "*IDN?\r\n", {"*IDN?\r"}},
    {"EmptyLinesAreLines", "\n\nA\n", {"", "", "A"}},
    {"UnfinishedLineIsKept", "A\nB", {"A"}},
    {"BlockCarriesLineFeeds", "D #15a\nb\nc\nE\n", {"D #15a\nb\nc", "E"}},
    {"BlockAfterComma", "D 1,#13a\nb\nE\n", {"D 1,#13a\nb", "E"}},
    {"BlockCarriesQuotesAndHashes", "D #14\"#1\n\nE\n", {"D #14\"#1\n", "E"}},
    {"TwoDigitBlockLength", "D #210\n\n\n\n\n\n\n\n\n\nE\n", {"D #210\n\n\n\n\n\n\n\n\n\nE"}},
    {"EmptyBlock", "D #10\nE\n", {"D #10", "E"}},
    {"IndefiniteBlockEndsWithTheLine", "D #0abc\nE\n", {"D #0abc", "E"}},
    {"HexadecimalIsNoBlock", "D #H15\nE\n", {"D #H15", "E"}},
    {"HashInsideAWordIsNoBlock", "D a#15\nE\n", {"D a#15", "E"}},
    {"HashInsideQuotesIsNoBlock", "D ' #15'\nE\n", {"D ' #15'", "E"}},
    {"CutBlockLengthEndsWithTheLine", "D #3\nE\n", {"D #3", "E"}},
    {"ForgottenQuoteCostsOneLine", "D 'abc\nE\n", {"D 'abc", "E"}},
    {"BlockAfterDoubledQuotes", "D 'it''s', #12\n\n\nE\n", {"D 'it''s', #12\n\n", "E"}},
};

TEST(LineReaderTest, CutsLinesWhateverThePieces) {
  for (const LineCase& row : kLineCases) {
    for (const std::size_t pieceSize : {1U, 2U, 3U, 7U, 1000U}) {
      EXPECT_EQ(Lines(row.input, pieceSize), row.lines) << row.name << ", pieces of " << pieceSize;
    }
  }
}

TEST(LineReaderTest, LineOfTheLimitPasses) {
  const std::string longest(LineReader::kLineLimit, 'x');
  EXPECT_EQ(Lines(longest + "\nA\n", 10000), (std::vector<std::string>{longest, "A"}));
}

TEST(LineReaderTest, CarriageReturnIsNotCountedInTheLimit) {
  const std::string longest(LineReader::kLineLimit, 'x');
  EXPECT_EQ(Lines(longest + "\r\nA\n", 10000), (std::vector<std::string>{longest + "\r", "A"}));
}

TEST(LineReaderTest, LineBeyondTheLimitIsDroppedAndAnnouncedOnce) {
  const std::string tooLong(LineReader::kLineLimit + 1, 'x');
  EXPECT_EQ(Lines("B\n" + tooLong + "\nA\n", 10000),
            (std::vector<std::string>{"B", "<overrun>", "A"}));
  EXPECT_EQ(Lines(tooLong + tooLong + tooLong + "\nA\n", 65536),
            (std::vector<std::string>{"<overrun>", "A"}));
}

TEST(LineReaderTest, BlockThatCannotFitIsAnOverrun) {
  EXPECT_EQ(Lines("D #9999999999abc\nA\n", 5), (std::vector<std::string>{"<overrun>", "A"}));
}

}  // namespace
}  // namespace cvars::remote
