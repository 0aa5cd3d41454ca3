#include "WriterFixture.h"

#include "os/EmulatedDevice.h"

namespace mmctest {

WriterTest::WriterTest() { renewWriter(); }

WriterTest::~WriterTest() {
    os::unregisterEmulatedDevice(kDevice);
    writer.reset();
}

void WriterTest::renewWriter(sim::mmc::WriterConfig config) {
    writer.reset();
    os::unregisterEmulatedDevice(kDevice);
    config.spinUpMilliseconds = kSpinUpMs;
    writer = sim::mmc::registerEmulatedWriter(kDevice, config);
}

void WriterTest::loadReady(const DiscModel& disc) {
    writer->insertDisc(disc);
    clock.advance(kSpinUpMs);
}

void WriterTest::loadWritable(MediaKind kind, uint32_t capacitySectors) {
    DiscModel disc = sim::mmc::discOf(kind);
    if (disc.kind == MediaKind::DvdPlusRw || disc.kind == MediaKind::BdRe ||
        disc.kind == MediaKind::DvdRam) {
        disc.status = sim::mmc::DiscStatus::Complete;
    }
    if (capacitySectors != 0) disc.capacitySectors = capacitySectors;
    loadReady(disc);
    if (sim::mmc::traitsOf(kind).family == sim::mmc::MediaFamily::Cd) {
        EXPECT_EQ(selectWriteParameters(0x41, 0x04), 0u);  // track at once, data track
    }
}

Status WriterTest::testUnitReady() { return kivscsi::TestUnitReady(path, kDevice); }

uint16_t WriterTest::currentProfile() {
    const Answer answer = configuration(0);
    EXPECT_EQ(answer.status, 0u);
    const auto header = kivscsi::decodeFeatureHeader(answer.data(), answer.received);
    return header ? header->currentProfile : 0xFFFF;
}

Answer WriterTest::configuration(uint16_t feature, uint16_t allocation) {
    Answer a(allocation, 0xEE);
    a.status =
        kivscsi::GetConfiguration(path, kDevice, 2, feature, a.data(), allocation, &a.received);
    return a;
}

Answer WriterTest::dvdStructure(uint8_t format, uint16_t allocation) {
    Answer a(allocation);
    a.status = kivscsi::ReadDvdStructure(path, kDevice, 0, 0, format, a.data(), allocation, 0,
                                         &a.received);
    return a;
}

Answer WriterTest::bdStructure() {
    Answer a(260);
    a.status = kivscsi::ReadBdStructure(path, kDevice, 0, 0, 0, a.data(), 260, 0, &a.received);
    return a;
}

Answer WriterTest::atip() {
    Answer a(804);
    a.status = kivscsi::KIVR_ReadATIP(path, kDevice, 0, a.data(), 804, &a.received);
    return a;
}

Answer WriterTest::modeSense(uint8_t page) {
    Answer a(804);
    a.status = kivscsi::KIVR_GetSenseData10(path, kDevice, page, a.data(), 804, &a.received);
    return a;
}

Answer WriterTest::writeSpeeds(uint16_t descriptors, uint16_t allocation) {
    Answer a(allocation);
    a.status = kivscsi::GetWriteSpeedPerformance(path, kDevice, descriptors, a.data(), allocation,
                                                 &a.received);
    return a;
}

Answer WriterTest::mediaEvents() {
    Answer a(20);
    a.status =
        kivscsi::GetEventStatusNotification(path, kDevice, true, 0x10, a.data(), 20, &a.received);
    return a;
}

Answer WriterTest::trackInformation(uint8_t type, uint32_t address) {
    Answer a(64);
    a.status =
        kivscsi::ReadTrackInformation(path, kDevice, type, address, a.data(), 64, &a.received);
    return a;
}

kivscsi::DiscInformation WriterTest::discInformation() {
    Bytes answer(804);
    uint32_t received = 0;
    EXPECT_EQ(kivscsi::ReadDiscInformation(path, kDevice, answer.data(), 804, 0, &received), 0u);
    return kivscsi::decodeDiscInformation(answer.data(), received)
        .value_or(kivscsi::DiscInformation{});
}

Status WriterTest::write(uint32_t lba, uint16_t count, uint8_t fill) {
    const Bytes data = filled(count, fill);
    return kivscsi::WriteBlocksEx(path, kDevice, data.data(), sim::mmc::kSectorBytes, lba, count,
                                  300);
}

Status WriterTest::read(uint32_t lba, uint16_t count, bool forced, Bytes& out) {
    out.assign(size_t{count} * sim::mmc::kSectorBytes, 0xEE);
    const auto bytes = static_cast<uint32_t>(out.size());
    return forced ? kivscsi::ReadBlocksFUAEx(path, kDevice, out.data(), bytes, lba, count)
                  : kivscsi::ReadBlocksTimedEx(path, kDevice, out.data(), bytes, lba, count, 10);
}

Status WriterTest::synchronizeCache() { return kivscsi::KIVR_SynchronizeCache(path, kDevice, 300); }

Status WriterTest::format(uint8_t formatType, bool immediate) {
    // The parameter list header (Immed in byte 1 bit 1), then one descriptor.
    Bytes list(12, 0);
    list[1] = immediate ? 0x02 : 0x00;
    list[3] = 8;
    list[8] = static_cast<uint8_t>(formatType << 2);
    return kivscsi::FormatDvdUnit(path, kDevice, list.data(), 12);
}

Bytes WriterTest::requestSense() {
    auto opened = kivscsi::openTransport(kDevice);
    Bytes data(18, 0);
    kivscsi::ScsiCommand command;
    command.cdb[0] = 0x03;
    command.cdb[4] = 18;
    command.cdbLength = 6;
    command.direction = kivscsi::DataDirection::FromDevice;
    command.buffer = data.data();
    command.bufferLength = 18;
    command.timeoutMs = 1000;
    EXPECT_EQ(kivscsi::statusFromResponse(opened.transport->send(command)), 0u);
    return data;
}

uint32_t WriterTest::requestSenseCode() {
    const Bytes sense = requestSense();
    return uint32_t{sense[2] & 0x0Fu} << 16 | uint32_t{sense[12]} << 8 | sense[13];
}

uint16_t WriterTest::currentWriteSpeed() {
    const Answer answer = modeSense(0x2A);
    if (answer.status != 0) return 0;
    const auto page = kivscsi::findModePage(answer.data(), answer.received, 0x2A);
    if (!page) return 0;
    return kivscsi::decodeCurrentWriteSpeed(*page).value_or(0);
}

Status WriterTest::selectWriteParameters(uint8_t byte2, uint8_t byte3, uint8_t dataBlockType) {
    Bytes list(8 + 52, 0);
    list[2] = 0x21;
    list[8] = 0x05;
    list[9] = 0x32;
    list[10] = byte2;
    list[11] = byte3;
    list[12] = dataBlockType;
    return kivscsi::KIVR_SetSenseData10(path, kDevice, 0, list.data(),
                                        static_cast<uint16_t>(list.size()));
}

}  // namespace mmctest
