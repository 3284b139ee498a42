// A public header as its reader sees it: an introduction, and declarations with what is told about
// them.
//
//  - The first comment introduces the header; its first sentence is the family's title.
//  - A comment with a blank line behind it opens a section: its first sentence is the title, the
//    rest holds for every declaration up to the next section.
//  - A comment right above declarations tells about all of them, up to a blank line or comment.
//  - A comment behind a declaration tells about that one.
#pragma once

#include <string>
#include <vector>

namespace reference {

// Lines without the comment's own marks; empty ones separate paragraphs.
using Text = std::vector<std::string>;

enum class Kind { Function, Data, Type, Macro };

struct Declaration {
    Kind kind = Kind::Macro;
    std::string name;
    Text code;    // without the comment behind it
    Text above;   // the comment above
    Text behind;  // the comment behind
    std::string section;
    Text rules;  // what holds for the whole section
};

struct Header {
    std::string include;  // "tarnd_qrb/vlan.h"
    Text introduction;
    std::vector<Declaration> declarations;

    std::string Family() const;  // "vlan"
    std::string Title() const;
};

// Throws std::runtime_error where the header can't be read or isn't of that form.
Header ReadHeader(const std::string& path);

std::string FirstSentence(const Text& text);

// What a text is made of: paragraphs, items ("name  what it is"), bullets, and code, which is what
// a paragraph of its own indents by four.
struct Block {
    enum class Kind { Paragraph, Item, Bullet, Code };
    Kind kind;
    std::string name;  // of an item
    Text lines;
};
std::vector<Block> Blocks(const Text& text);

// Everything told about a declaration, the section's rules last.
Text WholeText(const Declaration& declaration);

}  // namespace reference
