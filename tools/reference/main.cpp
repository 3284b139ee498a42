// What the public headers say, for Doxygen and as manual pages.
//
//   reference doxygen HEADER                              the header, rewritten, to standard output
//   reference manual DIRECTORY VERSION MAP HEADERS...     pages, once every exported name has a
//   text
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>
#include <stdexcept>

#include "tools/reference/doxygen.h"
#include "tools/reference/manual.h"

namespace {

std::set<std::string> ExportedNames(const std::string& map)
{
    std::set<std::string> names;
    std::ifstream stream(map);
    const std::regex entry(R"(^ +(\w+);)");
    for (std::string line; std::getline(stream, line);) {
        std::smatch match;
        if (std::regex_search(line, match, entry)) {
            names.insert(match[1]);
        }
    }
    return names;
}

void CheckAllDocumented(std::set<std::string> names, const std::vector<reference::Header>& headers)
{
    for (const reference::Header& header : headers) {
        for (const reference::Declaration& declaration : header.declarations) {
            const reference::Text text = reference::WholeText(declaration);
            if (!text.empty() && !text[0].empty()) {
                names.erase(declaration.name);
            }
        }
    }
    if (!names.empty()) {
        std::string message = "exported, but no header tells about:";
        for (const std::string& name : names) {
            message += " " + name;
        }
        throw std::runtime_error(message);
    }
}

void Run(const std::vector<std::string>& arguments)
{
    if (arguments.size() == 2 && arguments[0] == "doxygen") {
        reference::WriteForDoxygen(std::cout, reference::ReadHeader(arguments[1]));
    } else if (arguments.size() > 4 && arguments[0] == "manual") {
        std::vector<reference::Header> headers;
        for (size_t i = 4; i < arguments.size(); ++i) {
            headers.push_back(reference::ReadHeader(arguments[i]));
        }
        CheckAllDocumented(ExportedNames(arguments[3]), headers);
        std::filesystem::create_directories(arguments[1]);
        reference::WriteManual(arguments[1], arguments[2], headers);
    } else {
        throw std::runtime_error("usage: see the top of tools/reference/main.cpp");
    }
}

}  // namespace

int main(int count, char** arguments)
{
    try {
        Run({arguments + 1, arguments + count});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "reference: %s\n", error.what());
        return 1;
    }
    return 0;
}
