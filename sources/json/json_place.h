// Positions in the text of a JSON file.
#pragma once

#include <cstddef>
#include <iterator>
#include <streambuf>
#include <string>

#include "sources/json/json_error.h"

namespace sources {

// Both are counted from 1; columns are bytes.
struct TextPlace {
    size_t line = 1;
    size_t column = 1;
};

// Counts lines and columns while the parser reads the text.
class PlacedText {
public:
    class Iterator;

    explicit PlacedText(std::streambuf& text) : text_(text) {}

    // Where the current token begins. The parser reads one character past a number, so the next
    // token begins with the first character after EndToken that can begin one.
    TextPlace TokenBegin() const { return begin_; }
    void EndToken() { awaitsToken_ = true; }

    bool AtEnd() { return text_.sgetc() == std::streambuf::traits_type::eof(); }
    char Front() { return static_cast<char>(text_.sgetc()); }
    void Advance();

private:
    std::streambuf& text_;
    TextPlace next_;
    TextPlace begin_;
    bool awaitsToken_ = true;
};

// An input iterator over the text; a default one is the end.
class PlacedText::Iterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    Iterator() = default;
    explicit Iterator(PlacedText& text) : text_(&text) {}

    char operator*() const { return text_->Front(); }
    Iterator& operator++()
    {
        text_->Advance();
        return *this;
    }
    Iterator operator++(int)
    {
        const Iterator before = *this;
        ++*this;
        return before;
    }
    // Equal if both are at the end.
    bool operator==(const Iterator& other) const { return IsEnd() == other.IsEnd(); }

private:
    bool IsEnd() const { return text_ == nullptr || text_->AtEnd(); }

    PlacedText* text_ = nullptr;
};

// Number of the value with this path among the values of a document, counted in the order of their
// begins; the document itself is 0. If there is no such value, the innermost one that is there.
size_t ValueNumber(const Json& document, const std::string& path);

}  // namespace sources
