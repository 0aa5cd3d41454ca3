// kiv::Regex and kiv::Matcher: regular expressions with ECMAScript syntax.
//
// A pattern that does not compile never throws: isValid() answers false, getError() says why,
// and every Matcher made from it fails to match.
//
// Bounded input: the engine underneath (the standard library's) goes one call deeper on the
// stack for every character it consumes, about half a kibibyte per character for patterns like
// the range texts'. A text longer than Regex::MAX_TEXT_LENGTH characters (wchar_t units) is
// therefore never matched: matches() and find() answer false without looking at it. At that
// length a match stays below 128 KiB of stack, well inside a 1 MiB thread stack.
#pragma once

#include <memory>
#include <vector>

#include "kiv/CString.h"
#include "kiv/Export.h"
#include "kiv/String.h"

namespace kiv {

class Matcher;
struct RegexProgram;  // the compiled pattern, shared by a Regex and its matchers

class KIV_API Regex {
public:
    // Flags, combined with "|"; 0 is the plain case-sensitive ECMAScript syntax.
    static constexpr int CASE_INSENSITIVE = 1;
    // The longest text a matcher looks at; longer texts never match.
    static constexpr std::size_t MAX_TEXT_LENGTH = 256;

    // `pattern` is UTF-8.
    explicit Regex(const CString& pattern, int flags = 0);

    bool isValid() const;
    const String& getError() const { return error_; }  // empty when valid
    // Number of capturing groups of the pattern; 0 when invalid.
    std::size_t groupCount() const;

    // A matcher over a copy of `text`; it keeps the compiled pattern alive itself.
    Matcher matcher(const String& text) const;

private:
    std::shared_ptr<const RegexProgram> program_;
    String error_;
};

class KIV_API Matcher {
public:
    // True when the pattern matches the whole text. False for a text longer than
    // Regex::MAX_TEXT_LENGTH.
    bool matches();
    // True when the pattern matches somewhere in the text (the first such place). False for a
    // text longer than Regex::MAX_TEXT_LENGTH.
    bool find();

    // Group `n` of the last successful matches() or find(): 0 is the whole match, 1.. the
    // capturing groups. "" when there was no match, for a group that took no part in it and
    // for n > groupCount().
    String getGroup(std::size_t n) const;
    std::size_t groupCount() const;

private:
    friend class Regex;
    Matcher(std::shared_ptr<const RegexProgram> program, String text);
    std::shared_ptr<const RegexProgram> program_;
    String text_;
    std::vector<String> groups_;
};

}  // namespace kiv
