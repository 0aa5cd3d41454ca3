// The library's exception types: their messages, and that a catcher by type sees exactly its
// own class.
#include <gtest/gtest.h>

#include <functional>
#include <string>
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

TEST(Exceptions, EachBuildsItsMessageAndIsCaughtOnlyAsItselfOrTheCommonBase) {
    for (std::size_t i = 0; i < std::size(kTextThrowers); ++i) {
        SCOPED_TRACE(i);
        try {
            kTextThrowers[i].raise();
            ADD_FAILURE() << "nothing thrown";
        } catch (const kiv::Exception& caught) {
            EXPECT_EQ(caught.getMessage(), kiv::String(kTextThrowers[i].message));
        }
        std::vector<bool> expected(std::size(kTextThrowers), false);
        expected[i] = true;
        EXPECT_EQ(catchersThatCatch(AllExceptions{}, kTextThrowers[i].raise), expected);
    }
}

}  // namespace
