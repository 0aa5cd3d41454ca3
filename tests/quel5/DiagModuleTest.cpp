#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quel5/DiagModule.h"
#include "quel5/Registry.h"
#include "support/Printers.h"
#include "support/RecordingHost.h"

namespace {

using quel5::DiagModule;
using quel5::Severity;
using testsupport::RecordingHost;
using testsupport::ScopedHost;

TEST(DiagModuleTest, EveryServiceReachesTheHostInOrder) {
    RecordingHost host;
    ScopedHost installed(host);
    quel5::Event event("Deliver_Event");
    quel5::LocalizedString text("Deliver_Text");

    DiagModule::registerLibrary("Deliver_Lib");
    event.setVariable("Sector", 10u);
    DiagModule::warning(&event, "libDrive/A", 11);
    event.setVariable("Sector", 20u).setVariable("Extra", "e");
    DiagModule::informative(&event, "libDrive/B", 22);
    DiagModule::error(&event, "libDrive/C", 33);
    text.setVariable("ReadSector", 7u);
    DiagModule::progress(&text);
    DiagModule::progressTimed(1000.0, &text);
    DiagModule::percentDone(30);
    DiagModule::resetPercentDone();
    DiagModule::estimatedTimeLeft(12);

    EXPECT_EQ(host.timeline(), (std::vector<std::string>{
                                   "library Deliver_Lib",
                                   "WARNING Deliver_Event@libDrive/A:11{Sector=10}",
                                   "INFORMATIVE Deliver_Event@libDrive/B:22{Sector=20,Extra=e}",
                                   "ERROR Deliver_Event@libDrive/C:33{Sector=20,Extra=e}",
                                   "progress Deliver_Text{ReadSector=7}",
                                   "progress every 1000 ms Deliver_Text{ReadSector=7}",
                                   "percent 30",
                                   "reset percent",
                                   "time left 12",
                               }));
}

TEST(DiagModuleTest, NullHandlesAreIgnored) {
    RecordingHost host;
    ScopedHost installed(host);
    DiagModule::warning(nullptr, "libDrive/X", 1);
    DiagModule::informative(nullptr, "libDrive/X", 2);
    DiagModule::error(nullptr, "libDrive/X", 3);
    DiagModule::progress(nullptr);
    DiagModule::progressTimed(1000.0, nullptr);
    DiagModule::percentDone(5);
    EXPECT_EQ(host.reports().size(), 1u);
    EXPECT_EQ(host.percents(), std::vector<unsigned int>{5});
}

TEST(DiagModuleTest, WithoutAHostNothingIsDeliveredAndStopIsNeverRequested) {
    RecordingHost host;
    { ScopedHost installed(host); }  // installed and gone again
    quel5::Event event("Nobody_Listens");
    DiagModule::error(&event, "libDrive/X", 1);
    DiagModule::percentDone(50);
    DiagModule::registerLibrary("Nobody_Lib");
    EXPECT_FALSE(DiagModule::checkForStop());
    EXPECT_EQ(DiagModule::createMessageBox2("m", "t", 0, 0, 0, true), nullptr);
    EXPECT_TRUE(host.reports().empty());
}

TEST(DiagModuleTest, MessageBoxesTakeTheirAnswersFromTheHost) {
    RecordingHost host;
    ScopedHost installed(host);
    host.queueAnswers({quel5::MB2_YES, quel5::MB2_NO});
    for (int answer : {quel5::MB2_YES, quel5::MB2_NO}) {
        quel5::MessageBox2* box = DiagModule::createMessageBox2("Insert", "Title", 0, 3, 0, true);
        ASSERT_NE(box, nullptr);
        EXPECT_EQ(box->getReturn(), quel5::MB2_NONE);
        EXPECT_TRUE(box->display());
        box->wait(0);
        EXPECT_EQ(box->getReturn(), answer);
        delete box;
    }
    const auto boxes = host.messageBoxes();
    ASSERT_EQ(boxes.size(), 2u);
    EXPECT_EQ(boxes[0].message, "Insert");
    EXPECT_EQ(boxes[0].title, "Title");
    EXPECT_EQ(boxes[0].buttons, 3u);
    EXPECT_TRUE(boxes[0].modal);
    EXPECT_EQ(boxes[1].answer, quel5::MB2_NO);
}

TEST(DiagModuleTest, MessageBoxThatCannotBeShownHasNoAnswer) {
    quel5::MessageBox2 orphan("m", "t", 0, 0, 0, true);
    EXPECT_FALSE(orphan.display());
    EXPECT_EQ(orphan.getReturn(), quel5::MB2_NONE);

    RecordingHost host;
    ScopedHost installed(host);
    host.setCanShowMessageBoxes(false);
    quel5::MessageBox2 refused("m", "t", 0, 0, 0, true);
    EXPECT_FALSE(refused.display());
    EXPECT_EQ(refused.getReturn(), quel5::MB2_NONE);
    refused.cancel();  // never shown: nothing to withdraw
    EXPECT_EQ(host.count<testsupport::MessageBoxCancelReport>(), 0u);
    ASSERT_EQ(host.messageBoxes().size(), 1u);
    EXPECT_FALSE(host.messageBoxes()[0].shown);
}

TEST(DiagModuleTest, CancellingADisplayedBoxTellsTheHost) {
    RecordingHost host;
    ScopedHost installed(host);
    quel5::MessageBox2 box("Erase?", "t", 0, 3, 0, true);
    ASSERT_TRUE(box.display());
    box.cancel();
    EXPECT_EQ(box.getReturn(), quel5::MB2_CANCEL);
    const auto cancels = host.all<testsupport::MessageBoxCancelReport>();
    ASSERT_EQ(cancels.size(), 1u);
    EXPECT_EQ(cancels[0].message, "Erase?");
}

}  // namespace
