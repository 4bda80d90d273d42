#pragma once

#include <string>
#include <vector>

#include "platform/windows/Windows.h"

/// What the tests' shell shows is described in the registry, below HKEY_LOCAL_MACHINE. It is read anew at
/// each call, so that a test can change it at any time; all of it may be missing.
///
///   SOFTWARE\CorvaneTest\Shell
///     Title        text    Title of the connections name space (0x31); "Network Connections" when missing.
///     HasSpace     number  0: the shell knows no connections name space.
///     Diary        texts   Written by the shell: "disable NAME" or "enable NAME" for each verb that was
///     done,
///                          in order.
///   SOFTWARE\CorvaneTest\Shell\Panel\0000, 0001, ...
///     An item of the Control Panel (name space 3); the items are in the order of their keys.
///     Name         text
///     Folder       number  1: a folder. Empty unless Connections says otherwise.
///     Connections  number  1: the folder of the connections.
///   SOFTWARE\CorvaneTest\Shell\Connections\0000, 0001, ...
///     A connection: its verbs are "&Status", then "Disa&ble" or "En&able", then "&Rename" and "P&roperties".
///     Name         text
///     Enabled      number  1: enabled. Turned by the shell when the verb is done.
///     Slow         number  How many times, after a change, the verbs are listed without the verb to change
///     back
///                          before it is offered: an adapter that takes its time.
///     Settling     number  Written by the shell: how many of these times are left.
///   SOFTWARE\CorvaneTest\Shell\Failures
///     INTERFACE.METHOD     number  The method fails with this HRESULT. The methods are Shell.NameSpace;
///                          Folder.Title, Folder.Items; FolderItems.Count, FolderItems.Item; FolderItem.Name,
///                          FolderItem.IsFolder, FolderItem.GetFolder, FolderItem.Verbs;
///                          FolderItemVerbs.Count, FolderItemVerbs.Item; FolderItemVerb.Name,
///                          FolderItemVerb.DoIt (nothing is then done or noted).
///
/// Texts are REG_SZ, numbers REG_DWORD (a missing one is 0, HasSpace 1), lists of texts REG_MULTI_SZ.
namespace corvane::testshell {

/// Names of the keys in the part ("Panel", "Connections"), each with the part before it: "Panel\0000".
std::vector<std::wstring> Entries(const std::wstring& part);

/// A text or number of an entry; of the description itself when `entry` is empty.
std::wstring Text(const std::wstring& entry, const wchar_t* name, const wchar_t* whenMissing = L"");
DWORD Number(const std::wstring& entry, const wchar_t* name, DWORD whenMissing = 0);
void SetNumber(const std::wstring& entry, const wchar_t* name, DWORD number);

void NoteInDiary(const std::wstring& line);

/// The failure that is ordered for a method, S_OK when there is none.
HRESULT OrderedFailure(const wchar_t* method);

}  // namespace corvane::testshell
