#pragma once

#include <string>
#include <utility>
#include <vector>

#include "tests/wine/shell/Automation.h"

/// The objects of the tests' shell. Each shows a part of the description (Description.h); an entry is the
/// name of a key in it. Methods that no comment or description names are not offered.
namespace corvane::testshell {

/// What the client makes: the way to the Control Panel (3) and to the connections (0x31).
class TestShell : public Automation<IShellDispatch> {
 public:
    /// S_FALSE and no folder for any other name space.
    HRESULT STDMETHODCALLTYPE NameSpace(VARIANT space, Folder** folder) override;

    HRESULT STDMETHODCALLTYPE BrowseForFolder(LONG, BSTR, LONG, VARIANT, Folder**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Windows(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Open(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Explore(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE MinimizeAll() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UndoMinimizeALL() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FileRun() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CascadeWindows() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TileVertically() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TileHorizontally() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ShutdownWindows() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Suspend() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EjectPC() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE SetTime() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE TrayProperties() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Help() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FindFiles() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE FindComputer() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RefreshMenu() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ControlPanelItem(BSTR) override { return E_NOTIMPL; }
};

/// A folder with what was in it when it was asked for.
class TestFolder : public Automation<Folder> {
 public:
    TestFolder(std::wstring title, std::vector<std::wstring> entries)
        : title_(std::move(title)), entries_(std::move(entries)) {}

    HRESULT STDMETHODCALLTYPE get_Title(BSTR* title) override;
    HRESULT STDMETHODCALLTYPE Items(FolderItems** items) override;

    HRESULT STDMETHODCALLTYPE get_ParentFolder(Folder**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE ParseName(BSTR, FolderItem**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE NewFolder(BSTR, VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE MoveHere(VARIANT, VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyHere(VARIANT, VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetDetailsOf(VARIANT, int, BSTR*) override { return E_NOTIMPL; }

 private:
    std::wstring title_;
    std::vector<std::wstring> entries_;
};

class TestFolderItems : public Automation<FolderItems> {
 public:
    explicit TestFolderItems(std::vector<std::wstring> entries) : entries_(std::move(entries)) {}

    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override;
    /// Positions begin at 0; S_FALSE and no item for a position that is not there.
    HRESULT STDMETHODCALLTYPE Item(VARIANT position, FolderItem** item) override;
    HRESULT STDMETHODCALLTYPE _NewEnum(IUnknown**) override { return E_NOTIMPL; }

 private:
    std::vector<std::wstring> entries_;
};

/// An item of the Control Panel or a connection.
class TestFolderItem : public Automation<FolderItem> {
 public:
    explicit TestFolderItem(std::wstring entry) : entry_(std::move(entry)) {}

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override;
    HRESULT STDMETHODCALLTYPE get_IsFolder(VARIANT_BOOL* isFolder) override;
    /// E_FAIL for what is no folder.
    HRESULT STDMETHODCALLTYPE get_GetFolder(IDispatch** folder) override;
    /// A connection's; an item of the Control Panel has none.
    HRESULT STDMETHODCALLTYPE Verbs(FolderItemVerbs** verbs) override;

    HRESULT STDMETHODCALLTYPE put_Name(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Path(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_GetLink(IDispatch**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_IsLink(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_IsFileSystem(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_IsBrowsable(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ModifyDate(DATE*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_ModifyDate(DATE) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Size(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Type(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InvokeVerb(VARIANT) override { return E_NOTIMPL; }

 private:
    std::wstring entry_;
};

/// The verbs that a connection offered when they were asked for.
class TestVerbs : public Automation<FolderItemVerbs> {
 public:
    TestVerbs(std::wstring entry, std::vector<std::wstring> verbs)
        : entry_(std::move(entry)), verbs_(std::move(verbs)) {}

    HRESULT STDMETHODCALLTYPE get_Count(LONG* count) override;
    /// Positions begin at 0; S_FALSE and no verb for a position that is not there.
    HRESULT STDMETHODCALLTYPE Item(VARIANT position, FolderItemVerb** verb) override;
    HRESULT STDMETHODCALLTYPE _NewEnum(IUnknown**) override { return E_NOTIMPL; }

 private:
    std::wstring entry_;
    std::vector<std::wstring> verbs_;
};

class TestVerb : public Automation<FolderItemVerb> {
 public:
    TestVerb(std::wstring entry, std::wstring name) : entry_(std::move(entry)), name_(std::move(name)) {}

    HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override;
    /// Verbs other than the two that change the state do nothing.
    HRESULT STDMETHODCALLTYPE DoIt() override;

 private:
    std::wstring entry_;
    std::wstring name_;
};

}  // namespace corvane::testshell
