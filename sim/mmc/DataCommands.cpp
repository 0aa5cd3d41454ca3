#include "Bytes.h"
#include "Commands.h"
#include "ModePages.h"
#include "WriteParameters.h"
#include "scsi/Opcodes.h"

namespace sim::mmc {
namespace {

struct Transfer {
    uint32_t lba;
    uint32_t count;
    bool forceUnitAccess;
};

Transfer transferOf(const Command& command) {
    const uint8_t* cdb = command.cdb.data();
    const bool twelve = cdb[0] == kivscsi::opcode::kRead12 || cdb[0] == kivscsi::opcode::kWrite12;
    return Transfer{be32(&cdb[2]), twelve ? be32(&cdb[6]) : be16(&cdb[7]), (cdb[1] & 0x08) != 0};
}

// Microseconds to move `bytes` at `kilobytesPerSecond`.
uint64_t transferCost(uint64_t bytes, uint16_t kilobytesPerSecond) {
    return kilobytesPerSecond == 0 ? 0 : bytes * 1000 / kilobytesPerSecond;
}

// A plain read may be answered from the cache; a forced-unit-access read first puts the
// cache's pending sectors of the range on the disc and then reads the disc itself.
Reply read(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const Transfer transfer = transferOf(command);
    const Disc& disc = *state.tray.disc();
    if (uint64_t{transfer.lba} + transfer.count > disc.readableSectors()) {
        return failure(code::kLbaOutOfRange);
    }
    if (uint64_t{transfer.count} * kSectorBytes > command.dataInLength) {
        return failure(code::kInvalidFieldInCdb);
    }
    if (transfer.forceUnitAccess) {
        writeToMedium(state, state.cache.takeDirty(transfer.lba, transfer.count));
    }
    Reply reply;
    reply.data.resize(size_t{transfer.count} * kSectorBytes);
    uint64_t fromMedium = 0;
    for (uint32_t i = 0; i < transfer.count; ++i) {
        const std::span<uint8_t> out(&reply.data[size_t{i} * kSectorBytes], kSectorBytes);
        const std::vector<uint8_t>* cached =
            transfer.forceUnitAccess ? nullptr : state.cache.find(transfer.lba + i);
        if (cached != nullptr && cached->size() == kSectorBytes) {
            std::copy(cached->begin(), cached->end(), out.begin());
        } else {
            disc.readData(transfer.lba + i, out);
            fromMedium += kSectorBytes;
        }
    }
    reply.costMicroseconds =
        transferCost(fromMedium, effectiveReadSpeed(state.mode.requestedReadSpeed, disc));
    return reply;
}

// Sectors go to the cache and reach the disc when pushed out, flushed or read with FUA; a
// forced-unit-access write goes to the disc at once.
Reply write(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const Transfer transfer = transferOf(command);
    if (uint64_t{transfer.count} * kSectorBytes > command.dataOut.size()) {
        return failure(code::kInvalidFieldInCdb);
    }
    Disc& disc = *state.tray.disc();
    if (state.config.enforceWriteParameters) {
        const Sense parameters = checkWriteParameters(state.mode, disc);
        if (!parameters.good()) return failure(parameters);
    }
    const Sense accepted = disc.acceptWrite(transfer.lba, transfer.count);
    if (!accepted.good()) return failure(accepted);
    for (uint32_t i = 0; i < transfer.count; ++i) {
        const auto first = command.dataOut.begin() + static_cast<std::ptrdiff_t>(i) * kSectorBytes;
        std::vector<uint8_t> sector(first, first + kSectorBytes);
        const uint32_t lba = transfer.lba + i;
        if (transfer.forceUnitAccess) {
            writeToMedium(state, {CachedSector{lba, sector}});
            writeToMedium(state, state.cache.put(lba, std::move(sector), false));
        } else {
            writeToMedium(state, state.cache.put(lba, std::move(sector), true));
        }
    }
    Reply reply;
    reply.costMicroseconds =
        transferCost(uint64_t{transfer.count} * kSectorBytes,
                     effectiveWriteSpeed(state.mode.requestedWriteSpeed, &disc));
    return reply;
}

Reply synchronizeCache(WriterState& state, const Command& command) {
    const Sense readiness = mediumReadiness(state, command.nowMs);
    if (!readiness.good()) return failure(readiness);
    const std::vector<CachedSector> dirty = state.cache.takeAllDirty();
    writeToMedium(state, dirty);
    Reply reply;
    reply.costMicroseconds =
        transferCost(uint64_t{dirty.size()} * kSectorBytes,
                     effectiveWriteSpeed(state.mode.requestedWriteSpeed, state.tray.disc()));
    return reply;
}

}  // namespace

void addDataCommands(HandlerTable& table) {
    table[kivscsi::opcode::kRead10] = read;
    table[kivscsi::opcode::kRead12] = read;
    table[kivscsi::opcode::kWrite10] = write;
    table[kivscsi::opcode::kWrite12] = write;
    table[kivscsi::opcode::kSynchronizeCache] = synchronizeCache;
}

}  // namespace sim::mmc
