#include "ScriptedOptical.h"

#include <algorithm>
#include <cstring>

#include "kiv/Resource.h"

namespace rwtest {

void ScriptedDrive::act(const std::string& name, const std::string& arguments) {
    calls.push_back(arguments.empty() ? name : name + "(" + arguments + ")");
    if (const auto fault = faults.find(name); fault != faults.end()) fault->second();
}

void ScriptedDrive::blankDisc(unsigned int s, unsigned int from, unsigned int to) {
    act("blankDisc", std::to_string(s) + "," + std::to_string(from) + "," + std::to_string(to));
}

void ScriptedDrive::formatDisc(unsigned int s, unsigned int from, unsigned int to) {
    act("formatDisc", std::to_string(s) + "," + std::to_string(from) + "," + std::to_string(to));
}

kiv::Array<unsigned int> ScriptedDrive::getSupportedWriteSpeeds() {
    act("getSupportedWriteSpeeds");
    return speeds;
}

unsigned int ScriptedDrive::getNextWritableAddress() {
    act("getNextWritableAddress");
    return nextWritable;
}

void ScriptedDrive::writeSectors(const unsigned int& lba, const unsigned short& count,
                                 const void* buffer, const unsigned long& bytes) {
    act("writeSectors", std::to_string(lba));
    const auto* data = static_cast<const unsigned char*>(buffer);
    const std::size_t perSector = bytes / count;
    for (unsigned int i = 0; i < count; ++i) {
        disc[lba + i].assign(data + i * perSector, data + (i + 1) * perSector);
    }
}

void ScriptedDrive::readSectors(const unsigned int& lba, unsigned short count, void* buffer,
                                unsigned long bytes, bool plainRead) {
    act(plainRead ? "readSectors" : "readSectorsFUA", std::to_string(lba));
    auto* data = static_cast<unsigned char*>(buffer);
    std::memset(data, 0, bytes);
    const std::size_t perSector = bytes / count;
    for (unsigned int i = 0; i < count; ++i) {
        if (const auto sector = disc.find(lba + i); sector != disc.end()) {
            std::copy_n(sector->second.begin(), std::min(perSector, sector->second.size()),
                        data + i * perSector);
        }
    }
    if (readHook) readHook(lba, plainRead, data);
}

ReadWriteFixture::ReadWriteFixture() {
    kiv::Resource::clear();
    kiv::LogFactory::setPriority(1);
    kiv::LogFactory::addSink(std::make_unique<kiv::MemorySink>(log_));
}

ReadWriteFixture::~ReadWriteFixture() {
    kiv::LogFactory::removeAllSinks();
    kiv::LogFactory::setPriority(4);
    kiv::Resource::clear();
}

std::vector<std::string> ReadWriteFixture::logged(int priority) const {
    std::vector<std::string> lines;
    for (const kiv::LogRecord& record : log_.records()) {
        if (record.logger.toUtf8() == "libDrive.ReadWriteTest" && record.priority == priority) {
            lines.push_back(record.message.toUtf8());
        }
    }
    return lines;
}

bool ReadWriteFixture::wasLogged(int priority, const std::string& line) const {
    const auto lines = logged(priority);
    return std::find(lines.begin(), lines.end(), line) != lines.end();
}

std::string joined(const std::vector<std::string>& items, std::size_t from) {
    std::string text;
    for (std::size_t i = from; i < items.size(); ++i) text += (i == from ? "" : " ") + items[i];
    return text;
}

std::string ReadWriteFixture::lastCalls(std::size_t count) const {
    const std::size_t size = drive.calls.size();
    return joined(drive.calls, count == 0 || count > size ? 0 : size - count);
}

std::string ReadWriteFixture::eventKeys() const { return joined(host.eventKeys()); }

std::size_t ReadWriteFixture::callCount(const std::string& name) const {
    return static_cast<std::size_t>(std::count_if(
        drive.calls.begin(), drive.calls.end(),
        [&](const std::string& call) { return call == name || call.rfind(name + "(", 0) == 0; }));
}

}  // namespace rwtest
