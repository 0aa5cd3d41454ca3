#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "quel5/DiagDevice.h"
#include "support/Printers.h"

namespace {

using quel5::Value;

TEST(DiagDeviceTest, PropertiesAreFoundByNameAndReplaced) {
    quel5::DiagDevice device("/dev/sr0");
    device.setText("DriverName", L"\\\\.\\PhysicalDrive1");
    device.setUint32Array("SCSIPath", {1, 0, 2});
    device.setBool("BlankMediaOnly", false);
    device.setBool("BlankMediaOnly", true);

    EXPECT_EQ(device.osLocator(), QuelString("/dev/sr0"));
    ASSERT_NE(device.property("SCSIPath"), nullptr);
    EXPECT_EQ(device.property("SCSIPath")->value().getUint32InArray(2), 2u);
    EXPECT_TRUE(device.property("BlankMediaOnly")->value().valueBool());
    EXPECT_EQ(device.property("DriverName")->value().valueString(),
              QuelString(L"\\\\.\\PhysicalDrive1"));
    EXPECT_EQ(device.property("DriveLetter"), nullptr);
    EXPECT_EQ(device.property("drivername"), nullptr);  // names are case-sensitive
}

TEST(DiagDeviceTest, StringArrayFromValue) {
    struct Case {
        const char* what;
        Value value;
        std::vector<std::string> items;
    };
    const Case cases[] = {
        {"array in order",
         Value::stringArray({L"PxHlpa64", L"GEARAspiWDM"}),
         {"PxHlpa64", "GEARAspiWDM"}},
        {"empty array", Value::stringArray({}), {}},
        {"one text", Value("imapi"), {"imapi"}},
        {"empty text", Value(""), {}},
        {"number", Value(5u), {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        std::vector<std::string> items;
        for (const kiv::String& item : QuelVornInterface::makeStringArrayFromValue(c.value)) {
            items.push_back(item.toUtf8());
        }
        EXPECT_EQ(items, c.items);
    }
}

}  // namespace
