#include "instrument/remote/LineReader.h"

#include <algorithm>
#include <cstring>

#include "instrument/remote/Syntax.h"

namespace cvars::remote {
namespace {

/// What a buffer may keep between lines, in bytes; more is given back.
constexpr std::size_t kIdleCapacity = 64 * 1024;

}  // namespace

std::span<char> LineReader::Prepare(std::size_t size) {
  if (m_begin == m_end) {
    m_begin = m_scan = m_end = 0;
    if (m_buffer.size() > kIdleCapacity && size <= kIdleCapacity) {
      m_buffer.resize(kIdleCapacity);
      m_buffer.shrink_to_fit();
    }
  }
  if (m_buffer.size() - m_end < size && m_begin != 0) {
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_scan -= m_begin;
    m_end -= m_begin;
    m_begin = 0;
  }
  if (m_buffer.size() - m_end < size) m_buffer.resize(std::max(m_end + size, 2 * m_buffer.size()));
  return std::span(m_buffer).subspan(m_end);
}

LineReader::Result LineReader::Next(std::string_view& line) noexcept {
  while (m_scan != m_end) {
    if (m_state == State::kBlockContent) {
      const std::size_t taken = std::min(m_blockLeft, m_end - m_scan);
      m_scan += taken;
      m_blockLeft -= taken;
      if (m_blockLeft == 0) m_state = State::kText;
    } else {
      const char character = m_buffer[m_scan++];
      if (character == '\n') {
        const bool dropped = m_state == State::kDropping;
        const std::size_t begin = m_begin;
        m_begin = m_scan;
        m_state = State::kText;
        if (dropped) continue;
        line = std::string_view(m_buffer.data() + begin, m_scan - 1 - begin);
        return Result::kLine;
      }
      m_state = After(character);
    }
    if (m_state == State::kDropping) {
      m_begin = m_scan;
    } else if (IsTooLong(m_scan - m_begin) || m_blockLeft > kLineLimit) {
      m_state = State::kDropping;
      m_blockLeft = 0;
      m_begin = m_scan;
      return Result::kOverrun;
    }
  }
  return Result::kNothing;
}

LineReader::State LineReader::After(char character) noexcept {
  switch (m_state) {
    case State::kDropping:
      return State::kDropping;
    case State::kSingleQuoted:
      return character == '\'' ? State::kText : State::kSingleQuoted;
    case State::kDoubleQuoted:
      return character == '"' ? State::kText : State::kDoubleQuoted;
    case State::kBlockMark:
      if (character >= '1' && character <= '9') {
        m_digitsLeft = static_cast<std::size_t>(character - '0');
        m_blockLeft = 0;
        return State::kBlockLength;
      }
      break;
    case State::kBlockLength:
      if (!IsDigit(character)) {
        m_blockLeft = 0;
        break;
      }
      m_blockLeft = 10 * m_blockLeft + static_cast<std::size_t>(character - '0');
      if (--m_digitsLeft != 0) return State::kBlockLength;
      return m_blockLeft == 0 ? State::kText : State::kBlockContent;
    case State::kBeforeData:
      if (character == '#') return State::kBlockMark;
      break;
    case State::kText:
    case State::kBlockContent:
      break;
  }
  if (character == '\'') return State::kSingleQuoted;
  if (character == '"') return State::kDoubleQuoted;
  return IsBlank(character) || character == ',' ? State::kBeforeData : State::kText;
}

bool LineReader::IsTooLong(std::size_t length) const noexcept {
  // A carriage return may be part of the line's end.
  return length > kLineLimit + 1 || (length == kLineLimit + 1 && m_buffer[m_scan - 1] != '\r');
}

}  // namespace cvars::remote
