#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/Platform.h"

/// The program's one door to the registry: seven stateless operations over the installed platform. Each
/// returns the Win32 error code (0 = success) and shows nothing; the box of a failure is its caller's to
/// show. Text is converted to and from the single-byte code page here.
namespace corvane {

/// Reads a value as text, whatever its type: the stored bytes less the last one (the terminating NUL). A
/// value of zero bytes, and every failure, leaves `text` as it was.
Win32Error RegQueryString(RegistryRoot root, const std::string& subkey, const std::string& name,
                          std::string& text);

/// Reads a value's bytes and type. When the key cannot be opened both stay as they were. When the value
/// cannot be read `data` is one zero byte. A value of zero bytes gives an empty array and success.
Win32Error RegQueryBinary(RegistryRoot root, const std::string& subkey, const std::string& name,
                          std::vector<std::uint8_t>& data, std::uint32_t& type);

/// Writes exactly the text's characters, without adding a terminator. The key must exist.
Win32Error RegSetString(RegistryRoot root, const std::string& subkey, const std::string& name,
                        const std::string& text, std::uint32_t type);

/// Writes the bytes; an empty array writes a value of zero length. The key must exist.
Win32Error RegSetBinary(RegistryRoot root, const std::string& subkey, const std::string& name,
                        const std::vector<std::uint8_t>& data, std::uint32_t type);

Win32Error RegDeleteValue(RegistryRoot root, const std::string& subkey, const std::string& name);

/// Makes the key and any missing parents.
Win32Error RegCreateKey(RegistryRoot root, const std::string& subkey);

/// Names of the subkeys in the system's order. Without subkeys, and when the key cannot be opened, `names`
/// stays as it was.
Win32Error RegEnumSubkeys(RegistryRoot root, const std::string& subkey, std::vector<std::string>& names);

/// "(" + code + ") " + text, as message boxes show it.
std::string RegErrorText(Win32Error code);

/// The critical box (OK) of a registry failure: the first line, the path below HKEY_LOCAL_MACHINE, and
/// RegErrorText of the code.
void ShowRegistryError(const std::string& title, const std::string& firstLine, const std::string& path,
                       Win32Error code);

}  // namespace corvane
