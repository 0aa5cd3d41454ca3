// quel5::DataType (the type of a parameter or value) and quel5::ParameterSource (where a
// parameter's value came from).
#pragma once

#include <string_view>

namespace quel5 {

class DataType {
public:
    enum class Kind {
        NONE,
        UINT32,
        UINT64,
        INT64,
        PERCENT,
        BOOLEAN,
        STRING,
        UINT32_ARRAY,
        STRING_ARRAY
    };

    constexpr DataType() = default;
    constexpr explicit DataType(Kind kind) : kind_(kind) {}
    static const DataType UINT32, PERCENT, BOOLEAN, STRING;

    constexpr Kind kind() const { return kind_; }
    constexpr bool operator==(const DataType& other) const { return kind_ == other.kind_; }
    constexpr bool operator!=(const DataType& other) const { return kind_ != other.kind_; }

private:
    Kind kind_ = Kind::NONE;
};

inline constexpr DataType DataType::UINT32{Kind::UINT32};
inline constexpr DataType DataType::PERCENT{Kind::PERCENT};
inline constexpr DataType DataType::BOOLEAN{Kind::BOOLEAN};
inline constexpr DataType DataType::STRING{Kind::STRING};

class ParameterSource {
public:
    enum class Kind { NOTSET, HOST };

    constexpr ParameterSource() = default;
    constexpr explicit ParameterSource(Kind kind) : kind_(kind) {}
    static constexpr ParameterSource NOTSET() { return ParameterSource(Kind::NOTSET); }
    static constexpr ParameterSource HOST() { return ParameterSource(Kind::HOST); }

    constexpr bool operator==(const ParameterSource& other) const { return kind_ == other.kind_; }
    constexpr bool operator!=(const ParameterSource& other) const { return kind_ != other.kind_; }

private:
    Kind kind_ = Kind::NOTSET;
};

}  // namespace quel5
