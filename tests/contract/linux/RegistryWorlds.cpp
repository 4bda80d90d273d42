#include "platform/linux/registry/RegistryStore.h"
#include "tests/contract/RegistryWorld.h"
#include "tests/unit/FileSupport.h"

namespace corvane::contract {

namespace {

class StoreWorld : public RegistryWorld {
 public:
    std::shared_ptr<RegistryApi> Registry() override { return store_; }

 private:
    test::TempFolder folder_;
    std::shared_ptr<RegistryApi> store_ = std::make_shared<RegistryStore>(folder_ / "registry.db");
};

}  // namespace

std::vector<NamedWorld<RegistryWorld>> SystemRegistryWorlds() {
    return {{"Store", [] { return std::make_unique<StoreWorld>(); }}};
}

}  // namespace corvane::contract
