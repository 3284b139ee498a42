// Where a JSON object or array ends, in text that arrives piece by piece.
#pragma once

namespace sources {

class JsonExtent {
public:
    // Takes the next character, from the opening bracket on. True for the bracket that closes it.
    bool Next(char c);

    // Brackets that are open; negative after a closing one without an opening one.
    int Depth() const { return depth_; }
    bool IsInString() const { return inString_; }

private:
    int depth_ = 0;
    bool inString_ = false;
    bool escaped_ = false;
};

}  // namespace sources
