// quel5::TestResult: the outcome of a test as the framework knows it. A small value type.
#pragma once

#include <string_view>

namespace quel5 {

class TestResult {
public:
    enum class Code {
        PASS,
        FAIL,
        WARN,
        BADPARAMS,
        USERABORTED,
        INTERNALERROR,
        NODEVICE,
        NOTSUPPORTED,
        DEVICEBUSY,
        CANNOTRUN,
        TIMEDOUT,
        INCORRECTMEDIA,
        NOMEDIA
    };

    constexpr TestResult() = default;  // PASS
    constexpr explicit TestResult(Code code) : code_(code) {}

    static const TestResult PASS, FAIL, WARN, BADPARAMS, USERABORTED, INTERNALERROR, NODEVICE,
        NOTSUPPORTED, DEVICEBUSY, CANNOTRUN, TIMEDOUT, INCORRECTMEDIA, NOMEDIA;

    constexpr Code code() const { return code_; }
    constexpr bool operator==(const TestResult& other) const { return code_ == other.code_; }
    constexpr bool operator!=(const TestResult& other) const { return code_ != other.code_; }

    // "PASS", "FAIL", ...: the value's own name.
    constexpr std::string_view name() const {
        constexpr std::string_view names[] = {
            "PASS",          "FAIL",           "WARN",         "BADPARAMS",  "USERABORTED",
            "INTERNALERROR", "NODEVICE",       "NOTSUPPORTED", "DEVICEBUSY", "CANNOTRUN",
            "TIMEDOUT",      "INCORRECTMEDIA", "NOMEDIA"};
        return names[static_cast<int>(code_)];
    }

private:
    Code code_ = Code::PASS;
};

inline constexpr TestResult TestResult::PASS{Code::PASS};
inline constexpr TestResult TestResult::FAIL{Code::FAIL};
inline constexpr TestResult TestResult::WARN{Code::WARN};
inline constexpr TestResult TestResult::BADPARAMS{Code::BADPARAMS};
inline constexpr TestResult TestResult::USERABORTED{Code::USERABORTED};
inline constexpr TestResult TestResult::INTERNALERROR{Code::INTERNALERROR};
inline constexpr TestResult TestResult::NODEVICE{Code::NODEVICE};
inline constexpr TestResult TestResult::NOTSUPPORTED{Code::NOTSUPPORTED};
inline constexpr TestResult TestResult::DEVICEBUSY{Code::DEVICEBUSY};
inline constexpr TestResult TestResult::CANNOTRUN{Code::CANNOTRUN};
inline constexpr TestResult TestResult::TIMEDOUT{Code::TIMEDOUT};
inline constexpr TestResult TestResult::INCORRECTMEDIA{Code::INCORRECTMEDIA};
inline constexpr TestResult TestResult::NOMEDIA{Code::NOMEDIA};

}  // namespace quel5
