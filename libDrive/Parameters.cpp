// The parameter handles and the load-time calls that create them, in the order hosts list them.
#include "libDrive/Parameters.h"

#include "libDrive/InternalParameters.h"
#include "libDrive/VocabularyCreation.h"
#include "quel5/DiagModule.h"

namespace kivrlibdrive {

quel5::Parameter* g_MaxErrors = nullptr;
quel5::Parameter* g_MinErrorPercentage = nullptr;
quel5::Parameter* g_bPreserveData = nullptr;
quel5::Parameter* g_NumberOfPatterns = nullptr;
quel5::Parameter* g_StartRange = nullptr;
quel5::Parameter* g_EndRange = nullptr;
quel5::Parameter* g_NumberOfSeeks = nullptr;
quel5::Parameter* g_SectorPercentToTest = nullptr;
quel5::Parameter* g_AdjustForLargeDrives = nullptr;
quel5::Parameter* g_LargeDriveSize = nullptr;
quel5::Parameter* g_LargeDriveStartRange = nullptr;
quel5::Parameter* g_LargeDriveEndRange = nullptr;

namespace detail {

// The flags belong to the framework: the first marks what the test frame and the range read on
// every run, the second the data-preservation pair.
void createParameters() {
    using quel5::DataType;
    using quel5::DiagModule;
    g_MaxErrors = DiagModule::createParameter("MaxErrors", DataType::UINT32, "", true, false);
    g_MinErrorPercentage =
        DiagModule::createParameter("MinErrorPercentage", DataType::PERCENT, "", true, false);
    g_bPreserveData =
        DiagModule::createParameter("PreserveData", DataType::BOOLEAN, "", false, true);
    g_NumberOfPatterns =
        DiagModule::createParameter("NumberOfPatterns", DataType::UINT32, "", false, true);
    g_StartRange = DiagModule::createParameter("StartRange", DataType::STRING, "", true, false);
    g_EndRange = DiagModule::createParameter("EndRange", DataType::STRING, "", true, false);
    g_NumberOfSeeks =
        DiagModule::createParameter("NumberOfSeeks", DataType::UINT32, "", false, false);
    g_SectorPercentToTest = DiagModule::createParameter("SectorPercentToTest", DataType::PERCENT,
                                                        "[1,100]", false, false);
    g_AdjustForLargeDrives =
        DiagModule::createParameter("AdjustForLargeDrives", DataType::BOOLEAN, "", false, false);
    g_LargeDriveSize =
        DiagModule::createParameter("LargeDriveSize", DataType::UINT32, "", false, false);
    g_LargeDriveStartRange =
        DiagModule::createParameter("LargeDriveStartRange", DataType::STRING, "", false, false);
    g_LargeDriveEndRange =
        DiagModule::createParameter("LargeDriveEndRange", DataType::STRING, "", false, false);
}

}  // namespace detail
}  // namespace kivrlibdrive
