#include "checksum/MediumDrive.h"

#include <memory>
#include <utility>

#include "quel5/DiagModule.h"
#include "quel5/MessageBox2.h"

namespace host {

using quel5::TestResult;

MediumDrive::MediumDrive(const quel5::DiagDevice& diagDevice,
                         kivrlibdrive::CChecksumTest::ChecksumParameters parameters,
                         std::string location)
    : Drive(diagDevice), parameters_(std::move(parameters)), location_(std::move(location)) {}

TestResult MediumDrive::ReadSectors(const uint64_t&, unsigned int, void*, unsigned int) {
    return TestResult::NOTSUPPORTED;
}

TestResult MediumDrive::WriteSectors(const uint64_t&, unsigned int, const void*, unsigned int) {
    return TestResult::NOTSUPPORTED;
}

TestResult MediumDrive::VerifySectors(const uint64_t&, unsigned int) {
    return TestResult::NOTSUPPORTED;
}

TestResult MediumDrive::FlushCache() { return TestResult::NOTSUPPORTED; }

uint32_t MediumDrive::GetSectorsPerTrack() { return 0; }

uint32_t MediumDrive::GetBytesPerSector() { return 0; }

uint64_t MediumDrive::GetTotalSectors() { return 0; }

TestResult MediumDrive::PrepareRead() { return TestResult::NOTSUPPORTED; }

TestResult MediumDrive::OpenDevice() { return TestResult::PASS; }

TestResult MediumDrive::CloseDevice() { return TestResult::PASS; }

bool MediumDrive::IsWriteProtected() { return true; }

// Nothing is held open: the files are opened by name. Any valid-looking handle will do.
void* MediumDrive::GetHandle() { return this; }

bool MediumDrive::NeedsMediaCheck() { return true; }

// Whether the right medium is in is what the file search finds out.
TestResult MediumDrive::CheckMedia(bool) { return TestResult::PASS; }

bool MediumDrive::IsRerunAllowed() { return false; }

bool MediumDrive::ConfirmRerun() { return false; }

TestResult MediumDrive::PromptUserOnUnqualifiedMedia() {
    ++prompts_;
    const std::string name = parameters_.mediaName.toUtf8();
    const std::string message = "Insert the test medium \"" + name + "\" (" + location_ +
                                ") and press OK, or cancel the test.";
    const std::unique_ptr<quel5::MessageBox2> box(quel5::DiagModule::createMessageBox2(
        QuelString(message.c_str()), QuelString("Insert the test medium"), 0,
        quel5::MessageBox2_Options(0), 0, true));
    if (!box || !box->display()) {
        return TestResult::USERABORTED;
    }
    box->wait(0);
    return box->getReturn() == quel5::MB2_OK ? TestResult::PASS : TestResult::USERABORTED;
}

}  // namespace host
