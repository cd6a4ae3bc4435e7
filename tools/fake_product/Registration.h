#pragma once

#include <string>

namespace velm_tools {

class Journal;

// Registers `program` as what opens "velmmtg:" links, for the current user where that is seen through the
// merged class root, else for the machine. Notes what it makes. Throws FakeProductError, also when a
// command is registered already.
void RegisterCommand(const std::wstring& program, Journal& journal);

// Undoes one noted entry. A key that has come to hold something else, and a command that was changed
// since, stay. Throws FakeProductError.
void RemoveCommand(const std::wstring& entry);
void RemoveKey(const std::wstring& entry);

}  // namespace velm_tools
