// The undo journal: its file format survives only intact entries, done marks are honoured, and
// whatever moment a run is cut off at, putting its pending records back gives the device's
// original bytes. A restore onto a device of another size is refused.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "drives/UndoJournal.h"
#include "drives/UndoJournalFormat.h"
#include "support/TempFile.h"

namespace {

using Bytes = std::vector<unsigned char>;
constexpr uint32_t kSector = 512;

Bytes randomBytes(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(size);
    for (auto& byte : bytes) byte = static_cast<unsigned char>(random());
    return bytes;
}

std::optional<host::undo::Contents> parse(const std::string& text, std::string* error = nullptr) {
    std::istringstream in(text);
    return host::undo::readJournal(in, error);
}

std::string join(const std::vector<Bytes>& parts) {
    std::string text;
    for (const Bytes& part : parts) text.append(part.begin(), part.end());
    return text;
}

TEST(UndoJournalFormat, KeepsOnlyIntactEntriesAndHonoursDoneMarks) {
    const host::undo::Header header{"/dev/loop7", 1000, kSector};
    const Bytes first = randomBytes(kSector, 1);
    const Bytes second = randomBytes(2 * kSector, 2);
    const Bytes head = host::undo::encodeHeader(header);
    const Bytes recordOne = host::undo::encodeRecord(1, 10, 1, first.data(), first.size());
    const Bytes recordTwo = host::undo::encodeRecord(2, 998, 2, second.data(), second.size());
    const Bytes doneOne = host::undo::encodeDone(1);
    Bytes badDone = host::undo::encodeDone(2);
    badDone.back() ^= 1;
    const std::string whole = join({head, recordOne, recordTwo, doneOne});
    const std::size_t twoStart = head.size() + recordOne.size();
    std::string flippedData = whole;
    flippedData[twoStart + 30] ^= 0x10;

    struct Case {
        const char* name;
        std::string text;
        std::vector<uint64_t> pending;  // ids
        std::size_t done;
        uint64_t ignored;
    };
    const Case cases[] = {
        {"intact, one done", whole, {2}, 1, 0},
        {"record cut off by a crash",
         join({head, recordOne, recordTwo}).substr(0, twoStart + 100),
         {1},
         0,
         100},
        {"tag cut off", join({head, recordOne}) + std::string("RE"), {1}, 0, 2},
        {"damaged data: it and all after it ignored", flippedData, {1}, 0, whole.size() - twoStart},
        {"damaged done mark is no mark",
         join({head, recordOne, recordTwo, badDone}),
         {1, 2},
         0,
         badDone.size()},
        {"no records", join({head}), {}, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto contents = parse(c.text);
        ASSERT_TRUE(contents.has_value());
        EXPECT_EQ(contents->header.devicePath, "/dev/loop7");
        EXPECT_EQ(contents->header.totalSectors, 1000u);
        EXPECT_EQ(contents->header.sectorSize, kSector);
        std::vector<uint64_t> ids;
        for (const auto& record : contents->pending) ids.push_back(record.id);
        EXPECT_EQ(ids, c.pending);
        EXPECT_EQ(contents->doneRecords, c.done);
        EXPECT_EQ(contents->ignoredBytes, c.ignored);
        for (const auto& record : contents->pending) {
            EXPECT_EQ(record.data, record.id == 1 ? first : second);
            EXPECT_EQ(record.firstSector, record.id == 1 ? 10u : 998u);
        }
    }
}

TEST(UndoJournalFormat, RefusesWhatIsNoJournal) {
    const Bytes head = host::undo::encodeHeader({"/dev/sdb", 64, kSector});
    std::string damaged(head.begin(), head.end());
    damaged[12] ^= 1;  // inside the sector count
    // A record reaching past the device's end cannot be one this header's run wrote.
    const Bytes data = randomBytes(2 * kSector, 3);
    const std::string pastEnd =
        join({head, host::undo::encodeRecord(1, 63, 2, data.data(), data.size())});
    const std::string texts[] = {"", "DDUNDO0", std::string(head.begin(), head.end() - 1), damaged};
    for (const std::string& text : texts) {
        std::string error;
        EXPECT_FALSE(parse(text, &error).has_value()) << text.size();
        EXPECT_NE(error, "");
    }
    const auto contents = parse(pastEnd);
    ASSERT_TRUE(contents.has_value());
    EXPECT_TRUE(contents->pending.empty());
    EXPECT_EQ(contents->ignoredBytes, pastEnd.size() - head.size());
}

// A device in memory the journal reads from, with counters.
struct MemoryDevice {
    Bytes bytes;
    int reads = 0;
    int flushes = 0;
    bool failReads = false;

    host::UndoJournal::DeviceAccess access() {
        return {[this](uint64_t first, uint32_t count, unsigned char* into, std::string* error) {
                    ++reads;
                    if (failReads) {
                        *error = "unreadable";
                        return false;
                    }
                    std::memcpy(into, bytes.data() + first * kSector, size_t{count} * kSector);
                    return true;
                },
                [this](std::string*) {
                    ++flushes;
                    return true;
                }};
    }
};

class UndoJournalTest : public testing::Test {
protected:
    void SetUp() override {
        device_.bytes = randomBytes(kSectors * kSector, 7);
        original_ = device_.bytes;
    }

    std::unique_ptr<host::UndoJournal> open() {
        std::string error;
        auto journal = host::UndoJournal::create(path_, {"/dev/mem", kSectors, kSector}, &error);
        EXPECT_NE(journal, nullptr) << error;
        if (journal) journal->bind(device_.access());
        return journal;
    }
    // A write through the journal, as the block-device drive makes it.
    bool write(host::UndoJournal& journal, uint64_t first, const Bytes& data) {
        const auto count = static_cast<uint32_t>(data.size() / kSector);
        std::string error;
        if (!journal.beforeOverwrite(first, count, &error)) return false;
        std::memcpy(device_.bytes.data() + first * kSector, data.data(), data.size());
        journal.afterWrite(first, count, data.data(), true);
        return true;
    }
    Bytes originalAt(uint64_t first, std::size_t sectors) const {
        return Bytes(original_.begin() + static_cast<long>(first * kSector),
                     original_.begin() + static_cast<long>((first + sectors) * kSector));
    }
    // What `drivediag restore` would do with the file as it stands now.
    void putPendingBack() {
        const auto contents = parse(testsupport::fileContents(path_));
        ASSERT_TRUE(contents.has_value());
        for (auto record = contents->pending.rbegin(); record != contents->pending.rend(); ++record)
            std::memcpy(device_.bytes.data() + record->firstSector * kSector, record->data.data(),
                        record->data.size());
    }

    static constexpr uint64_t kSectors = 4096;
    testsupport::TempDirectory directory_{"undo-journal"};
    std::string path_ = (directory_.path() / "journal").string();
    MemoryDevice device_;
    Bytes original_;
};

TEST_F(UndoJournalTest, CutOffAtAnyWriteThePendingRecordsGiveTheOriginalBack) {
    // Pattern-like (one sector, many fills, written back) and cache-like (256-sector blocks
    // walking upward, five passes) runs, cut off after every write in turn.
    struct Step {
        uint64_t first;
        Bytes data;  // empty: the original
        uint32_t sectors;
    };
    std::vector<Step> pattern;
    for (uint64_t sector : {1u, 2u, 65u, 4095u}) {
        for (unsigned char fill : std::initializer_list<unsigned char>{0xFF, 0x00})
            pattern.push_back({sector, Bytes(kSector, fill), 1});
        pattern.push_back({sector, {}, 1});
    }
    std::vector<Step> cache;
    for (unsigned char fill : std::initializer_list<unsigned char>{0x00, 0xFF}) {
        for (uint64_t block = 0; block < 4; ++block) {
            cache.push_back({2048 + block * 256, Bytes(256 * kSector, fill), 256});
            cache.push_back({2048 + block * 256, {}, 256});
        }
    }
    for (const auto* steps : {&pattern, &cache}) {
        for (std::size_t cut = 0; cut <= steps->size(); ++cut) {
            SCOPED_TRACE("cut after write " + std::to_string(cut));
            device_.bytes = original_;
            std::filesystem::remove(path_);
            auto journal = open();
            for (std::size_t i = 0; i < cut; ++i) {
                const Step& step = (*steps)[i];
                const Bytes data =
                    step.data.empty() ? originalAt(step.first, step.sectors) : step.data;
                ASSERT_TRUE(write(*journal, step.first, data));
            }
            putPendingBack();
            EXPECT_TRUE(device_.bytes == original_);
        }
    }
}

TEST_F(UndoJournalTest, DoneOnceWrittenBackAndFlushedKeptOtherwise) {
    // Downward, so that no record reaches ahead over the next one.
    auto journal = open();
    ASSERT_TRUE(write(*journal, 3000, Bytes(kSector, 0xFF)));
    ASSERT_TRUE(write(*journal, 3000, originalAt(3000, 1)));
    ASSERT_TRUE(write(*journal, 2000, Bytes(kSector, 0x55)));  // left holding the pattern
    ASSERT_TRUE(write(*journal, 1000, Bytes(kSector, 0x11)));
    // A write back that failed leaves the sector unknown: still to be put back.
    std::string error;
    ASSERT_TRUE(journal->beforeOverwrite(1000, 1, &error));
    journal->afterWrite(1000, 1, originalAt(1000, 1).data(), false);
    // Before a flush nothing is done: the write back may still sit in a cache.
    EXPECT_EQ(parse(testsupport::fileContents(path_))->pending.size(), 3u);
    ASSERT_TRUE(journal->deviceFlushed(&error)) << error;
    const auto contents = parse(testsupport::fileContents(path_));
    ASSERT_TRUE(contents.has_value());
    EXPECT_EQ(contents->doneRecords, 1u);
    ASSERT_EQ(contents->pending.size(), 2u);
    EXPECT_EQ(contents->pending[0].firstSector, 2000u);
    EXPECT_EQ(contents->pending[0].data, originalAt(2000, 1));
    EXPECT_EQ(contents->pending[1].firstSector, 1000u);
    EXPECT_EQ(journal->pendingRecords(), 2u);
    EXPECT_FALSE(journal->finish());
    EXPECT_TRUE(std::filesystem::exists(path_));
}

TEST_F(UndoJournalTest, AllWrittenBackAndFlushedRemovesTheFile) {
    auto journal = open();
    for (uint64_t block = 0; block < 16; ++block) {
        ASSERT_TRUE(write(*journal, block * 256, Bytes(256 * kSector, 0xAA)));
        ASSERT_TRUE(write(*journal, block * 256, originalAt(block * 256, 256)));
    }
    // An upward sweep reads ahead: far fewer reads (and journal flushes) than blocks.
    EXPECT_LE(device_.reads, 6);
    std::string error;
    ASSERT_TRUE(journal->deviceFlushed(&error)) << error;
    const auto contents = parse(testsupport::fileContents(path_));
    ASSERT_TRUE(contents.has_value());
    EXPECT_TRUE(contents->pending.empty());
    EXPECT_TRUE(journal->finish());
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(UndoJournalTest, UnreadableSectorsAreNeverOverwritten) {
    auto journal = open();
    device_.failReads = true;
    std::string error;
    EXPECT_FALSE(journal->beforeOverwrite(7, 1, &error));
    EXPECT_EQ(error, "unreadable");
    EXPECT_EQ(journal->pendingRecords(), 0u);
    // An existing file is never taken over.
    std::string again;
    EXPECT_EQ(host::UndoJournal::create(path_, {"/dev/mem", kSectors, kSector}, &again), nullptr);
    EXPECT_NE(again, "");
}

// restore on image files, in-process: puts the data back and verifies it; refuses a device of
// another size, leaving it untouched.
TEST_F(UndoJournalTest, RestorePutsBackAndRefusesAnotherSize) {
    testsupport::TempImage image("undo", kSectors * kSector);
    testsupport::TempImage smaller("undo-smaller", (kSectors - 8) * kSector);
    const auto writeImage = [](const std::string& path, const Bytes& bytes) {
        std::ofstream(path, std::ios::binary | std::ios::trunc)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    };
    writeImage(image.text(), original_);
    {
        std::string error;
        auto journal = host::UndoJournal::create(path_, {image.text(), kSectors, kSector}, &error);
        ASSERT_NE(journal, nullptr) << error;
        journal->bind(device_.access());
        ASSERT_TRUE(write(*journal, 40, Bytes(kSector, 0xF0)));
        ASSERT_TRUE(write(*journal, 1024, Bytes(8 * kSector, 0x0F)));
        EXPECT_FALSE(journal->finish());
    }
    writeImage(image.text(), device_.bytes);
    const std::string smallerBefore = smaller.contents();

    const auto refused = hosttest::runDrivediag({"restore", path_, "--device", smaller.text()});
    EXPECT_EQ(refused.exitCode, host::kExitUndoJournal) << refused.err;
    EXPECT_NE(refused.err.find("refused"), std::string::npos) << refused.err;
    EXPECT_EQ(smaller.contents(), smallerBefore);

    const auto restored = hosttest::runDrivediag({"restore", path_, "--json"});
    EXPECT_EQ(restored.exitCode, host::exitCodeFor(quel5::TestResult::PASS))
        << restored.err << restored.out;
    EXPECT_NE(restored.lineWith({"\"type\":\"restore\"", "\"records\":2", "\"different\":0"}), "")
        << restored.out;
    EXPECT_TRUE(image.bytes() == original_) << "every byte put back";
    EXPECT_FALSE(std::filesystem::exists(path_));
}

// A run journals only when it preserves data, never over an earlier run's journal, and leaves
// no journal behind when it gave every byte back.
TEST_F(UndoJournalTest, ARunJournalsOnlyWhatItMustAndCleansUp) {
    testsupport::TempImage image("undo", kSectors * kSector);
    const auto runPattern = [&](const std::string& preserve) {
        return hosttest::runDrivediag({"run", "pattern", "--destructive", "--device", image.text(),
                                       "--undo", path_, "--set", "PreserveData=" + preserve,
                                       "--set", "NumberOfSeeks=8", "--set", "EndRange=MIN+64"});
    };
    std::ofstream(path_) << "an earlier run's journal";
    const auto refused = runPattern("true");
    EXPECT_EQ(refused.exitCode, host::kExitUndoJournal) << refused.err;
    EXPECT_NE(refused.err.find("drivediag restore " + path_), std::string::npos) << refused.err;
    EXPECT_EQ(testsupport::fileContents(path_), "an earlier run's journal");
    std::filesystem::remove(path_);

    const auto preserved = runPattern("true");
    EXPECT_EQ(preserved.exitCode, host::exitCodeFor(quel5::TestResult::PASS))
        << preserved.err << preserved.out;
    EXPECT_FALSE(std::filesystem::exists(path_));
    const auto discarded = runPattern("false");
    EXPECT_EQ(discarded.exitCode, host::exitCodeFor(quel5::TestResult::PASS)) << discarded.err;
    EXPECT_FALSE(std::filesystem::exists(path_));
}

}  // namespace
