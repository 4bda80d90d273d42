#include "tests/wine/contract/ImportedFunction.h"

#include <cstring>
#include <string>

namespace corvane::contract {

namespace {

/// What lies at an offset of this program's image in memory.
template <class Part>
Part* InImage(ULONG_PTR offset) {
    return reinterpret_cast<Part*>(reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr)) + offset);
}

/// The slot of a function; nullptr when it is not imported. For each library the image has two lists of one
/// order: the names, and the slots that the system filled when it loaded the program (PE format, ".idata").
ULONG_PTR* SlotOf(const char* function) {
    const auto* const headers =
        InImage<const IMAGE_NT_HEADERS>(static_cast<ULONG_PTR>(InImage<const IMAGE_DOS_HEADER>(0)->e_lfanew));
    const IMAGE_DATA_DIRECTORY& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* library = InImage<const IMAGE_IMPORT_DESCRIPTOR>(imports.VirtualAddress);
    for (; library->Name != 0; ++library) {
        const auto* name = InImage<const IMAGE_THUNK_DATA>(library->OriginalFirstThunk);
        auto* slot = InImage<IMAGE_THUNK_DATA>(library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
            const auto* const byName =
                InImage<const IMAGE_IMPORT_BY_NAME>(static_cast<ULONG_PTR>(name->u1.AddressOfData));
            if (std::strcmp(reinterpret_cast<const char*>(byName->Name), function) == 0)
                return reinterpret_cast<ULONG_PTR*>(&slot->u1.Function);
        }
    }
    return nullptr;
}

ULONG_PTR* ExpectedSlotOf(const char* function) {
    ULONG_PTR* const slot = SlotOf(function);
    if (slot == nullptr) throw std::runtime_error(std::string("this program does not import ") + function);
    return slot;
}

}  // namespace

ImportSlot::ImportSlot(const char* function) : slot_(ExpectedSlotOf(function)), system_(*slot_) {
    // The table may be read-only once the program is loaded. It stays writable from here on.
    DWORD former = 0;
    if (VirtualProtect(slot_, sizeof *slot_, PAGE_READWRITE, &former) == 0)
        throw std::runtime_error(std::string("the import of ") + function + " cannot be replaced");
}

ImportSlot::~ImportSlot() { *slot_ = system_; }

void ImportSlot::Put(ULONG_PTR function) { *slot_ = function; }

}  // namespace corvane::contract
