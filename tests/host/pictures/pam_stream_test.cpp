// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/pam_stream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/support/failure.h"

namespace {

using namespace std::string_literals;
using glimmerhost::Alpha;
using glimmerhost::PamReader;
using glimmerhost::Picture;
using Samples = std::vector<std::uint16_t>;

// A stream that holds those bytes, at its beginning.
class Stream {
 public:
  explicit Stream(const std::string& bytes) : file_(std::tmpfile()) {
    std::fwrite(bytes.data(), 1, bytes.size(), file_);
    std::rewind(file_);
  }
  ~Stream() { std::fclose(file_); }
  Stream(const Stream&) = delete;
  Stream& operator=(const Stream&) = delete;

  std::FILE* File() const { return file_; }

  std::string Bytes() const {
    std::rewind(file_);
    std::string bytes;
    for (int c = 0; (c = std::getc(file_)) != EOF;) {
      bytes.push_back(static_cast<char>(c));
    }
    return bytes;
  }

 private:
  std::FILE* file_;
};

std::string Header(int width, int height, int depth, int maxval, const std::string& kind) {
  return "P7\nWIDTH " + std::to_string(width) + "\nHEIGHT " + std::to_string(height) + "\nDEPTH " +
         std::to_string(depth) + "\nMAXVAL " + std::to_string(maxval) + "\n" +
         (kind.empty() ? "" : "TUPLTYPE " + kind + "\n") + "ENDHDR\n";
}

Picture ReadOne(const std::string& bytes) {
  const Stream stream(bytes);
  PamReader reader(stream.File(), "INPUT -");
  auto picture = reader.Next();
  EXPECT_TRUE(picture);
  EXPECT_FALSE(reader.Next());
  return picture.value_or(Picture());
}

std::string Refusal(const std::string& bytes) {
  const Stream stream(bytes);
  PamReader reader(stream.File(), "INPUT -");
  try {
    while (reader.Next()) {
    }
  } catch (const glimmerhost::Failure& fault) {
    return fault.what();
  }
  return "";
}

TEST(PamReader, TakesWordsWithTheHighByteFirst) {
  const Picture picture =
      ReadOne(Header(2, 1, 4, 65535, "RGB_ALPHA") + "\x12\x34\x00\x01\xFF\xFF\x80\x00"s +
              "\x00\x00\x0A\x0D\x0D\x0A\xFF\xFE"s);

  EXPECT_EQ(2, picture.width);
  EXPECT_EQ(1, picture.height);
  EXPECT_EQ(16, picture.bits);
  EXPECT_EQ(Alpha::kStraight, picture.alpha);
  EXPECT_FALSE(picture.grey);
  EXPECT_EQ((Samples{0x1234, 1, 65535, 32768, 0, 0x0A0D, 0x0D0A, 65534}), picture.samples);
}

TEST(PamReader, TakesEveryDepth) {
  const Picture grey = ReadOne(Header(2, 1, 1, 255, "GRAYSCALE") + "\x01\xFF"s);
  EXPECT_EQ((Samples{257, 257, 257, 65535, 65535, 65535, 65535, 65535}), grey.samples);
  EXPECT_EQ(8, grey.bits);
  EXPECT_TRUE(grey.grey);
  EXPECT_EQ(Alpha::kNone, grey.alpha);

  const Picture greyAlpha = ReadOne(Header(1, 1, 2, 255, "GRAYSCALE_ALPHA") + "\x02\x80"s);
  EXPECT_EQ((Samples{514, 514, 514, 32896}), greyAlpha.samples);
  EXPECT_EQ(Alpha::kStraight, greyAlpha.alpha);

  const Picture colour = ReadOne(Header(1, 1, 3, 255, "RGB") + "\x01\x02\x03"s);
  EXPECT_EQ((Samples{257, 514, 771, 65535}), colour.samples);
  EXPECT_EQ(Alpha::kNone, colour.alpha);

  EXPECT_EQ((Samples{257, 514, 771, 1028}),
            ReadOne(Header(1, 1, 4, 255, "") + "\x01\x02\x03\x04"s).samples);
}

TEST(PamReader, WidensWhatHasOtherLargestSamples) {
  EXPECT_EQ((Samples{0, 65535, 65535, 65535}),
            ReadOne(Header(1, 1, 3, 1, "RGB") + "\x00\x01\x07"s).samples);
  // 512 of 1023 is 32799.53 of 65535.
  EXPECT_EQ((Samples{32800, 65535, 64, 65535}),
            ReadOne(Header(1, 1, 3, 1023, "RGB") + "\x02\x00\x03\xFF\x00\x01"s).samples);
}

TEST(PamReader, TakesOneAfterAnotherUntilTheEnd) {
  const Stream stream(Header(1, 1, 1, 255, "GRAYSCALE") + "\x01" + Header(2, 1, 1, 255, "") +
                      "\x02\x03");
  PamReader reader(stream.File(), "-");
  EXPECT_EQ(257, reader.Next()->samples[0]);
  EXPECT_EQ(2, reader.Next()->width);
  EXPECT_FALSE(reader.Next());
}

TEST(PamReader, TakesCommentsBlanksAndTheLineEndsOfOtherSystems) {
  EXPECT_EQ(257, ReadOne("P7\r\n# a comment\r\n\r\nWIDTH   1\r\nHEIGHT\t1\r\nMAXVAL 255\r\n"
                         "DEPTH 1\r\nTUPLTYPE GRAYSCALE\r\nENDHDR\r\n\x01"s)
                     .samples[0]);
}

TEST(PamReader, RefusesInOneLineWhatIsBroken) {
  const std::string good = Header(2, 2, 1, 255, "GRAYSCALE");
  const struct {
    std::string bytes;
    const char* says;
  } cases[] = {
      {"P6\n2 2\n255\n", "begins with \"P6\""},
      {"\x89PNG\r\n\x1A\n", "begins with \"?PNG\""},
      {std::string(5000, 'x'), "a line that does not end"},
      {"P7", "ends in its header"},
      {"P7\nWIDTH 2\n", "ends in its header"},
      {"P7\n" + std::string(100, '\n'), "no ENDHDR"},
      {"P7\nENDHDR\n", "lacks one of"},
      {"P7\nWIDTH 99999999999999999999\n", "from 1 to 65535"},
      {"P7\nWIDTH 65536\n", "from 1 to 65535"},
      {"P7\nWIDTH -1\n", "from 1 to 65535"},
      {"P7\nWIDTH 0\n", "from 1 to 65535"},
      {"P7\nWIDTH 2x\n", "from 1 to 65535"},
      {"P7\nWIDTH\n", "from 1 to 65535"},
      {"P7\nDEPTH 5\n", "from 1 to 4"},
      {"P7\nMAXVAL 65536\n", "from 1 to 65535"},
      {"P7\nCOLOUR 1\n", "it must have WIDTH, HEIGHT"},
      {Header(1, 1, 3, 255, "GRAYSCALE"), "GRAYSCALE of depth 3"},
      {Header(1, 1, 4, 255, "CMYK"), "CMYK of depth 4"},
      {Header(65535, 65535, 4, 65535, "RGB_ALPHA") + "xyz", "cut short in row 1 of 65535"},
      {good, "cut short in row 1 of 2"},
      {good + "\x01\x02\x03", "cut short in row 2 of 2"},
  };
  for (const auto& [bytes, says] : cases) {
    const std::string line = Refusal(bytes);
    EXPECT_TRUE(line.starts_with("INPUT -: picture 1: ")) << line << says;
    EXPECT_NE(std::string::npos, line.find(says)) << line;
    EXPECT_EQ(std::string::npos, line.find('\n')) << line;
  }
}

TEST(PamReader, NamesThePictureThatIsBroken) {
  const std::string good = Header(1, 1, 1, 255, "GRAYSCALE") + "\x01";
  EXPECT_TRUE(Refusal(good + good + good.substr(0, good.size() - 1))
                  .starts_with("INPUT -: picture 3: cut short"));
  EXPECT_TRUE(Refusal(good + "\n" + good).starts_with("INPUT -: picture 2: it begins with"));
}

TEST(WritePam, WritesWordsOfColourAndAlpha) {
  Picture picture;
  picture.width = 1;
  picture.height = 2;
  picture.samples = {0x1234, 1, 65535, 32768, 0, 0x0A0D, 0x0D0A, 65534};
  const Stream stream("");

  glimmerhost::WritePam(picture, stream.File(), "-o -");

  EXPECT_EQ(
      "P7\nWIDTH 1\nHEIGHT 2\nDEPTH 4\nMAXVAL 65535\nTUPLTYPE RGB_ALPHA\nENDHDR\n"
      "\x12\x34\x00\x01\xFF\xFF\x80\x00\x00\x00\x0A\x0D\x0D\x0A\xFF\xFE"s,
      stream.Bytes());
}

TEST(WritePam, FailsWhereNothingIsTaken) {
  Picture picture;
  picture.width = 1;
  picture.height = 1;
  picture.samples = {1, 2, 3, 4};
  // Opened for reading only.
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> closed(std::fopen(NIGHT, "rb"),
                                                               std::fclose);
  ASSERT_TRUE(closed);
  EXPECT_THROW(glimmerhost::WritePam(picture, closed.get(), "-o -"), glimmerhost::Failure);
}

}  // namespace
