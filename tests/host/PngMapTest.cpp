// --map FILE.png: libpng reads the picture back, its cells have their classes' colours at the
// places the SVG puts them (rsvg-convert renders the SVG, where installed), its texts are drawn,
// and without a font the map is refused rather than drawn unlabelled. Time is virtual.
#include <gtest/gtest.h>
#include <png.h>
#include <stdlib.h>

#include <filesystem>
#include <optional>

#include "DrivediagRun.h"
#include "cli/ExitCodes.h"
#include "support/LoopDevice.h"
#include "support/ScopedVirtualClock.h"
#include "support/TempFile.h"

namespace {

using hosttest::runDrivediag;
using hosttest::RunOutput;

// 2048 one-sector blocks on a drive with five bad sectors at 1000 and ten slow (40 ms) at 1500:
// 21 rows of 100 cells.
const std::string kDevice = "sim:1MiB,bad=1000+5,slow=1500+10:40,cost=1";
constexpr int kWidth = 190 + 100 * 8 + 20;
constexpr int kHeight = 70 + 21 * 8 + 60;
constexpr int kLegendTop = 70 + 21 * 8 + 20;

struct Rgb {
    int red, green, blue;
    bool operator==(const Rgb&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Rgb& colour) {
    return out << "rgb(" << colour.red << ", " << colour.green << ", " << colour.blue << ")";
}

constexpr Rgb kWhite{255, 255, 255}, kBlack{0, 0, 0}, kFast{0x1a, 0x98, 0x50},
    kSlow{0xd9, 0xef, 0x8b}, kSwatchOutline{0x80, 0x80, 0x80};

struct Picture {
    int width = 0;
    int height = 0;
    std::vector<uint8_t> rgb;
    Rgb at(int x, int y) const {
        const std::size_t offset = (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                    static_cast<std::size_t>(x)) *
                                   3;
        return {rgb[offset], rgb[offset + 1], rgb[offset + 2]};
    }
    // Pixels of the box [x0, x1) x [y0, y1) darker than mid-grey: where text was drawn.
    int darkPixels(int x0, int y0, int x1, int y1) const {
        int dark = 0;
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                const Rgb pixel = at(x, y);
                if (pixel.red + pixel.green + pixel.blue < 3 * 128) ++dark;
            }
        }
        return dark;
    }
};

// The PNG file at `path` as 8-bit RGB, as libpng reads it; nullopt when it is no PNG.
std::optional<Picture> readPng(const std::filesystem::path& path) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    if (png_image_begin_read_from_file(&image, path.c_str()) == 0) return std::nullopt;
    image.format = PNG_FORMAT_RGB;
    Picture picture;
    picture.width = static_cast<int>(image.width);
    picture.height = static_cast<int>(image.height);
    picture.rgb.resize(PNG_IMAGE_SIZE(image));
    if (png_image_finish_read(&image, nullptr, picture.rgb.data(), 0, nullptr) == 0) {
        png_image_free(&image);
        return std::nullopt;
    }
    return picture;
}

// The centre of the cell of `sector`, one sector a cell.
std::pair<int, int> cellCentre(int sector) {
    return {190 + sector % 100 * 8 + 4, 70 + sector / 100 * 8 + 4};
}

class PngMapTest : public ::testing::Test {
protected:
    RunOutput drawMap(const std::filesystem::path& file) {
        return runDrivediag({"run", "linear-seek", "--device", kDevice, "--set",
                             "NumberOfSeeks=2048", "--set", "MaxErrors=100", "--map",
                             file.string()});
    }

    testsupport::ScopedVirtualClock clock_;
    testsupport::TempDirectory folder_{"png-map"};
};

const struct {
    const char* what;
    int sector;
    Rgb colour;
} kCells[] = {
    {"the cell before the bad span", 999, kFast},      {"the bad span's first cell", 1000, kBlack},
    {"the bad span's last cell", 1004, kBlack},        {"the cell after the bad span", 1005, kFast},
    {"the slow span's first cell", 1500, kSlow},       {"the slow span's last cell", 1509, kSlow},
    {"the cell after the slow span", 1510, kFast},     {"the range's last cell", 2047, kFast},
    {"the place after the range's end", 2048, kWhite},
};

