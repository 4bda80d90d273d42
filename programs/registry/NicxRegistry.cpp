#include <exception>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include <unistd.h>

#include "platform/linux/links/Machine.h"
#include "programs/registry/RegistryTool.h"

int main(int count, char** arguments) {
    using namespace corvane;
    try {
        std::unique_ptr<Machine> machine;
        const auto store = [&]() -> RegistryStore& {
            machine = std::make_unique<Machine>();
            // The registry shows the links as they are now, or as they were when they could be read last.
            static_cast<void>(machine->Update());
            return machine->Store();
        };
        RegistryConsole console{std::cin, std::cout, std::cerr, isatty(STDIN_FILENO) == 1};
        return RunRegistryTool(std::vector<std::string>(arguments + 1, arguments + count), store, console);
    } catch (const std::exception& error) {
        std::cerr << "nicx-registry: " << error.what() << '\n';
        return kRegistryToolFailed;
    }
}
