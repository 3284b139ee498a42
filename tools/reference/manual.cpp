#include "tools/reference/manual.h"

#include <fstream>
#include <map>
#include <regex>
#include <set>

namespace reference {

namespace {

bool HasPage(const Declaration& declaration)
{
    return (declaration.kind == Kind::Function || declaration.kind == Kind::Data) &&
           !declaration.code[0].starts_with("static ");
}

std::string FamilyPage(const Header& header)
{
    return std::filesystem::path(header.include).parent_path().string() + "_" + header.Family();
}

// Text that roff takes as it stands.
std::string Escaped(const std::string& line)
{
    std::string escaped = line.starts_with('.') || line.starts_with('\'') ? "\\&" : "";
    for (const char character : line) {
        escaped += character == '\\' ? "\\e" : character == '-' ? "\\-" : std::string(1, character);
    }
    return escaped;
}

class Page {
public:
    Page(const std::filesystem::path& directory, const std::string& name, int section,
         const std::string& summary, const std::string& version)
        : out_(directory / (name + "." + std::to_string(section)))
    {
        out_ << ".TH " << name << ' ' << section << " \"\" \"tarnd_qrb " << version
             << "\" \"tarnd_qrb\"\n.nh\n.ad l\n";
        Section("NAME");
        out_ << name << " \\- " << Escaped(summary) << '\n';
    }

    void Section(const std::string& title) { out_ << ".SH " << title << '\n'; }

    void Code(const Text& lines)
    {
        out_ << ".nf\n";
        for (const std::string& line : lines) {
            out_ << Escaped(line) << '\n';
        }
        out_ << ".fi\n";
    }

    void Paragraph() { out_ << ".PP\n"; }

    void Prose(const Text& text)
    {
        for (const Block& block : Blocks(text)) {
            switch (block.kind) {
                case Block::Kind::Code:
                    Paragraph();
                    Code(block.lines);
                    continue;
                case Block::Kind::Paragraph:
                    Paragraph();
                    break;
                case Block::Kind::Item:
                    out_ << ".TP\n.B " << block.name << '\n';
                    break;
                case Block::Kind::Bullet:
                    out_ << ".IP \\(bu 2\n";
                    break;
            }
            for (const std::string& line : block.lines) {
                out_ << Escaped(line) << '\n';
            }
        }
    }

    // As it is declared, and what is told about it.
    void Declare(const Declaration& declaration)
    {
        Paragraph();
        Code(declaration.code);
        out_ << ".RS\n";
        Prose(declaration.above);
        Prose(declaration.behind);
        out_ << ".RE\n";
    }

    void Item(const std::string& page, int section, const std::string& text)
    {
        out_ << ".TP\n.BR " << page << " (" << section << ")\n" << Escaped(text) << '\n';
    }

    void SeeAlso(const std::vector<std::string>& pages)
    {
        Section("SEE ALSO");
        for (size_t i = 0; i < pages.size(); ++i) {
            out_ << ".BR " << pages[i] << " (" << (pages[i].starts_with("tarnd_") ? 7 : 3) << ')'
                 << (i + 1 < pages.size() ? "," : "") << '\n';
        }
    }

private:
    std::ofstream out_;
};

class Manual {
public:
    Manual(const std::filesystem::path& directory, const std::string& version,
           const std::vector<Header>& headers)
        : directory_(directory), version_(version), headers_(headers)
    {
        for (const Header& header : headers) {
            for (const Declaration& declaration : header.declarations) {
                if (declaration.kind == Kind::Type) {
                    types_[declaration.name] = &declaration;
                }
            }
        }
    }

    void Write() const
    {
        for (const Header& header : headers_) {
            WriteFamily(header);
            for (const Declaration& declaration : header.declarations) {
                if (HasPage(declaration)) {
                    WriteDeclaration(header, declaration);
                }
            }
        }
    }

private:
    void WriteFamily(const Header& header) const
    {
        Page page(directory_, FamilyPage(header), 7, header.Title(), version_);
        page.Section("SYNOPSIS");
        page.Code({"#include <" + header.include + ">"});
        page.Section("DESCRIPTION");
        page.Prose(header.introduction);
        page.Section("FUNCTIONS AND DATA");
        for (const Declaration& declaration : header.declarations) {
            if (HasPage(declaration)) {
                page.Item(declaration.name, 3, FirstSentence(WholeText(declaration)));
            }
        }
        page.Section("TYPES AND CONSTANTS");
        for (const Declaration& declaration : header.declarations) {
            if (!HasPage(declaration)) {
                page.Declare(declaration);
            }
        }
        page.SeeAlso({"tarnd_qrb"});
    }

    void WriteDeclaration(const Header& header, const Declaration& declaration) const
    {
        Page page(directory_, declaration.name, 3, FirstSentence(WholeText(declaration)), version_);
        page.Section("SYNOPSIS");
        Text synopsis = {"#include <" + header.include + ">", ""};
        synopsis.insert(synopsis.end(), declaration.code.begin(), declaration.code.end());
        page.Code(synopsis);
        page.Section("DESCRIPTION");
        page.Prose(WholeText(declaration));
        WriteTypes(page, declaration);
        page.Section("IN COMMON WITH ITS FAMILY");
        page.Prose(header.introduction);

        page.SeeAlso({FamilyPage(header), "tarnd_qrb"});
    }

    // The types that a declaration names, as they are declared.
    void WriteTypes(Page& page, const Declaration& declaration) const
    {
        static const std::regex word("\\w+");
        std::set<std::string> shown;
        for (const std::string& line : declaration.code) {
            for (std::sregex_iterator match(line.begin(), line.end(), word), end; match != end;
                 ++match) {
                const auto type = types_.find(match->str());
                if (type == types_.end() || !shown.insert(type->first).second) {
                    continue;
                }
                if (shown.size() == 1) {
                    page.Section("TYPES");
                }
                page.Declare(*type->second);
            }
        }
    }

    std::filesystem::path directory_;
    std::string version_;
    const std::vector<Header>& headers_;
    std::map<std::string, const Declaration*> types_;
};

}  // namespace

void WriteManual(const std::filesystem::path& directory, const std::string& version,
                 const std::vector<Header>& headers)
{
    Manual(directory, version, headers).Write();
}

}  // namespace reference