TEST_F(PngMapTest, CellsLegendAndTextsAreDrawnAtTheirPlaces) {
    // Upper case: the name's ending is compared without case.
    const std::filesystem::path file = folder_.path() / "surface.PNG";
    const RunOutput run = drawMap(file);
    ASSERT_EQ(run.exitCode, 1) << run.err;
    const std::optional<Picture> picture = readPng(file);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, kWidth);
    EXPECT_EQ(picture->height, kHeight);
    for (const auto& cell : kCells) {
        const auto [x, y] = cellCentre(cell.sector);
        EXPECT_EQ(picture->at(x, y), cell.colour) << cell.what;
    }
    // The legend's failed swatch (the eighth of 120 pixels apart) and its outline.
    EXPECT_EQ(picture->at(10 + 7 * 120 + 6, kLegendTop + 6), kBlack);
    EXPECT_EQ(picture->at(10 + 6 * 120, kLegendTop), kSwatchOutline);
    const struct {
        const char* what;
        int x0, y0, x1, y1;
    } texts[] = {
        {"the title", 10, 6, 300, 24},
        {"the device line", 10, 28, 300, 42},
        {"the result line", 10, 46, 200, 60},
        {"the first row's label, ending left of the cells", 60, 68, 185, 80},
        {"the failed class's legend text", 10 + 7 * 120 + 16, kLegendTop, kWidth, kLegendTop + 14},
    };
    for (const auto& text : texts)
        EXPECT_GT(picture->darkPixels(text.x0, text.y0, text.x1, text.y1), 20) << text.what;
    // Unlabelled rows: nothing is drawn between the labels and the first cells.
    EXPECT_EQ(picture->darkPixels(186, 70, 190, 70 + 21 * 8), 0);
}

TEST_F(PngMapTest, TheSvgRenderedAndThePngAgreeCellForCell) {
    if (!testsupport::succeeds("command -v rsvg-convert"))
        GTEST_SKIP() << "rsvg-convert is not installed";
    const std::filesystem::path svg = folder_.path() / "map.svg";
    const std::filesystem::path png = folder_.path() / "map.png";
    const std::filesystem::path rendered = folder_.path() / "rendered.png";
    ASSERT_EQ(drawMap(svg).exitCode, 1);
    ASSERT_EQ(drawMap(png).exitCode, 1);
    ASSERT_TRUE(testsupport::succeeds("rsvg-convert -o " + rendered.string() + " " + svg.string()));
    const std::optional<Picture> ours = readPng(png);
    const std::optional<Picture> theirs = readPng(rendered);
    ASSERT_TRUE(ours && theirs);
    EXPECT_EQ(ours->width, theirs->width);
    EXPECT_EQ(ours->height, theirs->height);
    for (const auto& cell : kCells) {
        const auto [x, y] = cellCentre(cell.sector);
        EXPECT_EQ(ours->at(x, y), theirs->at(x, y)) << cell.what;
    }
    for (int swatch = 0; swatch < 8; ++swatch) {
        const int x = 10 + swatch * 120 + 6;
        EXPECT_EQ(ours->at(x, kLegendTop + 6), theirs->at(x, kLegendTop + 6)) << swatch;
    }
}

// The font variable set for one test, and unset again after it.
class ScopedFont {
public:
    explicit ScopedFont(const std::string& path) { setenv("DRIVEDIAG_MAP_FONT", path.c_str(), 1); }
    ~ScopedFont() { unsetenv("DRIVEDIAG_MAP_FONT"); }
    ScopedFont(const ScopedFont&) = delete;
    ScopedFont& operator=(const ScopedFont&) = delete;
};

TEST_F(PngMapTest, WithoutAUsableFontTheMapIsRefusedNotDrawnUnlabelled) {
    const testsupport::TempFile notAFont("not-a-font", "plain text");
    const struct {
        const char* what;
        std::string font;
        std::string says;
    } cases[] = {
        {"no font file", (folder_.path() / "missing.ttf").string(),
         "no font to label the map with"},
        {"a file FreeType cannot read", notAFont.text(), "cannot read the font " + notAFont.text()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const ScopedFont font(c.font);
        const std::filesystem::path file = folder_.path() / "unlabelled.png";
        const RunOutput run = drawMap(file);
        EXPECT_EQ(run.exitCode, host::kExitReportFile);
        EXPECT_NE(run.err.find("cannot write " + file.string() + ": " + c.says), std::string::npos)
            << run.err;
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

}  // namespace
