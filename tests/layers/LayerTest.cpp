#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "LayerCheck.h"
#include "support/TempFile.h"

namespace fs = std::filesystem;

namespace {

using Files = std::vector<std::pair<std::string, std::string>>;  // path below the root, text

// A small tree in the temporary directory with the headers most cases reach.
class LayerTreeTest : public ::testing::Test {
protected:
    void SetUp() override { freshTree(); }

    // Starts over with a new tree holding only the common headers.
    void freshTree() {
        tree_.emplace("layers");
        root_ = tree_->path();
        write({{"host/cli/TextHost.h", ""},
               {"libDrive/include/libDrive/Drive.h", ""},
               {"libDrive/PassTiming.h", ""},
               {"platform/os/include/os/Clock.h", ""},
               {"platform/kiv/include/kiv/Log.h", ""},
               {"sim/include/sim/SimulatedDrive.h", ""}});
    }

    void write(const Files& files) {
        for (const auto& [path, text] : files) {
            fs::create_directories((root_ / path).parent_path());
            std::ofstream(root_ / path) << text;
        }
    }

    // The violations as "file:line", in the checker's order.
    std::vector<std::string> places() const {
        std::vector<std::string> out;
        for (const auto& v : layers::checkTree(root_)) {
            out.push_back(v.file + ":" + std::to_string(v.line));
        }
        return out;
    }

    std::optional<testsupport::TempDirectory> tree_;
    fs::path root_;
};

TEST_F(LayerTreeTest, EachForbiddenArrowIsReportedAtItsFileAndLine) {
    struct Case {
        const char* name;
        Files files;
        std::vector<std::string> expected;
    };
    const std::vector<Case> cases = {
        {"the library includes the host",
         {{"libDrive/Drive.cpp", "#include \"libDrive/Drive.h\"\n#include \"cli/TextHost.h\"\n"}},
         {"libDrive/Drive.cpp:2"}},
        {"an include of a header that no layer has",
         {{"libDrive/Drive.cpp", "// first\n\n#include \"host/TextHost.h\"\n"}},
         {"libDrive/Drive.cpp:3"}},
        {"the SCSI library logs through kiv",
         {{"platform/scsi/src/Trace.cpp", "#include \"kiv/Log.h\"\n"}},
         {"platform/scsi/src/Trace.cpp:1"}},
        {"the simulator reaches the library's internal header",
         {{"sim/SimulatedDrive.cpp",
           "#include \"sim/SimulatedDrive.h\"\n#include \"PassTiming.h\"\n"}},
         {"sim/SimulatedDrive.cpp:2"}},
        {"the library links the simulator",
         {{"libDrive/CMakeLists.txt",
           "add_library(libDrive SHARED Drive.cpp)\ntarget_link_libraries(libDrive\n  PUBLIC os # "
           "the clock\n  sim)\n"},
          {"sim/CMakeLists.txt", "add_library(sim STATIC SimulatedDrive.cpp)\n"},
          {"platform/os/CMakeLists.txt", "libdrive_shared_library(os OS os Clock.cpp)\n"}},
         {"libDrive/CMakeLists.txt:4"}},
        {"a test program links a library whose layer is above it",
         {{"platform/kiv/CMakeLists.txt",
           "libdrive_test(kiv_tests SOURCES A.cpp LIBS kiv drivediag_core)\n"},
          {"host/CMakeLists.txt", "add_library(drivediag_core STATIC Main.cpp)\n"}},
         {"platform/kiv/CMakeLists.txt:1"}},
        {"allowed arrows, the library's own internal header and a test reaching one",
         {{"libDrive/Range.cpp",
           "#include \"PassTiming.h\"\n#include \"kiv/Log.h\"\n#include <vector>\n"},
          {"platform/quel5/src/Value.cpp",
           "#include \"os/Clock.h\"\n#include \"quel5/Export.h\"\n"},
          {"host/cli/TextHost.cpp",
           "#include \"cli/TextHost.h\"\n#include \"sim/SimulatedDrive.h\"\n"},
          {"tests/libDrive/PassTimingTest.cpp",
           "#include \"PassTiming.h\"\n#include \"cli/TextHost.h\"\n"},
          {"sim/CMakeLists.txt",
           "add_library(sim STATIC S.cpp)\ntarget_link_libraries(sim PUBLIC libDrive "
           "Threads::Threads)\n"},
          {"libDrive/CMakeLists.txt",
           "libdrive_shared_library(libDrive LIBDRIVE libDrive "
           "D.cpp)\nlibdrive_internal_library(libDrive x P.cpp)\n"},
          {"tests/CMakeLists.txt", "libdrive_test(t SOURCES a.cpp LIBS libDrive_internal sim)\n"}},
         {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        freshTree();
        write(c.files);
        EXPECT_EQ(places(), c.expected);
    }
}

TEST_F(LayerTreeTest, TheMessageNamesBothLayersAndTheInclude) {
    write({{"libDrive/Drive.cpp", "#include \"cli/TextHost.h\"\n"}});
    const auto violations = layers::checkTree(root_);
    ASSERT_EQ(violations.size(), 1u);
    EXPECT_EQ(violations[0].message, "libDrive may not include host's \"cli/TextHost.h\"");
}

// The project's own tree, as it stands in the source folder this program was built from.
TEST(ProjectLayersTest, NoIncludeOrLinkCrossesALayerTheWrongWay) {
    for (const auto& v : layers::checkTree(LIBDRIVE_SOURCE_DIR)) {
        ADD_FAILURE() << v.file << ":" << v.line << ": " << v.message;
    }
}

}  // namespace
