#include "tools/reference/doxygen.h"

#include <algorithm>
#include <regex>

namespace reference {

namespace {

// A line of prose, with what Doxygen would take for markup made harmless.
std::string Escaped(const std::string& line)
{
    return std::regex_replace(line, std::regex(R"([*<>\\@#%])"), R"(\$&)");
}

void WriteText(std::ostream& out, const Text& text)
{
    for (const Block& block : Blocks(text)) {
        const bool code = block.kind == Block::Kind::Code;
        out << " *" << (code ? "\n * @code" : "")
            << (block.kind == Block::Kind::Item ? "\n * @param " + block.name : "")
            << (block.kind == Block::Kind::Bullet ? "\n * -" : "") << '\n';
        for (const std::string& line : block.lines) {
            out << " *   " << (code ? line.substr(std::min<size_t>(4, line.size())) : Escaped(line))
                << '\n';
        }
        out << (code ? " * @endcode\n" : "");
    }
}

void OpenSection(std::ostream& out, const Declaration& declaration)
{
    out << "/** @name " << Escaped(declaration.section) << "\n";
    WriteText(out, declaration.rules);
    out << " * @{ */\n";
}

void WriteDeclaration(std::ostream& out, const Declaration& declaration)
{
    out << "/**\n";
    WriteText(out, declaration.above);
    out << " *\n";
    WriteText(out, declaration.behind);
    out << " */\n";
    for (const std::string& line : declaration.code) {
        out << std::regex_replace(line, std::regex(R"((\S.*)/\* )"), "$1/**< ") << '\n';
    }
}

}  // namespace

void WriteForDoxygen(std::ostream& out, const Header& header)
{
    out << "/** @file " << header.include << '\n';
    WriteText(out, header.introduction);
    out << " */\n";
    std::string section;
    for (const Declaration& declaration : header.declarations) {
        if (declaration.section != section) {
            out << (section.empty() ? "" : "/** @} */\n");
            section = declaration.section;
            OpenSection(out, declaration);
        }
        WriteDeclaration(out, declaration);
    }
    out << (section.empty() ? "" : "/** @} */\n");
}

}  // namespace reference
