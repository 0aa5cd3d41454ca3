// A writer that reports medium changes: once a loaded disc has become ready, the first command
// that does not pass unit attentions by answers 6/28/00, and every later one answers normally.
#include <functional>

#include "WriterFixture.h"

namespace mmctest {
namespace {

TEST_F(WriterTest, TheFirstCommandAfterADiscBecameReadyHearsOfTheChangeOnce) {
    sim::mmc::WriterConfig reporting;
    reporting.unitAttentionOnMediumChange = true;
    renewWriter(reporting);
    using Probe = std::function<uint32_t(WriterTest&)>;
    const Probe unitReady = [](WriterTest& t) { return t.testUnitReady(); };
    const Probe sense = [](WriterTest& t) { return t.requestSenseCode(); };
    const Probe events = [](WriterTest& t) { return t.mediaEvents().status; };
    const Probe configuration = [](WriterTest& t) { return t.configuration(0, 8).status; };
    const auto nothing = [](WriterTest&) {};
    const struct {
        const char* step;
        std::function<void(WriterTest&)> act;
        Probe probe;
        uint32_t expected;
    } rows[] = {
        {"empty drive", nothing, unitReady, 0x3A01},
        {"disc inserted: still spinning up",
         [](WriterTest& t) { t.writer->insertDisc(sim::mmc::discOf(MediaKind::DvdPlusR)); },
         unitReady, 0x0401},
        {"ready: events pass the attention by", [](WriterTest& t) { t.clock.advance(kSpinUpMs); },
         events, 0},
        {"so does the configuration", nothing, configuration, 0},
        {"the first other command hears of the change", nothing, unitReady, 0x2800},
        {"then the drive answers normally", nothing, unitReady, 0},
        {"ejected and loaded again",
         [](WriterTest& t) {
             EXPECT_EQ(kivscsi::EjectMedia(t.path, kDevice), 0u);
             EXPECT_EQ(kivscsi::Load(t.path, kDevice), 0u);
         },
         sense, 0x062800},
        {"request sense took the attention", nothing, unitReady, 0},
        {"disc removed", [](WriterTest& t) { t.writer->removeDisc(); }, unitReady, 0x3A02},
        {"empty tray closed: no change to report",
         [](WriterTest& t) { EXPECT_TRUE(t.writer->pressEjectButton()); }, unitReady, 0x3A01},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step);
        row.act(*this);
        EXPECT_EQ(row.probe(*this), row.expected);
    }
}

}  // namespace
}  // namespace mmctest
