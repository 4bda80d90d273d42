#include <string>
#include <vector>

#include "platform/linux/registry/RegFile.h"
#include "tests/fuzz/Require.h"
#include "tests/fuzz/Targets.h"

namespace corvane::fuzz {

namespace {

using Kind = RegistryStore::Change::Kind;

/// Each value that the file sets, as a key with it alone.
std::vector<RegFileKey> ValuesSet(const RegFileContents& contents) {
    std::vector<RegFileKey> keys;
    for (const RegistryStore::Change& change : contents.changes) {
        if (change.kind == Kind::kSetValue) keys.push_back({change.subkey, {{change.name, change.value}}});
    }
    return keys;
}

void RequireSameAfterPrinting(const std::vector<RegFileKey>& keys) {
    const RegFileText text = PrintRegFile(keys);
    const RegFileContents again = ParseRegFile(text.bytes);
    Require(again.problem.empty(), "a printed file is understood");
    Require(again.changes.size() == keys.size() * 2, "a printed file orders each key and each value");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const RegistryStore::Change& change = again.changes[2 * i + 1];
        Require(change.value == keys[i].values[0].value, "a printed value reads the same");
        if (text.changedNames != 0) continue;
        Require(change.subkey == keys[i].path, "a printed key reads the same");
        Require(change.name == keys[i].values[0].name, "a printed name reads the same");
    }
}

}  // namespace

bool CheckRegFile(std::string_view bytes) {
    const RegFileContents contents = ParseRegFile(bytes);
    if (!contents.problem.empty()) {
        Require(contents.line >= 1 && contents.line <= bytes.size() + 1, "a problem has a line of the file");
        return false;
    }
    Require(contents.changes.size() <= bytes.size(), "no more is ordered than the file has letters");
    RequireSameAfterPrinting(ValuesSet(contents));
    return true;
}

}  // namespace corvane::fuzz
