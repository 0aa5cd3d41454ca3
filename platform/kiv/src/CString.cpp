#include "kiv/CString.h"

#include <cstring>

#include "kiv/String.h"

namespace kiv {
namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

// The text of a byte string in the C sense: everything before the first zero byte.
std::string_view textOf(const std::string& bytes) {
    return std::string_view(bytes.data(), std::strlen(bytes.c_str()));
}

}  // namespace

CString::CString(const char* text) : bytes_(text ? text : "") {}

CString::CString(std::string bytes) : bytes_(std::move(bytes)) {}

CString::CString(const char* data, std::size_t size)
    : bytes_(data ? std::string(data, size) : "") {}

String CString::toString() const { return String::fromUtf8(bytes_); }

CString CString::trim() const {
    std::size_t begin = 0;
    std::size_t end = bytes_.size();
    while (begin < end && isBlank(bytes_[begin])) ++begin;
    while (end > begin && isBlank(bytes_[end - 1])) --end;
    return CString(bytes_.substr(begin, end - begin));
}

bool CString::directMatch(const CString& other) const {
    return textOf(bytes_) == textOf(other.bytes_);
}

int CString::compare(const CString& other) const {
    const int order = bytes_.compare(other.bytes_);
    return order < 0 ? -1 : (order > 0 ? 1 : 0);
}

CString& CString::operator+=(const CString& other) {
    bytes_ += other.bytes_;
    return *this;
}

CString operator+(const CString& a, const CString& b) {
    CString sum = a;
    sum += b;
    return sum;
}

}  // namespace kiv
