#include "platform/EntryFolders.hpp"
#include "platform/linux/icons/IconImage.hpp"
#include "platform/linux/icons/IconThemes.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QByteArray>
#include <QFile>
#include <QImage>
#include <QtEndian>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace orvel {
namespace {

namespace fs = std::filesystem;

const std::string svgHead =
    R"(<svg xmlns="http://www.w3.org/2000/svg" xmlns:xlink="http://www.w3.org/1999/xlink" width="16" height="16">)";
const std::string redSquare = R"(<rect width="16" height="16" fill="#ff0000"/>)";

struct IconImageTest : testing::Test {
  /// Draws on another thread, as it will be, and within a time that a person would wait.
  static std::optional<std::vector<std::uint8_t>> draw(const std::string& path, int pixels) {
    auto drawing = std::async(std::launch::async, [&] { return drawIcon(path, pixels); });
    EXPECT_EQ(drawing.wait_for(std::chrono::seconds(5)), std::future_status::ready) << path;
    return drawing.get();
  }

  static QImage picture(const std::string& path, int pixels) {
    const auto png = draw(path, pixels);
    QImage image;
    if (png) image.loadFromData(png->data(), static_cast<int>(png->size()), "PNG");
    return image.convertToFormat(QImage::Format_ARGB32);
  }

  std::string writePNG(const std::string& name, int width, int height, QColor colour) const {
    const std::string path = folders.write("user", name, "");
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    EXPECT_TRUE(image.save(QString::fromStdString(path), "PNG"));
    return path;
  }

  std::string writeSVG(const std::string& content) const {
    return folders.write("user", "icon.svg", svgHead + content + "</svg>");
  }

  EntryFolders folders;
};

TEST_F(IconImageTest, APNGIsDrawnIntoTheSquare) {
  const QImage image = picture(writePNG("red.png", 48, 48, Qt::red), 56);
  ASSERT_EQ(image.size(), QSize(56, 56));
  EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::red));
  EXPECT_EQ(image.pixelColor(55, 55), QColor(Qt::red));
}

/// A part of a PNG. Nobody looks at the checksum of those that are left out.
QByteArray chunk(const QByteArray& type, const QByteArray& content) {
  QByteArray length(4, '\0');
  qToBigEndian(static_cast<quint32>(content.size()), length.data());
  return length + type + content + "sums";
}

struct PNGTextsTest : IconImageTest {
  static constexpr int endOfHeader = 8 + 25;

  /// The bytes of a red picture, and the same with parts that unpack to some megabytes each.
  PNGTextsTest() {
    QFile file(QString::fromStdString(writePNG("red.png", 48, 48, Qt::red)));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    red = file.readAll();
    const QByteArray packed = qCompress(QByteArray(7'900'000, 'a')).mid(4);
    QByteArray texts;
    for (int i = 0; i < 400; ++i) texts += chunk("zTXt", QByteArray("k\0\0", 3) + packed);
    for (int i = 0; i < 400; ++i) texts += chunk("iTXt", QByteArray("k\0\1\0\0\0", 6) + packed);
    withTexts = QByteArray(red).insert(endOfHeader, texts);
  }

  QByteArray red;
  QByteArray withTexts;
};

TEST_F(PNGTextsTest, AreNotUnpacked) {
  EXPECT_GT(withTexts.size(), 5'000'000);
  const auto plain = plainPNG(withTexts);
  ASSERT_TRUE(plain);
  EXPECT_LE(plain->size(), red.size());
  const auto path = folders.write("user", "texts.png", withTexts.toStdString());
  EXPECT_EQ(picture(path, 56).pixelColor(28, 28), QColor(Qt::red));
}

TEST_F(PNGTextsTest, WithAWrongLengthGiveNothing) {
  for (const char* length : {"ffffffff", "7fffffff", "00010000"}) {
    const auto damaged = QByteArray(red).insert(endOfHeader, QByteArray::fromHex(length) + "zTXt" + "sums");
    EXPECT_FALSE(plainPNG(damaged)) << length;
  }
  for (int size = 0; size < red.size(); ++size) EXPECT_FALSE(plainPNG(red.left(size))) << size;
}

