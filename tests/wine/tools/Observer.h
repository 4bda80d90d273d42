#pragma once

#include <string>
#include <vector>

#include "tests/wine/tools/Json.h"

/// What observer.exe can be asked. Every answer is a JSON value; what cannot be answered is {"error": text}.
namespace corvane::test {

using Arguments = std::vector<std::string>;

/// windows PROGRAM: visible windows of all processes of this file name, such as "nicx.exe", as ProbeWindows.h
/// describes them, as [[window, ...], ...] by thread. An error when one of them does not answer, because it
/// is busy.
Json Windows(const Arguments& arguments);

/// input PROGRAM: whether keys or mouse buttons wait, for each thread that has visible windows, as
/// [true, ...]. An error as for windows.
Json Input(const Arguments& arguments);

/// interfaces: what GetInterfaceInfo answers, as [[index, name], ...].
Json Interfaces(const Arguments& arguments);

/// read KEY: values of a key below HKEY_LOCAL_MACHINE, as {name: [type, "hexadecimal bytes"]}; null when
/// there is no such key. The bytes are those of the ANSI functions, with which programs of the single-byte
/// code page see them.
Json ReadKey(const Arguments& arguments);

/// keys KEY: names of its subkeys; null when there is no such key.
Json Subkeys(const Arguments& arguments);

/// write KEY NAME TYPE HEXADECIMAL-BYTES: makes the key if need be and sets a value (ANSI). null.
Json WriteValue(const Arguments& arguments);

/// delete KEY: a key with all below it. delete KEY NAME: a value. null.
Json Delete(const Arguments& arguments);

}  // namespace corvane::test
