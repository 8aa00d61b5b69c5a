#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace cvars::components {

/// The name under which the system's journal knows all entries.
inline constexpr char kJournalIdentifier[] = "vortana";

/// The field that holds an entry as the files hold it, one JSON object.
inline constexpr char kJournalEntryField[] = "VORTANA_ENTRY";

/// Gives the socket of the system's journal; empty when there is none.
///
/// The variable VORTANA_JOURNAL names another socket; "none" means no journal.
std::string JournalSocket();

/// Sends one entry to the journal.
///
/// @param fields  names in upper case, values in UTF-8.
/// @return false when the journal does not take it.
bool SendToJournal(const std::string& socketPath,
                   const std::vector<std::pair<std::string, std::string>>& fields);

}  // namespace cvars::components