TEST_F(IconImageTest, APictureThatIsNoSquareStandsInTheMiddle) {
  const QImage image = picture(writePNG("wide.png", 200, 100, Qt::blue), 56);
  ASSERT_EQ(image.size(), QSize(56, 56));
  EXPECT_EQ(image.pixelColor(28, 28), QColor(Qt::blue));
  EXPECT_EQ(image.pixelColor(28, 5).alpha(), 0);
  EXPECT_EQ(image.pixelColor(28, 50).alpha(), 0);
}

TEST_F(IconImageTest, ScalingMixesColours) {
  const std::string path = folders.write("user", "stripes.png", "");
  QImage stripes(256, 256, QImage::Format_ARGB32);
  for (int y = 0; y < 256; ++y) {
    for (int x = 0; x < 256; ++x) stripes.setPixelColor(x, y, x % 2 == 0 ? Qt::white : Qt::black);
  }
  ASSERT_TRUE(stripes.save(QString::fromStdString(path), "PNG"));
  EXPECT_NEAR(picture(path, 32).pixelColor(16, 16).red(), 127, 20);
}

TEST_F(IconImageTest, AnSVGIsDrawnAtItsFullSize) {
  const QImage image = picture(writeSVG(redSquare + R"(<rect x="8" width="8" height="16" fill="#0000ff"/>)"), 56);
  ASSERT_EQ(image.size(), QSize(56, 56));
  EXPECT_EQ(image.pixelColor(27, 28), QColor(Qt::red)) << "an edge of vectors stays sharp";
  EXPECT_EQ(image.pixelColor(28, 28), QColor(Qt::blue));
}

TEST_F(IconImageTest, PartsOfAnSVGMayBeUsedAgain) {
  const auto path = writeSVG(R"(<defs><g id="half"><rect width="8" height="16" fill="#00ff00"/></g></defs>)"
                             R"(<use xlink:href="#half" x="8"/>)");
  const QImage image = picture(path, 32);
  EXPECT_EQ(image.pixelColor(24, 16), QColor(0, 255, 0));
  EXPECT_EQ(image.pixelColor(8, 16).alpha(), 0);
}

TEST_F(IconImageTest, GradientsAndStylesOfAnSVGAreKept) {
  const auto path = writeSVG(
      R"(<style>.a{fill:url(#g)}</style><defs><linearGradient id="g"><stop offset="0" stop-color="#ff0000"/>)"
      R"(<stop offset="1" stop-color="#0000ff"/></linearGradient></defs><rect class="a" width="16" height="16"/>)");
  const QImage image = picture(path, 64);
  EXPECT_GT(image.pixelColor(2, 30).red(), 200);
  EXPECT_GT(image.pixelColor(61, 30).blue(), 200);
}

TEST_F(IconImageTest, TextsInAnSVGAreLeftOut) {
  const auto path = writeSVG(redSquare + R"(<g font-size="10" font-family="Sans"><text x="2" y="12">A</text></g>)");
  EXPECT_EQ(picture(path, 56).pixelColor(28, 28), QColor(Qt::red));
}

TEST_F(IconImageTest, WhatShowsNothingIsNoIcon) {
  EXPECT_FALSE(drawIcon(writeSVG(R"(<text x="2" y="12">A</text>)"), 56));
}

TEST_F(IconImageTest, PicturesInAnSVGAreLeftOut) {
  const std::string inner =
      svgHead + R"(<rect width="16" height="16"/><text x="2" y="12" font-size="9">A</text></svg>)";
  const std::string data = "data:image/svg+xml;base64," + QByteArray::fromStdString(inner).toBase64().toStdString();
  const auto path = writeSVG(redSquare + R"(<image width="16" height="16" xlink:href=")" + data + R"("/>)" +
                             R"(<filter id="f"><feImage xlink:href=")" + data + R"("/></filter>)");
  EXPECT_EQ(picture(path, 56).pixelColor(28, 28), QColor(Qt::red));
}

TEST_F(IconImageTest, StylesThatTakeLongGiveNothing) {
  std::string rules;
  while (rules.size() < 4'000) rules += ".a{fill:red} ";
  std::string elements;
  for (int i = 0; i < 9'000; ++i) elements += R"(<rect class="a" width="1" height="1"/>)";
  EXPECT_FALSE(draw(writeSVG("<style>" + rules + "</style>" + elements), 56));
  const std::string classes(1'000'000, 'b');
  EXPECT_FALSE(draw(writeSVG("<style>" + rules + "</style><g class=\"" + classes + "\"/>"), 56));
  EXPECT_FALSE(draw(writeSVG("<style>" + rules + "</style><style>" + rules + "</style>" + redSquare), 56));
  EXPECT_TRUE(draw(writeSVG("<style>" + rules + "</style>" + redSquare), 56));
  EXPECT_TRUE(draw(writeSVG("<desc>" + rules + rules + "</desc>" + redSquare), 56)) << "only styles take time";
}

TEST_F(IconImageTest, PicturesUpToASizeAreDrawn) {
  EXPECT_TRUE(draw(writePNG("large.png", 2048, 16, Qt::red), 56));
  EXPECT_FALSE(draw(writePNG("larger.png", 2049, 16, Qt::red), 56));
}

TEST_F(IconImageTest, AnXPMIsDrawn) {
  const auto path = folders.write(
      "user", "icon.xpm",
      "/* XPM */\nstatic char *icon[] = {\n\"2 2 2 1\",\n\"a c #00FF00\",\n\". c None\",\n\"aa\",\n\"a.\"};\n");
  const QImage image = picture(path, 56);
  ASSERT_EQ(image.size(), QSize(56, 56));
  EXPECT_EQ(image.pixelColor(5, 5), QColor(0, 255, 0));
  EXPECT_LT(image.pixelColor(54, 54).alpha(), 30);
}

TEST_F(IconImageTest, DamagedFilesGiveNothing) {
  EXPECT_FALSE(draw(folders.data("user") + "/missing.png", 56));
  EXPECT_FALSE(draw(folders.write("user", "empty.png", ""), 56));
  EXPECT_FALSE(draw(folders.write("user", "text.png", "no picture"), 56));
  EXPECT_FALSE(draw(folders.write("user", "text.svg", "no picture"), 56));
  EXPECT_FALSE(draw(folders.write("user", "half.svg", svgHead + "<g>"), 56));
  EXPECT_FALSE(draw(folders.write("user", "text.xpm", "no picture"), 56));
  const auto cut = writePNG("cut.png", 500, 500, Qt::red);
  fs::resize_file(cut, 60);
  EXPECT_FALSE(draw(cut, 56));
}

TEST_F(IconImageTest, WhatWouldBlockOrFillTheMemoryGivesNothing) {
  const auto pipe = folders.data("user") + "/pipe.png";
  const auto big = writePNG("big.png", 64, 64, Qt::red);
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_FALSE(draw(pipe, 56));
  fs::create_symlink("/dev/zero", folders.data("user") + "/endless.svg");
  EXPECT_FALSE(draw(folders.data("user") + "/endless.svg", 56));
  fs::resize_file(big, 100'000'000);
  EXPECT_FALSE(draw(big, 56));

  // A header that promises 30,000 by 30,000 pixels.
  const auto bytes = QByteArray::fromHex(
      "89504e470d0a1a0a0000000d49484452000075300000753008060000006627f8ba0000000b49444154789c636080000000080001b7587395"
      "0000000049454e44ae426082");
  EXPECT_FALSE(draw(folders.write("user", "vast.png", bytes.toStdString()), 56));
  EXPECT_FALSE(draw(folders.write("user", "vast.xpm",
                                  "/* XPM */\nstatic char *x[] = {\n\"30000 30000 1 1\",\n\"a c #000000\",\n\"a\"};\n"),
                    56));
}

TEST_F(IconImageTest, SVGsThatExplodeGiveNothing) {
  std::string bomb = R"(<defs><g id="a0"><rect width="1" height="1"/></g>)";
  for (int i = 1; i < 30; ++i) {
    bomb += "<g id=\"a" + std::to_string(i) + "\">";
    for (int j = 0; j < 10; ++j) bomb += "<use xlink:href=\"#a" + std::to_string(i - 1) + "\"/>";
    bomb += "</g>";
  }
  EXPECT_FALSE(draw(writeSVG(bomb + "</defs><use xlink:href=\"#a29\"/>"), 56));
  EXPECT_FALSE(draw(writeSVG(R"(<g id="self"><use xlink:href="#self"/><use xlink:href="#self"/></g>)"), 56));

  std::string deep;
  for (int i = 0; i < 100'000; ++i) deep += "<g>";
  EXPECT_FALSE(draw(folders.write("user", "deep.svg", svgHead + deep), 56));
  std::string many;
  for (int i = 0; i < 30'000; ++i) many += "<path d=\"M0 0\"/>";
  EXPECT_FALSE(draw(writeSVG(many), 56));
  EXPECT_FALSE(draw(writeSVG("<style>" + std::string(100'000, 'x') + "</style>"), 56));

  std::string entities = "<!DOCTYPE svg [<!ENTITY a \"0123456789\">";
  for (char name = 'b'; name < 'k'; ++name) {
    entities += "<!ENTITY " + std::string(1, name) + " \"";
    for (int i = 0; i < 10; ++i) entities += "&" + std::string(1, static_cast<char>(name - 1)) + ";";
    entities += "\">";
  }
  EXPECT_FALSE(draw(folders.write("user", "entities.svg", entities + "]>" + svgHead + "<desc>&j;</desc></svg>"), 56));
}

TEST_F(IconImageTest, AnSVGDoesNotOpenOtherFiles) {
  const auto pipe = folders.data("user") + "/pipe";
  const auto path = writeSVG(redSquare + "<image xlink:href=\"" + pipe + "\" width=\"16\" height=\"16\"/>");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(picture(path, 56).pixelColor(28, 28), QColor(Qt::red));
}

struct IconThemesTest : testing::Test {
  void writeTheme(const std::string& folder, const std::string& theme, const std::string& parents,
                  const std::string& directories, const std::string& groups) const {
    folders.write(
        folder, "icons/" + theme + "/index.theme",
        "[Icon Theme]\nName=" + theme + "\nInherits=" + parents + "\nDirectories=" + directories + "\n" + groups);
  }

  /// A theme with one folder for icons of 48 pixels.
  void writeSmallTheme(const std::string& folder, const std::string& theme, const std::string& parents = "") const {
    writeTheme(folder, theme, parents, "48x48/apps", "[48x48/apps]\nSize=48\nType=Fixed\n");
  }

  std::string writeIcon(const std::string& folder, const std::string& name) const {
    return folders.write(folder, "icons/" + name, "picture");
  }

  std::optional<std::string> find(const std::string& icon, int pixels, const std::string& theme) {
    return themes.find(icon, pixels, theme, [](const std::string&) { return true; });
  }

  EntryFolders folders;
  IconThemes themes{DataFolders{.home = folders.data("home"), .shared = folders.dataFolders()}};
};

TEST_F(IconThemesTest, TheThemeThenItsParentsThenTheCommonOneThenAnyOther) {
  writeSmallTheme("system", "Chosen", "Parent,hicolor");
  writeSmallTheme("system", "Parent", "Grandparent,Chosen");
  writeSmallTheme("system", "Grandparent");
  writeSmallTheme("system", "hicolor");
  writeSmallTheme("system", "Another");
  const auto pixmap = folders.write("system", "pixmaps/app.xpm", "picture");
  EXPECT_EQ(find("app", 56, "Chosen"), pixmap);
  for (const char* theme : {"Another", "hicolor", "Grandparent", "Parent", "Chosen"}) {
    const auto icon = writeIcon("system", std::string(theme) + "/48x48/apps/app.png");
    EXPECT_EQ(find("app", 56, "Chosen"), icon);
  }
  EXPECT_EQ(find("other", 56, "Chosen"), std::nullopt);
}

TEST_F(IconThemesTest, TheNextIsTakenInPlaceOfOneThatIsRefused) {
  writeTheme("system", "Chosen", "hicolor", "48/apps,256/apps",
             "[48/apps]\nSize=48\nType=Fixed\n[256/apps]\nSize=256\nType=Fixed\n");
  writeSmallTheme("system", "hicolor");
  const std::vector<std::string> files = {
      writeIcon("system", "Chosen/48/apps/app.png"), writeIcon("system", "Chosen/48/apps/app.svg"),
      writeIcon("system", "Chosen/256/apps/app.png"), writeIcon("system", "hicolor/48x48/apps/app.svg"),
      folders.write("system", "pixmaps/app.xpm", "picture")};
  std::vector<std::string> offered;
  const auto none = themes.find("app", 56, "Chosen", [&](const std::string& file) {
    offered.push_back(file);
    return false;
  });
  EXPECT_EQ(none, std::nullopt);
  EXPECT_EQ(offered, files);
  for (const std::string& wanted : files) {
    EXPECT_EQ(themes.find("app", 56, "Chosen", [&](const std::string& file) { return file == wanted; }), wanted);
  }
}

TEST_F(IconThemesTest, AThemeThatIsNotInstalledIsPassedOver) {
  writeSmallTheme("system", "hicolor");
  const auto icon = writeIcon("system", "hicolor/48x48/apps/app.png");
  EXPECT_EQ(find("app", 56, "Missing"), icon);
  EXPECT_EQ(find("app", 56, ""), icon);
  EXPECT_EQ(find("app", 56, "../../etc"), icon);
}

TEST_F(IconThemesTest, TheNearestSizeIsTaken) {
  writeTheme("system", "hicolor", "", "16/apps,48/apps,64/apps,128/apps,56@2/apps,scalable/apps",
             "[16/apps]\nSize=16\nType=Fixed\n[48/apps]\nSize=48\nType=Threshold\n[64/apps]\nSize=64\nType=Fixed\n"
             "[128/apps]\nSize=128\nType=Fixed\n[56@2/apps]\nSize=56\nScale=2\nType=Fixed\n"
             "[scalable/apps]\nSize=128\nMinSize=8\nMaxSize=512\nType=Scalable\n");
  // From the worst to the best.
  for (const char* name : {"128/apps/app.png", "16/apps/app.png", "56@2/apps/app.png", "64/apps/app.png",
                           "48/apps/app.png", "scalable/apps/app.svg"}) {
    const auto icon = writeIcon("system", std::string("hicolor/") + name);
    const bool isWorse = std::string(name).starts_with("56@2");
    EXPECT_EQ(find("app", 56, "") == icon, !isWorse) << name;
  }
  EXPECT_EQ(find("app", 4, ""), folders.data("system") + "/icons/hicolor/scalable/apps/app.svg");
}

TEST_F(IconThemesTest, AThemeIsReadAnewWhenItsMainFolderChanges) {
  const auto settle = [this, now = fs::file_time_type::clock::now()](int hoursAgo) {
    const auto then = now - std::chrono::hours(hoursAgo);
    for (const char* name : {"hicolor", "hicolor/index.theme"}) {
      fs::last_write_time(folders.data("system") + "/icons/" + name, then);
    }
  };
  writeSmallTheme("system", "hicolor");
  fs::create_directory(folders.data("system") + "/icons/hicolor/48x48");
  settle(2);
  EXPECT_EQ(find("app", 56, ""), std::nullopt);
  const auto icon = writeIcon("system", "hicolor/48x48/apps/app.png");
  settle(2);
  EXPECT_EQ(find("app", 56, ""), std::nullopt) << "what it has is remembered";
  settle(1);
  EXPECT_EQ(find("app", 56, ""), icon);
}

TEST_F(IconThemesTest, AFolderOfTheUserAddsToAThemeOfTheSystem) {
  writeSmallTheme("system", "hicolor");
  const auto icon = writeIcon("user", "hicolor/48x48/apps/mine.png");
  EXPECT_EQ(find("mine", 56, ""), icon);
  EXPECT_EQ(find("mine.png", 56, ""), icon) << "named by its file";
  const auto own = folders.write("home", ".icons/lonely.png", "picture");
  EXPECT_EQ(find("lonely", 56, ""), own);
}

TEST_F(IconThemesTest, HostileNamesAndIndexesGiveNothing) {
  writeSmallTheme("system", "hicolor");
  folders.write("system", "secret.png", "picture");
  folders.write("system", "icons/Broken/index.theme", "not an index");
  folders.write("system", "icons/Loop/index.theme", "[Icon Theme]\nInherits=Loop,Loop\nDirectories=../..,../pixmaps\n");
  ASSERT_EQ(mkfifo((folders.data("system") + "/icons/index.theme").c_str(), 0600), 0);
  for (const std::string& name : {std::string(), std::string("../secret"), std::string("a/b"), std::string("a\0b", 3),
                                  std::string(100'000, 'x')}) {
    EXPECT_EQ(find(name, 56, "Loop"), std::nullopt);
  }
  EXPECT_EQ(find("app", 56, "Broken"), std::nullopt);
}

}  // namespace
}  // namespace orvel
