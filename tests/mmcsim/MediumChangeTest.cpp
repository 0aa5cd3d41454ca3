// A writer that reports medium changes: once a loaded disc has become ready, the first command
// that does not pass unit attentions by answers 6/28/00, and every later one answers normally.
#include <functional>

#include "WriterFixture.h"

namespace mmctest {
namespace {

sim::mmc::WriterConfig reportingMediumChanges() {
    sim::mmc::WriterConfig config;
    config.unitAttentionOnMediumChange = true;
    return config;
}

class MediumChangeTest : public WriterTest {
public:
    MediumChangeTest() : WriterTest(reportingMediumChanges()) {}

    Status mediaEventStatus() {
        Bytes answer(8);
        return kivscsi::GetEventStatusNotification(path, kDevice, true, 0x10, answer.data(), 8);
    }
    Status configurationStatus() {
        Bytes answer(8);
        return kivscsi::GetConfiguration(path, kDevice, 2, 0, answer.data(), 8);
    }
};

TEST_F(MediumChangeTest, TheFirstCommandAfterADiscBecameReadyHearsOfTheChangeOnce) {
    using Probe = std::function<uint32_t(MediumChangeTest&)>;
    const Probe unitReady = [](MediumChangeTest& t) { return t.testUnitReady(); };
    const Probe sense = [](MediumChangeTest& t) { return t.requestSenseCode(); };
    const Probe events = [](MediumChangeTest& t) { return t.mediaEventStatus(); };
    const Probe configuration = [](MediumChangeTest& t) { return t.configurationStatus(); };
    const auto nothing = [](MediumChangeTest&) {};
    const struct {
        const char* step;
        std::function<void(MediumChangeTest&)> act;
        Probe probe;
        uint32_t expected;
    } rows[] = {
        {"empty drive", nothing, unitReady, 0x3A01},
        {"disc inserted: still spinning up",
         [](MediumChangeTest& t) { t.writer->insertDisc(sim::mmc::discOf(MediaKind::DvdPlusR)); },
         unitReady, 0x0401},
        {"ready: events pass the attention by",
         [](MediumChangeTest& t) { t.clock.advance(kSpinUpMs); }, events, 0},
        {"so does the configuration", nothing, configuration, 0},
        {"the first other command hears of the change", nothing, unitReady, 0x2800},
        {"then the drive answers normally", nothing, unitReady, 0},
        {"ejected and loaded again",
         [](MediumChangeTest& t) {
             EXPECT_EQ(kivscsi::EjectMedia(t.path, kDevice), 0u);
             EXPECT_EQ(kivscsi::Load(t.path, kDevice), 0u);
         },
         sense, 0x062800},
        {"request sense took the attention", nothing, unitReady, 0},
        {"disc removed", [](MediumChangeTest& t) { t.writer->removeDisc(); }, unitReady, 0x3A02},
        {"empty tray closed: no change to report",
         [](MediumChangeTest& t) { EXPECT_TRUE(t.writer->pressEjectButton()); }, unitReady, 0x3A01},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.step);
        row.act(*this);
        EXPECT_EQ(row.probe(*this), row.expected);
    }
}

}  // namespace
}  // namespace mmctest
