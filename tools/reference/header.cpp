#include "tools/reference/header.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <regex>
#include <stdexcept>

namespace reference {

namespace {

bool Matches(const std::string& line, const char* expression)
{
    return std::regex_search(line, std::regex(expression));
}

std::string FirstMatch(const std::string& text, const char* expression)
{
    std::smatch match;
    return std::regex_search(text, match, std::regex(expression)) ? match[1].str() : "";
}

// A comment's lines without its marks.
Text Uncommented(Text lines)
{
    static const std::regex marks(R"(^\s*/\*\s?|^ \*(?!/) ?|^   |\s*\*/$)");
    for (std::string& line : lines) {
        line = std::regex_replace(line, marks, "");
    }
    const auto isBlank = [](const std::string& line) { return line.empty(); };
    lines.erase(lines.begin(), std::find_if_not(lines.begin(), lines.end(), isBlank));
    lines.erase(std::find_if_not(lines.rbegin(), lines.rend(), isBlank).base(), lines.end());
    return lines;
}

Text Split(const Text& text, const std::string& firstSentence)
{
    std::string whole;
    for (const std::string& line : text) {
        whole += (whole.empty() ? "" : " ") + line;
    }
    const size_t rest = whole.find_first_not_of(' ', firstSentence.size());
    return rest == std::string::npos ? Text{} : Text{whole.substr(rest)};
}

class Reader {
public:
    explicit Reader(const std::string& path);
    Header Read();

private:
    bool AtEnd() const { return next_ == lines_.size(); }
    const std::string& Peek() const { return lines_[next_]; }
    Text TakeComment();
    void TakeComment(Text& above);
    Declaration TakeDeclaration();
    void SkipAssertion();

    Header header_;
    std::vector<std::string> lines_;
    size_t next_ = 0;
    std::string section_;
    Text rules_;
};

Reader::Reader(const std::string& path)
{
    const std::filesystem::path file(path);
    header_.include = file.parent_path().filename() / file.filename();
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        lines_.push_back(line);
    }
    if (lines_.empty() || !lines_[0].starts_with("/*")) {
        throw std::runtime_error(path + ": no introduction");
    }
}

Text Reader::TakeComment()
{
    Text lines;
    do {
        lines.push_back(lines_[next_++]);
    } while (!lines.back().ends_with("*/"));
    return Uncommented(lines);
}

// A comment that tells about what follows, or opens a section.
void Reader::TakeComment(Text& above)
{
    above = TakeComment();
    if (AtEnd() || Peek().empty()) {
        section_ = FirstSentence(above);
        rules_ = Split(above, section_);
        above.clear();
    }
}

void Reader::SkipAssertion()
{
    while (!lines_[next_++].ends_with(";")) {
    }
}

std::string NameIn(const Text& code)
{
    std::string whole;
    for (const std::string& line : code) {
        whole += line + " ";
    }
    for (const char* expression : {
             R"(^#define (\w+))",
             R"(^typedef .*\(\*(\w+)\)\()",     // pointer to function
             R"(^typedef struct .*\} (\w+);)",  // record
             R"(^typedef .* (\w+);)",
             R"(^struct (\w+) )",
             R"(^extern .* (\w+)(?:\[\w*\])?;)",
             R"((\w+)\()",
         }) {
        if (std::string name = FirstMatch(whole, expression); !name.empty()) {
            return name;
        }
    }
    throw std::runtime_error("no name in: " + whole);
}

Kind KindOf(const std::string& firstLine)
{
    return Matches(firstLine, "^#define")            ? Kind::Macro
           : Matches(firstLine, "^(typedef|struct)") ? Kind::Type
           : Matches(firstLine, "^extern")           ? Kind::Data
                                                     : Kind::Function;
}

Declaration Reader::TakeDeclaration()
{
    Declaration declaration;
    declaration.kind = KindOf(Peek());
    declaration.section = section_;
    declaration.rules = rules_;

    const bool macro = declaration.kind == Kind::Macro;
    int depth = 0;
    for (bool complete = false; !complete;) {
        std::string line = lines_[next_++];
        // Comments behind the members of a record are part of the code.
        const size_t comment = depth == 0 ? line.find(" /*") : std::string::npos;
        if (comment != std::string::npos) {
            lines_[--next_].erase(0, comment + 1);
            declaration.behind = TakeComment();
            line.erase(line.find_last_not_of(' ', comment) + 1);
        }
        declaration.code.push_back(line);
        const std::string bare = std::regex_replace(line, std::regex(R"(/\*.*|\s+$)"), "");
        depth += static_cast<int>(std::count(bare.begin(), bare.end(), '{'));
        depth -= static_cast<int>(std::count(bare.begin(), bare.end(), '}'));
        complete =
            macro ? !bare.ends_with('\\') : depth == 0 && (bare.ends_with(';') || bare == "}");
    }
    declaration.name = NameIn(declaration.code);
    return declaration;
}

Header Reader::Read()
{
    header_.introduction = TakeComment();
    Text above;
    while (!AtEnd()) {
        const std::string& line = Peek();
        if (line.starts_with("/*")) {
            TakeComment(above);
        } else if (Matches(line, "^(static_assert|QRB_RECORD_SIZE|QRB_FIELD_AT)\\b")) {
            SkipAssertion();
        } else if (line.empty() || line == "extern \"C\" {" || line == "}" ||
                   (line.starts_with("#") && !Matches(line, R"(^#define \w+[ (])"))) {
            above = line.empty() ? Text{} : above;
            ++next_;
        } else {
            header_.declarations.push_back(TakeDeclaration());
            header_.declarations.back().above = above;
        }
    }
    return header_;
}

}  // namespace

