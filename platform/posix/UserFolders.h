#pragma once

#include <string>

namespace orvello {

/// The user's home folder: $HOME if that is an absolute path, else the one of the user's entry in the
/// password database. Empty when there is none.
std::string homeFolder();

/// A folder of the XDG Base Directory Specification: the variable's value if that is an absolute path, else
/// the folder below the home folder. Empty when there is neither.
std::string userFolder(const char* variable, const char* belowHome);

/// Whether the path is a folder, and no link to one, that only the user can write to.
bool isUsersOwnFolder(const std::string& path);

} // namespace orvello
