// Decoders of a drive's answers: the fields they return and the bounds they keep, whatever
// lengths the drive states.
#include <gtest/gtest.h>

#include <vector>

#include "scsi/ByteOrder.h"
#include "scsi/Decoders.h"

namespace {

using Bytes = std::vector<uint8_t>;

// A GET CONFIGURATION answer: header with current profile 0x0011 and the given data length
// (-1: the true one), then the profile list feature with `profiles` descriptors.
Bytes configuration(size_t profiles, int statedLength = -1, int additional = -1) {
    Bytes data = {0, 0, 0, 0, 0, 0, 0x00, 0x11, 0x00, 0x00, 0x03, 0};
    for (size_t i = 0; i < profiles; ++i) {
        data.insert(data.end(), {0x00, static_cast<uint8_t>(0x10 + i),
                                 static_cast<uint8_t>(i == 1 ? 1 : 0), 0});
    }
    data[11] =
        static_cast<uint8_t>(additional < 0 ? profiles * 4 : static_cast<size_t>(additional));
    const uint32_t length = statedLength < 0 ? static_cast<uint32_t>(data.size() - 4)
                                             : static_cast<uint32_t>(statedLength);
    data[3] = static_cast<uint8_t>(length);
    data[2] = static_cast<uint8_t>(length >> 8);
    return data;
}

TEST(DecoderTest, ProfileListKeepsInsideEveryLimit) {
    struct Case {
        const char* name;
        Bytes data;
        size_t received;
        std::vector<uint16_t> expected;
    };
    const Bytes three = configuration(3);
    const std::vector<Case> cases = {
        {"whole list", three, three.size(), {0x10, 0x11, 0x12}},
        {"last descriptor cut by received", three, three.size() - 1, {0x10, 0x11}},
        {"feature header cut", three, 11, {}},
        {"stated data length shorter", configuration(3, 16), 24, {0x10, 0x11}},
        {"stated data length huge", configuration(3, 0xFFFF), 24, {0x10, 0x11, 0x12}},
        {"additional length shorter", configuration(3, -1, 5), 24, {0x10}},
        {"additional length beyond the answer", configuration(2, -1, 0xFC), 20, {0x10, 0x11}},
        {"no descriptors", configuration(0), 12, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        // The decoder sees only what was received: a copy of exactly that length lets the
        // sanitizer catch any read past it.
        const Bytes seen(c.data.begin(), c.data.begin() + static_cast<std::ptrdiff_t>(c.received));
        std::vector<uint16_t> profiles;
        for (const kivscsi::ProfileEntry& entry :
             kivscsi::decodeProfileList(seen.data(), seen.size())) {
            profiles.push_back(entry.profile);
        }
        EXPECT_EQ(profiles, c.expected);
    }
}

// Header and profile flags of real answers are checked on recorded ones (RecordedAnswersTest).
TEST(DecoderTest, FeatureHeaderAndFeaturesPastTheProfileList) {
    const Bytes data = configuration(3);
    EXPECT_FALSE(kivscsi::decodeFeatureHeader(data.data(), 7));

    // Real time streaming after the profile list: found by walking past it.
    Bytes withStreaming = configuration(1);
    withStreaming.insert(withStreaming.end(), {0x01, 0x07, 0x05, 0x04, 0x1F, 0, 0, 0});
    withStreaming[3] = static_cast<uint8_t>(withStreaming.size() - 4);
    const auto streaming = kivscsi::findFeature(withStreaming.data(), withStreaming.size(), 0x0107);
    ASSERT_TRUE(streaming);
    EXPECT_TRUE(streaming->current);
    EXPECT_EQ(streaming->version, 1);
    EXPECT_EQ(streaming->available, 4u);
    EXPECT_EQ(streaming->data[0], 0x1F);
    const auto cut = kivscsi::findFeature(withStreaming.data(), withStreaming.size() - 3, 0x0107);
    ASSERT_TRUE(cut);
    EXPECT_EQ(cut->available, 1u);
    EXPECT_FALSE(kivscsi::findFeature(withStreaming.data(), withStreaming.size() - 5, 0x0107));
}

TEST(DecoderTest, MediaEvent) {
    struct Case {
        const char* name;
        Bytes data;
        bool decoded;
        bool hasStatus;
        bool present;
        bool doorOpen;
        uint8_t eventClass;
    };
    const std::vector<Case> cases = {
        {"disc in, closed", {0, 6, 0x04, 0x5E, 0x02, 0x02, 0, 0}, true, true, true, false, 4},
        {"tray open", {0, 6, 0x04, 0x5E, 0x03, 0x01, 0, 0}, true, true, false, true, 4},
        {"no event available", {0, 2, 0x80, 0x5E}, true, false, false, false, 0},
        {"status byte not received", {0, 6, 0x04, 0x5E, 0x02}, true, false, false, false, 4},
        {"status past stated length", {0, 3, 0x04, 0x5E, 0x02, 0x02}, true, false, false, false, 4},
        {"header cut", {0, 6, 0x04}, false, false, false, false, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto event = kivscsi::decodeMediaEvent(c.data.data(), c.data.size());
        ASSERT_EQ(event.has_value(), c.decoded);
        if (!event) continue;
        EXPECT_EQ(event->hasMediaStatus, c.hasStatus);
        EXPECT_EQ(event->mediaPresent, c.present);
        EXPECT_EQ(event->doorOpen, c.doorOpen);
        EXPECT_EQ(event->notificationClass, c.eventClass);
    }
}

TEST(DecoderTest, DiscInformation) {
    Bytes full(34, 0);
    full[1] = 32;
    full[2] = 0x1E;  // erasable, last session complete, disc complete
    full[3] = 1;
    full[4] = 0x02;
    full[9] = 0x01;
    full[7] = 0x02;
    full[8] = 0x20;
    struct Case {
        const char* name;
        Bytes data;
        size_t received;
        bool decoded;
        uint8_t discStatus;
        uint16_t sessions;
        uint8_t backgroundFormat;
    };
    Bytes shortStated = full;
    shortStated[1] = 5;  // holds bytes up to 6
    const std::vector<Case> cases = {
        {"full block", full, 34, true, 2, 0x0102, 2},
        {"cut after the status byte", full, 3, true, 2, 0, 0},
        {"cut inside the session fields", full, 8, true, 2, 0x0002, 2},
        {"stated length ends before byte 7", shortStated, 34, true, 2, 0x0002, 0},
        {"no status byte", full, 2, false, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes seen(c.data.begin(), c.data.begin() + static_cast<std::ptrdiff_t>(c.received));
        const auto info = kivscsi::decodeDiscInformation(seen.data(), seen.size());
        ASSERT_EQ(info.has_value(), c.decoded);
        if (!info) continue;
        EXPECT_EQ(info->discStatus, c.discStatus);
        EXPECT_EQ(info->sessions, c.sessions);
        EXPECT_EQ(info->backgroundFormatStatus, c.backgroundFormat);
    }
    const auto info = kivscsi::decodeDiscInformation(full.data(), full.size());
    EXPECT_TRUE(info->erasable);
    EXPECT_EQ(info->lastSessionState, 3);
    EXPECT_EQ(info->discType, 0x20);
}

// MODE SENSE(10) answer: header with `blockDescriptors` bytes of descriptors, a page 05h of
// `page5Length` and a page 2Ah of 30 bytes with write speed 1765 at bytes 28-29.
Bytes modeAnswer(uint16_t blockDescriptors, uint8_t page5Length = 0x32) {
    Bytes data(8 + blockDescriptors, 0);
    data[7] = static_cast<uint8_t>(blockDescriptors);
    Bytes page5(2 + page5Length, 0);
    page5[0] = 0x45;  // page 05h with the PS bit
    page5[1] = page5Length;
    data.insert(data.end(), page5.begin(), page5.end());
    Bytes page2a(32, 0);
    page2a[0] = 0x2A;
    page2a[1] = 30;
    page2a[28] = 0x06;
    page2a[29] = 0xE5;
    data.insert(data.end(), page2a.begin(), page2a.end());
    data[1] = static_cast<uint8_t>(data.size() - 2);
    data[0] = static_cast<uint8_t>((data.size() - 2) >> 8);
    return data;
}

TEST(DecoderTest, ModePages) {
    struct Case {
        const char* name;
        Bytes data;
        size_t received;
        uint8_t pageCode;
        bool found;
        size_t offset;
        size_t available;
    };
    const Bytes plain = modeAnswer(0);
    const Bytes withDescriptors = modeAnswer(8);
    const std::vector<Case> cases = {
        {"first page", plain, plain.size(), 0x05, true, 8, 52},
        {"page code on six bits", plain, plain.size(), 0xC5, true, 8, 52},
        {"second page", plain, plain.size(), 0x2A, true, 60, 32},
        {"after block descriptors", withDescriptors, withDescriptors.size(), 0x2A, true, 68, 32},
        {"absent page", plain, plain.size(), 0x1A, false, 0, 0},
        {"second page cut", plain, plain.size() - 2, 0x2A, true, 60, 30},
        {"second page header cut", plain, 61, 0x2A, false, 0, 0},
        {"header cut", plain, 7, 0x05, false, 0, 0},
        {"descriptors beyond the answer", modeAnswer(200), 40, 0x05, false, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes seen(c.data.begin(), c.data.begin() + static_cast<std::ptrdiff_t>(c.received));
        const auto page = kivscsi::findModePage(seen.data(), seen.size(), c.pageCode);
        ASSERT_EQ(page.has_value(), c.found);
        if (!page) continue;
        EXPECT_EQ(page->page - seen.data(), static_cast<ptrdiff_t>(c.offset));
        EXPECT_EQ(page->available, c.available);
    }
}

TEST(DecoderTest, CurrentWriteSpeed) {
    const Bytes data = modeAnswer(0);
    const auto page = kivscsi::findModePage(data.data(), data.size(), 0x2A);
    ASSERT_TRUE(page);
    EXPECT_EQ(kivscsi::decodeCurrentWriteSpeed(*page), 1765);
    kivscsi::ModePage cut = *page;
    cut.available = 29;
    EXPECT_FALSE(kivscsi::decodeCurrentWriteSpeed(cut));
    Bytes shortPage = data;
    shortPage[61] = 26;
    const auto old = kivscsi::findModePage(shortPage.data(), shortPage.size(), 0x2A);
    ASSERT_TRUE(old);
    EXPECT_FALSE(kivscsi::decodeCurrentWriteSpeed(*old));
}

Bytes structure(size_t size, size_t offset, const std::string& text) {
    Bytes data(size, 0);
    data[0] = static_cast<uint8_t>((size - 2) >> 8);
    data[1] = static_cast<uint8_t>(size - 2);
    std::copy(text.begin(), text.end(), data.begin() + static_cast<std::ptrdiff_t>(offset));
    return data;
}

TEST(DecoderTest, StructureIdentifiers) {
    struct Case {
        const char* name;
        Bytes data;
        size_t received;
        std::string (*decode)(const uint8_t*, size_t);
        std::string expected;
    };
    Bytes understated = structure(256, 23, "MCC 004 R05");
    understated[1] = 25;  // holds bytes up to 26
    const std::vector<Case> cases = {
        {"DVD manufacturer", structure(256, 23, "MCC 004 R05"), 256,
         kivscsi::decodeDvdManufacturerId, "MCC 004 "},
        {"DVD disc id", structure(256, 23, "MCC 004 R05"), 256, kivscsi::decodeDvdDiscId, "R05"},
        {"DVD manufacturer cut at zero", structure(256, 23, std::string("RIT\0XYZ", 7)), 256,
         kivscsi::decodeDvdManufacturerId, "RIT"},
        {"DVD manufacturer cut by received", structure(256, 23, "MCC 004 R05"), 27,
         kivscsi::decodeDvdManufacturerId, "MCC "},
        {"DVD manufacturer cut by stated length", understated, 256,
         kivscsi::decodeDvdManufacturerId, "MCC "},
        {"DVD disc id not received", structure(256, 23, "MCC 004 R05"), 31,
         kivscsi::decodeDvdDiscId, ""},
        {"BD manufacturer", structure(260, 104, "VERBAT1M2"), 260, kivscsi::decodeBdManufacturerId,
         "VERBAT"},
        {"BD disc id", structure(260, 104, "VERBAT1M2"), 260, kivscsi::decodeBdDiscId, "1M2"},
        {"BD disc id last byte cut", structure(260, 104, "VERBAT1M2"), 112, kivscsi::decodeBdDiscId,
         "1M"},
        {"header only", structure(260, 104, "VERBAT1M2"), 4, kivscsi::decodeBdManufacturerId, ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes seen(c.data.begin(), c.data.begin() + static_cast<std::ptrdiff_t>(c.received));
        EXPECT_EQ(c.decode(seen.data(), seen.size()), c.expected);
    }
}

TEST(DecoderTest, CopyProtectionAndAtip) {
    const Bytes protectedDisc = {0, 6, 0, 0, 0x01, 0x02, 0, 0};
    EXPECT_EQ(kivscsi::decodeCopyProtectionType(protectedDisc.data(), 8), 0x01);
    EXPECT_FALSE(kivscsi::decodeCopyProtectionType(protectedDisc.data(), 4));
    const Bytes understated = {0, 2, 0, 0, 0x01, 0x02, 0, 0};
    EXPECT_FALSE(kivscsi::decodeCopyProtectionType(understated.data(), 8));

    Bytes atip(28, 0);
    atip[1] = 26;
    atip[8] = 97, atip[9] = 27, atip[10] = 21;
    atip[12] = 79, atip[13] = 59, atip[14] = 74;
    const auto times = kivscsi::decodeAtip(atip.data(), atip.size());
    ASSERT_TRUE(times);
    EXPECT_EQ(times->leadInStart.minutes, 97);
    EXPECT_EQ(times->leadInStart.seconds, 27);
    EXPECT_EQ(times->leadInStart.frames, 21);
    EXPECT_EQ(times->leadOutStart.minutes, 79);
    EXPECT_EQ(times->leadOutStart.seconds, 59);
    EXPECT_EQ(times->leadOutStart.frames, 74);
    EXPECT_TRUE(kivscsi::decodeAtip(atip.data(), 15));
    EXPECT_FALSE(kivscsi::decodeAtip(atip.data(), 14));
    atip[1] = 12;  // holds bytes up to 13
    EXPECT_FALSE(kivscsi::decodeAtip(atip.data(), atip.size()));
}

// READ TRACK INFORMATION of a blank DVD+R (2,295,104 sectors) asked for its invisible track,
// as drives answer it: track 1 of session 1, track mode 7, blank, data mode 1, NWA valid at 0,
// the whole disc free, blocking factor 16; the track and session number MSBs at bytes 32-33
// set to 0x01 and 0x02 to see where they are read.
Bytes blankDvdPlusRTrack() {
    Bytes data = {0x00, 0x2E, 0x01, 0x01, 0x00, 0x07, 0x41, 0x01,  // header, modes, NWA_V
                  0x00, 0x00, 0x00, 0x00,                          // track start
                  0x00, 0x00, 0x00, 0x00,                          // next writable address
                  0x00, 0x23, 0x05, 0x40,                          // free blocks
                  0x00, 0x00, 0x00, 0x10,                          // fixed packet size
                  0x00, 0x23, 0x05, 0x40,                          // track size
                  0x00, 0x00, 0x00, 0x00,                          // last recorded address
                  0x01, 0x02};                                     // number MSBs
    data.resize(48, 0);
    return data;
}

TEST(DecoderTest, TrackInformation) {
    struct Case {
        const char* name;
        Bytes data;
        size_t received;
        bool decoded;
        uint16_t trackNumber;
        uint16_t sessionNumber;
    };
    const Bytes full = blankDvdPlusRTrack();
    Bytes statedAllButMsbs = full;
    statedAllButMsbs[1] = 30;  // holds bytes up to 31
    Bytes statedShort = full;
    statedShort[1] = 25;  // ends inside Track Size
    Bytes statedHuge = full;
    statedHuge[0] = 0xFF, statedHuge[1] = 0xFF;
    const std::vector<Case> cases = {
        {"up to the session MSB", full, 34, true, 0x0101, 0x0201},
        {"session MSB cut", full, 33, true, 0x0101, 0x0001},
        {"old 28-byte answer", full, 28, true, 0x0001, 0x0001},
        {"track size cut", full, 27, false, 0, 0},
        {"nothing", full, 0, false, 0, 0},
        {"stated length stops before the MSBs", statedAllButMsbs, 48, true, 0x0001, 0x0001},
        {"stated length stops inside track size", statedShort, 48, false, 0, 0},
        {"stated length beyond the answer", statedHuge, 33, true, 0x0101, 0x0001},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes seen(c.data.begin(), c.data.begin() + static_cast<std::ptrdiff_t>(c.received));
        const auto track = kivscsi::decodeTrackInformation(seen.data(), seen.size());
        ASSERT_EQ(track.has_value(), c.decoded);
        if (!track) continue;
        EXPECT_EQ(track->trackNumber, c.trackNumber);
        EXPECT_EQ(track->sessionNumber, c.sessionNumber);
    }

    const auto track = kivscsi::decodeTrackInformation(full.data(), full.size());
    ASSERT_TRUE(track);
    EXPECT_TRUE(track->blank);
    EXPECT_FALSE(track->packet);
    EXPECT_FALSE(track->fixedPacket);
    EXPECT_TRUE(track->nextWritableValid);

    // A DVD-R's appended track: every field distinct, so a field read at a neighbour's offset
    // shows.
    Bytes appended = full;
    appended[5] = 0x35;  // copy bit above the track mode
    appended[6] = 0xB1;  // reserved track, packet, fixed packet, data mode 1
    appended[7] = 0x02;  // LRA valid, NWA not valid
    const uint8_t fields[] = {0x00, 0x01, 0x86, 0xA0, 0x00, 0x01, 0x86, 0xB0, 0x00, 0x21,
                              0x7E, 0xA0, 0x00, 0x00, 0x00, 0x20, 0x00, 0x00, 0x00, 0x10};
    std::copy(std::begin(fields), std::end(fields), appended.begin() + 8);
    const auto other = kivscsi::decodeTrackInformation(appended.data(), appended.size());
    ASSERT_TRUE(other);
    EXPECT_EQ(other->trackMode, 5);
    EXPECT_EQ(other->dataMode, 1);
    EXPECT_FALSE(other->blank);
    EXPECT_TRUE(other->packet);
    EXPECT_TRUE(other->fixedPacket);
    EXPECT_FALSE(other->nextWritableValid);
    EXPECT_EQ(other->trackStart, 100000u);
    EXPECT_EQ(other->nextWritableAddress, 100016u);
    EXPECT_EQ(other->freeBlocks, 0x00217EA0u);
    EXPECT_EQ(other->fixedPacketSize, 32u);
    EXPECT_EQ(other->trackSize, 16u);
}

// GET PERFORMANCE type 03h answer with `speeds` descriptors (end LBA 2,295,103, read speed
// 16x DVD) and the given Performance Data Length (-1: the true one).
Bytes writeSpeeds(std::initializer_list<uint32_t> speeds, int64_t statedLength = -1) {
    const auto putBig32 = [](uint8_t* at, uint32_t value) {
        for (int i = 0; i < 4; ++i) at[i] = static_cast<uint8_t>(value >> (24 - 8 * i));
    };
    Bytes data(8, 0);
    for (const uint32_t speed : speeds) {
        Bytes descriptor = {0, 0, 0, 0, 0x00, 0x23, 0x05, 0x3F, 0x00, 0x00, 0x56, 0x90};
        descriptor.resize(16);
        putBig32(&descriptor[12], speed);
        data.insert(data.end(), descriptor.begin(), descriptor.end());
    }
    putBig32(data.data(), statedLength < 0 ? static_cast<uint32_t>(data.size() - 4)
                                           : static_cast<uint32_t>(statedLength));
    return data;
}

TEST(DecoderTest, WriteSpeedDescriptors) {
    struct Case {
        const char* name;
        Bytes data;
        size_t received;
        std::vector<uint32_t> expected;
    };
    const Bytes three = writeSpeeds({22160, 11080, 5540});
    const std::vector<Case> cases = {
        {"three descriptors", three, three.size(), {22160, 11080, 5540}},
        {"last descriptor cut by one byte", three, three.size() - 1, {22160, 11080}},
        {"header cut", three, 7, {}},
        {"stated length a byte short of two", writeSpeeds({22160, 11080}, 4 + 31), 40, {22160}},
        {"stated length below the header", writeSpeeds({22160}, 2), 24, {}},
        {"stated length huge", writeSpeeds({22160, 11080}, 0xFFFFFFFF), 40, {22160, 11080}},
        {"no descriptors", writeSpeeds({}), 8, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const Bytes seen(c.data.begin(), c.data.begin() + static_cast<std::ptrdiff_t>(c.received));
        const auto descriptors = kivscsi::decodeWriteSpeedDescriptors(seen.data(), seen.size());
        std::vector<uint32_t> speeds;
        for (const auto& d : descriptors) {
            speeds.push_back(d.writeSpeed);
            EXPECT_EQ(d.endLba, 2295103u);
            EXPECT_EQ(d.readSpeed, 22160u);
        }
        EXPECT_EQ(speeds, c.expected);
    }
}

TEST(DecoderTest, ByteOrderHelpers) {
    EXPECT_EQ(kivscsi::SwapBytes16(0x1234), 0x3412);
    EXPECT_EQ(kivscsi::SwapBytes32(0x12345678u), 0x78563412u);
    EXPECT_EQ(kivscsi::SwapBytes32(0x000000FFu), 0xFF000000u);
    const uint8_t bytes[] = {0x80, 0x01, 0x02, 0x03};
    EXPECT_EQ(kivscsi::readBig16(bytes), 0x8001);
    EXPECT_EQ(kivscsi::readBig32(bytes), 0x80010203u);
}

}  // namespace
