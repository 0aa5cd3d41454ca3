// Sense data and SCSI status bytes turned into the library's status.
#include <gtest/gtest.h>

#include <vector>

#include "scsi/Sense.h"
#include "scsi/SgIoStatus.h"

namespace {

using kivscsi::Status;

// Fixed-format sense: response code, key, ASC, ASCQ, and the additional length it states.
std::vector<uint8_t> fixedSense(uint8_t code, uint8_t key, uint8_t asc, uint8_t ascq,
                                uint8_t additional = 10, size_t total = 18) {
    std::vector<uint8_t> sense(total, 0);
    sense[0] = code;
    if (total > 2) sense[2] = key;
    if (total > 7) sense[7] = additional;
    if (total > 12) sense[12] = asc;
    if (total > 13) sense[13] = ascq;
    return sense;
}

std::vector<uint8_t> descriptorSense(uint8_t code, uint8_t key, uint8_t asc, uint8_t ascq) {
    return {code, key, asc, ascq, 0, 0, 0, 0};
}

TEST(SenseTest, StatusFromSenseData) {
    struct Case {
        const char* name;
        std::vector<uint8_t> sense;
        Status expected;
    };
    const std::vector<Case> cases = {
        {"fixed current, medium not present", fixedSense(0x70, 0x02, 0x3A, 0x00), 0x3A00},
        {"fixed deferred", fixedSense(0x71, 0x03, 0x0C, 0x00), 0x0C00},
        {"fixed with valid bit", fixedSense(0xF0, 0x05, 0x24, 0x00), 0x2400},
        {"fixed key bits above the key ignored", fixedSense(0x70, 0xE6, 0x28, 0x00), 0x2800},
        {"fixed becoming ready", fixedSense(0x70, 0x02, 0x04, 0x01), 0x0401},
        {"fixed ASCQ only", fixedSense(0x70, 0x03, 0x00, 0x05), 0x0005},
        {"fixed exactly 14 bytes", fixedSense(0x70, 0x04, 0x08, 0x03, 6, 14), 0x0803},
        {"fixed 13 bytes: ASCQ missing", fixedSense(0x70, 0x04, 0x08, 0x03, 10, 13),
         kivscsi::kStatusNoSense},
        {"fixed stating 5 additional bytes: ASCQ outside",
         fixedSense(0x70, 0x04, 0x08, 0x03, 5, 18), kivscsi::kStatusNoSense},
        {"fixed 8 bytes only", fixedSense(0x70, 0x02, 0x3A, 0x00, 10, 8), kivscsi::kStatusNoSense},
        {"descriptor deferred", descriptorSense(0x73, 0x06, 0x28, 0x00), 0x2800},
        {"descriptor 4 bytes", {0x72, 0x05, 0x21, 0x02}, 0x2102},
        {"descriptor 3 bytes", {0x72, 0x05, 0x21}, kivscsi::kStatusNoSense},
        {"recovered error without a code is success", fixedSense(0x70, 0x01, 0x00, 0x00),
         kivscsi::kStatusGood},
        {"recovered error with a code is success", descriptorSense(0x72, 0x01, 0x17, 0x01),
         kivscsi::kStatusGood},
        {"fixed recovered error with a code is success", fixedSense(0x70, 0x01, 0x5D, 0x00),
         kivscsi::kStatusGood},
        {"medium error without a code", fixedSense(0x70, 0x03, 0x00, 0x00),
         kivscsi::kStatusSenseWithoutCode},
        {"no sense key without a code", descriptorSense(0x72, 0x00, 0x00, 0x00),
         kivscsi::kStatusSenseWithoutCode},
        {"unknown response code", fixedSense(0x7F, 0x02, 0x3A, 0x00), kivscsi::kStatusNoSense},
        {"vendor response code", fixedSense(0x00, 0x02, 0x3A, 0x00), kivscsi::kStatusNoSense},
        {"empty", {}, kivscsi::kStatusNoSense},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(kivscsi::statusFromSense(c.sense.data(), c.sense.size()), c.expected);
    }
}

TEST(SenseTest, FieldsOfEachFormat) {
    const std::vector<uint8_t> fixed = fixedSense(0x70, 0x05, 0x24, 0x01);
    const kivscsi::SenseFields f = kivscsi::decodeSense(fixed.data(), fixed.size());
    EXPECT_FALSE(f.descriptorFormat);
    EXPECT_EQ(f.senseKey, 0x05);

    const std::vector<uint8_t> descriptor = descriptorSense(0x72, 0x02, 0x3A, 0x02);
    const kivscsi::SenseFields d = kivscsi::decodeSense(descriptor.data(), descriptor.size());
    EXPECT_TRUE(d.descriptorFormat);
    EXPECT_EQ(d.senseKey, 0x02);

    EXPECT_FALSE(kivscsi::decodeSense(nullptr, 0).valid);
}

TEST(SenseTest, StatusFromResponse) {
    const std::vector<uint8_t> notReady = fixedSense(0x70, 0x02, 0x3A, 0x00);
    struct Case {
        const char* name;
        Status transport;
        uint8_t scsiStatus;
        bool withSense;
        Status expected;
    };
    const std::vector<Case> cases = {
        {"good", 0, 0x00, false, 0},
        {"good ignores leftover sense", 0, 0x00, true, 0},
        {"condition met", 0, 0x04, false, 0},
        {"check condition uses sense", 0, 0x02, true, 0x3A00},
        {"check condition without sense", 0, 0x02, false, kivscsi::kStatusNoSense},
        {"busy", 0, 0x08, false, kivscsi::kStatusDeviceBusy},
        {"task set full", 0, 0x28, false, kivscsi::kStatusDeviceBusy},
        {"reservation conflict", 0, 0x18, false, kivscsi::kStatusReservationConflict},
        {"task aborted", 0, 0x40, false, kivscsi::kStatusUnexpectedScsiStatus},
        {"transport failure wins over sense", kivscsi::kStatusDeviceGone, 0x02, true,
         kivscsi::kStatusDeviceGone},
        {"timeout wins over good", kivscsi::kStatusTimedOut, 0x00, false, kivscsi::kStatusTimedOut},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        kivscsi::ScsiResponse response;
        response.transportStatus = c.transport;
        response.scsiStatus = c.scsiStatus;
        if (c.withSense) {
            std::copy(notReady.begin(), notReady.end(), response.sense.begin());
            response.senseLength = static_cast<uint8_t>(notReady.size());
        }
        EXPECT_EQ(kivscsi::statusFromResponse(response), c.expected);
    }
}

TEST(SenseTest, TransportFailureRanges) {
    struct Case {
        Status status;
        bool transport;
        bool gone;
    };
    const std::vector<Case> cases = {
        {0x0000, false, false}, {0xA9FF, false, false},  {0xAA00, true, false},
        {0xABFF, true, false},  {0xAB0D, true, true},    {0xAB10, true, true},
        {0xAC00, false, false}, {0x1AA02, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.status);
        EXPECT_EQ(kivscsi::isTransportFailure(c.status), c.transport);
        EXPECT_EQ(kivscsi::isDeviceGone(c.status), c.gone);
    }
}

TEST(SenseTest, SgIoHostAndDriverBytes) {
    struct Case {
        uint32_t host;
        uint32_t driver;
        Status expected;
    };
    const Case cases[] = {
        {0x00, 0x00, kivscsi::kStatusGood},
        {0x00, 0x08, kivscsi::kStatusGood},  // DRIVER_SENSE: the sense data tells
        {0x03, 0x00, kivscsi::kStatusTimedOut},
        {0x00, 0x06, kivscsi::kStatusTimedOut},
        {0x00, 0x26, kivscsi::kStatusTimedOut},  // suggestion bits above the status
        {0x01, 0x00, kivscsi::kStatusDeviceGone},
        {0x04, 0x00, kivscsi::kStatusDeviceGone},
        {0x07, 0x00, kivscsi::kStatusAdapterError},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.host * 0x100 + c.driver);
        EXPECT_EQ(kivscsi::statusFromSgIoHost(c.host, c.driver), c.expected);
    }
}

}  // namespace
