/// observer.exe: what Windows says about windows, the registry and network interfaces. One question per line
/// on standard input, its parts separated by tabs; one line of JSON on standard output for each. It ends with
/// its input.

#include "tests/wine/tools/Observer.h"

#include <iostream>
#include <map>

namespace corvane::test {

namespace {

Arguments Parts(const std::string& line) {
    Arguments parts;
    std::size_t begin = 0;
    for (;;) {
        const std::size_t end = line.find('\t', begin);
        parts.push_back(line.substr(begin, end == std::string::npos ? end : end - begin));
        if (end == std::string::npos) return parts;
        begin = end + 1;
    }
}

Json Answer(const std::string& line) {
    static const std::map<std::string, Json (*)(const Arguments&)> questions = {
        {"windows", Windows}, {"input", Input},      {"interfaces", Interfaces}, {"read", ReadKey},
        {"keys", Subkeys},    {"write", WriteValue}, {"delete", Delete}};
    Arguments parts = Parts(line);
    const auto question = questions.find(parts.front());
    if (question == questions.end()) return Error("unknown question " + parts.front());
    parts.erase(parts.begin());
    return question->second(parts);
}

}  // namespace

}  // namespace corvane::test

int main() {
    std::string line;
    while (std::getline(std::cin, line)) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        std::cout << corvane::test::OneLine(corvane::test::Answer(line)) << std::endl;
    }
    return 0;
}
