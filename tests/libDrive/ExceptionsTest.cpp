// The library's exception types: their messages, the numbers they carry, and that a catcher
// by type sees exactly its own class.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "libDrive/Exceptions.h"

namespace {

using namespace kivrlibdrive;

template <typename... Types>
struct TypeList {};

// In the same order as kTextThrowers below.
using AllExceptions =
    TypeList<InvalidDrive, InvalidHandle, InvalidSector, InvalidRange, InvalidBufferSize,
             InvalidDriveGeometry, InvalidTestInitialization, WindowsDriveError, InvalidPattern,
             SectorReadFailure, SectorWriteFailure, SectorSeekFailure, DriveError,
             MediaWriteProtected, UnknownError, NoMediaPresent, UserAborted, InternalException,
             EjectError, TestFailedException, InvalidMediaException, FailedRetrivingADIPInfo,
             FailedReadingTrackInformation, FailedSettingDriveSpeed, WriteFailedException,
             ReadFailedException, FailedRetrivingATIPInfo, FailedClosingTrack, FailedClosingSession,
             FailedStoppingBGFormat, PromptDisabled, CannotRun, FailedGettingCurrentProfile,
             WrongMediaTypeReturned, TimedOutException>;

struct TextRow {
    std::function<void()> raise;
    const wchar_t* message;
};

const TextRow kTextThrowers[] = {
    {[] { throw InvalidDrive(L"x"); }, L"Invalid Drive : x"},
    {[] { throw InvalidHandle(L"x"); }, L"Invalid Handle : x"},
    {[] { throw InvalidSector(L"x"); }, L" Invalid Sector: x"},
    {[] { throw InvalidRange(L"x"); }, L" Invalid Range: x"},
    {[] { throw InvalidBufferSize(L"x"); }, L" Invalid Buffer Size: x"},
    {[] { throw InvalidDriveGeometry(L"x"); }, L" Invalid Drive Geometry: x"},
    {[] { throw InvalidTestInitialization(L"x"); }, L" Invalid Test Initialization: x"},
    {[] { throw WindowsDriveError(L"x"); }, L" Drive Error: x"},
    {[] { throw InvalidPattern(L"x"); }, L" Invalid Pattern: x"},
    {[] { throw SectorReadFailure(L"x"); }, L" Sector Read Failure: x"},
    {[] { throw SectorWriteFailure(L"x"); }, L" Sector Write Failure: x"},
    {[] { throw SectorSeekFailure(L"x"); }, L" Sector Seek Failure: x"},
    {[] { throw DriveError(L"x"); }, L" Drive Failure: x"},
    {[] { throw MediaWriteProtected(L"x"); }, L" Write protected media: x"},
    {[] { throw UnknownError(L"x"); }, L" Unknown Error: x"},
    {[] { throw NoMediaPresent(L""); }, L" No media present: "},
    {[] { throw UserAborted(L"stopped"); }, L"stopped"},
    {[] { throw InternalException(L"t"); }, L"t"},
    {[] { throw EjectError(L"t"); }, L"t"},
    {[] { throw TestFailedException(L"t"); }, L"t"},
    {[] { throw InvalidMediaException(L"t"); }, L"t"},
    {[] { throw FailedRetrivingADIPInfo(L"t"); }, L"t"},
    {[] { throw FailedReadingTrackInformation(L"t"); }, L"t"},
    {[] { throw FailedSettingDriveSpeed(L"t"); }, L"t"},
    {[] { throw WriteFailedException(L"t"); }, L"t"},
    {[] { throw ReadFailedException(L"t"); }, L"t"},
    {[] { throw FailedRetrivingATIPInfo(L"t"); }, L"t"},
    {[] { throw FailedClosingTrack(L"t"); }, L"t"},
    {[] { throw FailedClosingSession(L"t"); }, L"t"},
    {[] { throw FailedStoppingBGFormat(L"t"); }, L"t"},
    {[] { throw PromptDisabled(L" t "); }, L" t "},
    {[] { throw CannotRun(L""); }, L""},
    {[] { throw FailedGettingCurrentProfile(L"t"); }, L"t"},
    {[] { throw WrongMediaTypeReturned(L"t"); }, L"t"},
    {[] { throw TimedOutException(L"t"); }, L"t"},
};

template <typename T>
bool caughtAs(const std::function<void()>& raise) {
    try {
        raise();
    } catch (const T&) {
        return true;
    } catch (...) {
        return false;
    }
    return false;
}

template <typename... Types>
std::vector<bool> catchersThatCatch(TypeList<Types...>, const std::function<void()>& raise) {
    return {caughtAs<Types>(raise)...};
}

TEST(Exceptions, TextConstructorsBuildTheMessageCaughtAsTheCommonBase) {
    ASSERT_EQ(std::size(kTextThrowers), 35u);
    for (std::size_t i = 0; i < std::size(kTextThrowers); ++i) {
        SCOPED_TRACE(i);
        try {
            kTextThrowers[i].raise();
            ADD_FAILURE() << "nothing thrown";
        } catch (const kiv::Exception& caught) {
            EXPECT_EQ(caught.getMessage(), kiv::String(kTextThrowers[i].message));
        }
    }
}

TEST(Exceptions, EachCatcherCatchesOnlyItsOwnClass) {
    for (std::size_t i = 0; i < std::size(kTextThrowers); ++i) {
        SCOPED_TRACE(i);
        std::vector<bool> expected(std::size(kTextThrowers), false);
        expected[i] = true;
        EXPECT_EQ(catchersThatCatch(AllExceptions{}, kTextThrowers[i].raise), expected);
    }
}

struct CodedRow {
    const char* name;
    // Builds the exception from numbers and answers its message and accessor values in order.
    std::function<std::pair<kiv::String, std::vector<uint64_t>>()> build;
    std::vector<uint64_t> expected;
};

template <typename T>
std::pair<kiv::String, std::vector<uint64_t>> statusOf(unsigned int status) {
    const T built(status);
    const T copy(built);  // the numbers travel with copies, as catchers receive them
    return {copy.getMessage(), {copy.getStatus()}};
}

TEST(Exceptions, CodeConstructorsKeepTheirNumbersAndLeaveTheMessageEmpty) {
    const CodedRow rows[] = {
        {"EjectError", [] { return statusOf<EjectError>(0x1234); }, {0x1234}},
        {"TestFailedException", [] { return statusOf<TestFailedException>(0xAB01); }, {0xAB01}},
        {"FailedRetrivingATIPInfo", [] { return statusOf<FailedRetrivingATIPInfo>(7); }, {7}},
        {"FailedClosingTrack",
         [] { return statusOf<FailedClosingTrack>(0xFFFFFFFF); },
         {0xFFFFFFFF}},
        {"FailedClosingSession", [] { return statusOf<FailedClosingSession>(0x2400); }, {0x2400}},
        {"FailedStoppingBGFormat", [] { return statusOf<FailedStoppingBGFormat>(1); }, {1}},
        {"FailedGettingCurrentProfile",
         [] { return statusOf<FailedGettingCurrentProfile>(0); },
         {0}},
        {"FailedSettingDriveSpeed",
         [] {
             const FailedSettingDriveSpeed e(24, 16);
             return std::pair{e.getMessage(),
                              std::vector<uint64_t>{e.getDesiredSpeed(), e.getActualSpeed()}};
         },
         {24, 16}},
        {"ReadFailedException",
         [] {
             const ReadFailedException e(0x100000000ull, 5);
             return std::pair{e.getMessage(),
                              std::vector<uint64_t>{e.getSectorNumber(), e.getErrorCode()}};
         },
         {0x100000000ull, 5}},
        {"WriteFailedException",
         [] {
             const WriteFailedException e(0xFFFFFFFFFFFFFFFFull, 0x3100);
             return std::pair{e.getMessage(),
                              std::vector<uint64_t>{e.getSectorNumber(), e.getErrorCode()}};
         },
         {0xFFFFFFFFFFFFFFFFull, 0x3100}},
    };
    for (const CodedRow& row : rows) {
        SCOPED_TRACE(row.name);
        const auto [message, numbers] = row.build();
        EXPECT_TRUE(message.isEmpty());
        EXPECT_EQ(numbers, row.expected);
    }
}

}  // namespace