std::string Header::Family() const
{
    return std::filesystem::path(include).stem();
}

std::string Header::Title() const
{
    return FirstSentence(introduction);
}

Header ReadHeader(const std::string& path)
{
    return Reader(path).Read();
}

std::string FirstSentence(const Text& text)
{
    std::string sentence;
    for (const std::string& line : text) {
        if (line.empty()) {
            break;
        }
        sentence += (sentence.empty() ? "" : " ") + line;
        const size_t end = (sentence + " ").find(". ");
        if (end != std::string::npos) {
            return sentence.substr(0, end + 1);
        }
    }
    return sentence;
}

std::vector<Block> Blocks(const Text& text)
{
    static const std::regex item(R"(^(\w+)  +(.*))");
    static const std::regex bullet("^ *- (.*)");
    std::vector<Block> blocks;
    bool afterBlank = true;
    for (const std::string& line : text) {
        const size_t indent = line.find_first_not_of(' ');
        const bool inCode = !blocks.empty() && blocks.back().kind == Block::Kind::Code;
        std::smatch match;
        if (indent == std::string::npos) {
            afterBlank = true;
            continue;
        }
        if (indent >= 4 && (afterBlank || inCode)) {
            if (!inCode) {
                blocks.push_back({Block::Kind::Code, "", {}});
            } else if (afterBlank) {
                blocks.back().lines.emplace_back();
            }
            blocks.back().lines.push_back(line);
        } else if (std::regex_search(line, match, item)) {
            blocks.push_back({Block::Kind::Item, match[1], {match[2]}});
        } else if (std::regex_search(line, match, bullet)) {
            blocks.push_back({Block::Kind::Bullet, "", {match[1]}});
        } else if (afterBlank || (indent == 0 && blocks.back().kind != Block::Kind::Paragraph)) {
            blocks.push_back({Block::Kind::Paragraph, "", {line}});
        } else {
            blocks.back().lines.push_back(line.substr(indent));
        }
        afterBlank = false;
    }
    return blocks;
}

Text WholeText(const Declaration& declaration)
{
    Text text;
    for (const Text* part : {&declaration.above, &declaration.behind, &declaration.rules}) {
        if (!text.empty() && !part->empty()) {
            text.emplace_back();
        }
        text.insert(text.end(), part->begin(), part->end());
    }
    if (text.empty()) {
        text.push_back(declaration.section);
    }
    return text;
}

}  // namespace reference
