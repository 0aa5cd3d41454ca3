#include "kiv/Regex.h"

#include <regex>

namespace kiv {

struct RegexProgram {
    std::wregex expression;
};

namespace {

// The engine recurses once per character; past the bound a text is not looked at.
bool withinBound(const String& text) { return text.length() <= Regex::MAX_TEXT_LENGTH; }

std::vector<String> groupsOf(const std::wsmatch& match) {
    std::vector<String> groups;
    for (const auto& group : match) groups.emplace_back(group.matched ? group.str() : L"");
    return groups;
}

}  // namespace

Regex::Regex(const CString& pattern, int flags) {
    auto syntax = std::regex_constants::ECMAScript;
    if (flags & CASE_INSENSITIVE) syntax |= std::regex_constants::icase;
    try {
        program_ = std::make_shared<const RegexProgram>(
            RegexProgram{std::wregex(pattern.toString().str(), syntax)});
    } catch (const std::regex_error& failure) {
        error_ = String::fromUtf8(failure.what());
        if (error_.isEmpty()) error_ = L"invalid regular expression";
    }
}

bool Regex::isValid() const { return program_ != nullptr; }

std::size_t Regex::groupCount() const { return program_ ? program_->expression.mark_count() : 0; }

Matcher Regex::matcher(const String& text) const { return Matcher(program_, text); }

Matcher::Matcher(std::shared_ptr<const RegexProgram> program, String text)
    : program_(std::move(program)), text_(std::move(text)) {}

bool Matcher::matches() {
    groups_.clear();
    std::wsmatch match;
    if (!program_ || !withinBound(text_) ||
        !std::regex_match(text_.str(), match, program_->expression))
        return false;
    groups_ = groupsOf(match);
    return true;
}

bool Matcher::find() {
    groups_.clear();
    std::wsmatch match;
    if (!program_ || !withinBound(text_) ||
        !std::regex_search(text_.str(), match, program_->expression))
        return false;
    groups_ = groupsOf(match);
    return true;
}

String Matcher::getGroup(std::size_t n) const { return n < groups_.size() ? groups_[n] : String(); }

std::size_t Matcher::groupCount() const { return program_ ? program_->expression.mark_count() : 0; }

}  // namespace kiv
