#include "common/client/utility/src/ipc/FrameReader.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "gmock/gmock.h"
#include "gtest/gtest.h"
#include "tests/support/PipePeer.h"

namespace Cmm {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using velm_test::FrameHeader;
using velm_test::FrameOf;

const unsigned char* Bytes(const std::string& text) {
  return reinterpret_cast<const unsigned char*>(text.data());
}

// A reader together with the frames that came out of it.
class Stream final : private FrameSink {
 public:
  bool Take(const std::string& bytes) { return m_reader.Take(Bytes(bytes), bytes.size(), *this); }
  size_t CarriedOver() const { return m_reader.CarriedOver(); }

  std::vector<std::string> frames;

 private:
  void OnFrame(const unsigned char* frame, unsigned payloadLength) override {
    frames.emplace_back(reinterpret_cast<const char*>(frame), payloadLength + size_t{8});
  }

  FrameReader m_reader;
};

TEST(FrameReader, HandsOnAFrameThatArrivesWhole) {
  Stream stream;
  EXPECT_TRUE(stream.Take(FrameOf(40520, "payload")));
  EXPECT_THAT(stream.frames, ElementsAre(FrameOf(40520, "payload")));
  EXPECT_EQ(stream.CarriedOver(), 0u);
}

TEST(FrameReader, HandsOnSeveralFramesOfOnePieceInOrder) {
  Stream stream;
  EXPECT_TRUE(stream.Take(FrameOf(1, "a") + FrameOf(2, "") + FrameOf(3, "ccc")));
  EXPECT_THAT(stream.frames, ElementsAre(FrameOf(1, "a"), FrameOf(2, ""), FrameOf(3, "ccc")));
}

TEST(FrameReader, AnEmptyPieceCompletesNothing) {
  Stream stream;
  EXPECT_TRUE(stream.Take(""));
  EXPECT_THAT(stream.frames, IsEmpty());
}

TEST(FrameReader, KeepsSevenBytesOfAHeaderUntilTheEighth) {
  Stream stream;
  const std::string frame = FrameOf(7, "");
  EXPECT_TRUE(stream.Take(frame.substr(0, 7)));
  EXPECT_THAT(stream.frames, IsEmpty());
  EXPECT_EQ(stream.CarriedOver(), 7u);
  EXPECT_TRUE(stream.Take(frame.substr(7)));
  EXPECT_THAT(stream.frames, ElementsAre(frame));
  EXPECT_EQ(stream.CarriedOver(), 0u);
}

std::vector<std::string> ManyFrames() {
  std::vector<std::string> frames;
  for (size_t size : {0, 1, 7, 8, 9, 40, 0, 0, 100})
    frames.push_back(FrameOf(static_cast<int32_t>(40000 + size), std::string(size, 'x')));
  frames.push_back(
      FrameOf(-1, std::string("\0\0\0\0\0\0\0\0\x08", 9)));  // a payload that looks like a header
  return frames;
}

std::string Joined(const std::vector<std::string>& frames) {
  std::string bytes;
  for (const std::string& frame : frames)
    bytes += frame;
  return bytes;
}

TEST(FrameReader, DeliversEachFrameOnceForEverySplitInTwo) {
  const auto frames = ManyFrames();
  const std::string bytes = Joined(frames);
  for (size_t cut = 0; cut <= bytes.size(); ++cut) {
    Stream stream;
    ASSERT_TRUE(stream.Take(bytes.substr(0, cut)) && stream.Take(bytes.substr(cut)));
    ASSERT_EQ(stream.frames, frames) << "cut at " << cut;
    ASSERT_EQ(stream.CarriedOver(), 0u);
  }
}

TEST(FrameReader, DeliversEachFrameOnceForEverySplitInThree) {
  const auto frames = ManyFrames();
  const std::string bytes = Joined(frames);
  for (size_t first = 0; first <= bytes.size(); ++first)
    for (size_t second = first; second <= bytes.size(); ++second) {
      Stream stream;
      ASSERT_TRUE(stream.Take(bytes.substr(0, first)) && stream.Take(bytes.substr(first, second - first)) &&
                  stream.Take(bytes.substr(second)));
      ASSERT_EQ(stream.frames, frames) << "cut at " << first << " and " << second;
    }
}

TEST(FrameReader, DeliversAFrameWithItsLastByteAndNotBefore) {
  Stream stream;
  const std::string frame = FrameOf(40526, "0123456789");
  for (size_t i = 0; i < frame.size(); ++i) {
    ASSERT_THAT(stream.frames, IsEmpty()) << i << " bytes";
    ASSERT_TRUE(stream.Take(frame.substr(i, 1)));
  }
  EXPECT_THAT(stream.frames, ElementsAre(frame));
}

TEST(FrameReader, DeliversEachFrameOnceForSeededRandomCuts) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    std::mt19937 random(seed);
    std::vector<std::string> frames;
    for (int i = 0; i < 40; ++i) {
      std::string payload(random() % (i % 10 == 0 ? 9000 : 60), '\0');
      std::generate(payload.begin(), payload.end(), [&] { return static_cast<char>(random()); });
      frames.push_back(FrameOf(static_cast<int32_t>(random()), payload));
    }
    const std::string bytes = Joined(frames);
    Stream stream;
    for (size_t place = 0; place < bytes.size();) {
      const size_t size =
          std::min<size_t>(1 + random() % (random() % 5 == 0 ? 4096 : 30), bytes.size() - place);
      ASSERT_TRUE(stream.Take(bytes.substr(place, size)));
      place += size;
    }
    ASSERT_EQ(stream.frames, frames) << "seed " << seed;
  }
}

TEST(FrameReader, AFrameLongerThanAnyPieceArrivesWhole) {
  const std::string frame = FrameOf(1, std::string(1000000, 'y'));
  Stream stream;
  for (size_t place = 0; place < frame.size(); place += 4096)
    ASSERT_TRUE(stream.Take(frame.substr(place, 4096)));
  EXPECT_THAT(stream.frames, ElementsAre(frame));
}

// A stream with `carried` bytes of a frame that will not end.
Stream StreamThatCarries(size_t carried) {
  Stream stream;
  std::string begin = FrameHeader(0x7FFFFFFF, 1);
  begin.resize(carried);
  EXPECT_TRUE(stream.Take(begin));
  EXPECT_EQ(stream.CarriedOver(), carried);
  return stream;
}

TEST(FrameReader, CarriesUpToTheLimitAndNotAByteMore) {
  EXPECT_EQ(FrameReader::kMaxCarriedOver, 0x8000000u);
  constexpr size_t kPiece = 4096;
  const std::string piece(kPiece, 'z');
  Stream stream = StreamThatCarries(FrameReader::kMaxCarriedOver - kPiece);
  EXPECT_TRUE(stream.Take(piece));
  EXPECT_EQ(stream.CarriedOver(), FrameReader::kMaxCarriedOver);
  EXPECT_FALSE(stream.Take("z"));
}

TEST(FrameReader, OneByteOverTheLimitBreaksTheStreamAndKeepsNothing) {
  constexpr size_t kPiece = 4096;
  Stream stream = StreamThatCarries(FrameReader::kMaxCarriedOver - kPiece + 1);
  EXPECT_FALSE(stream.Take(std::string(kPiece, 'z')));
  EXPECT_THAT(stream.frames, IsEmpty());
  EXPECT_EQ(stream.CarriedOver(), 0u);
}

TEST(FrameReader, ALengthWhoseSumWithTheHeaderWrapsBreaksTheStream) {
  for (uint32_t length = 0xFFFFFFF8; length != 0; ++length) {
    Stream stream;
    EXPECT_FALSE(stream.Take(FrameOf(1, "good") + FrameHeader(length, 2) + std::string(20, 'q'))) << length;
    EXPECT_THAT(stream.frames, ElementsAre(FrameOf(1, "good"))) << length;
    EXPECT_EQ(stream.CarriedOver(), 0u);
  }
}

TEST(FrameReader, ALengthWhoseSumWrapsBreaksAlsoAStreamThatCarries) {
  const std::string header = FrameHeader(0xFFFFFFFF, 2);
  Stream stream;
  EXPECT_TRUE(stream.Take(header.substr(0, 5)));
  EXPECT_FALSE(stream.Take(header.substr(5)));
  EXPECT_EQ(stream.CarriedOver(), 0u);
}

TEST(FrameReader, TheLongestLengthThatDoesNotWrapIsWaitedFor) {
  Stream stream;
  EXPECT_TRUE(stream.Take(FrameHeader(0xFFFFFFF7, 1) + "x"));
  EXPECT_THAT(stream.frames, IsEmpty());
  EXPECT_EQ(stream.CarriedOver(), 9u);
}

TEST(FrameReader, GoesOnAfterABrokenStreamAsIfItWereNew) {
  Stream stream;
  EXPECT_FALSE(stream.Take(FrameHeader(0xFFFFFFFF, 1)));
  EXPECT_TRUE(stream.Take(FrameOf(5, "new")));
  EXPECT_THAT(stream.frames, ElementsAre(FrameOf(5, "new")));
}

}  // namespace
}  // namespace Cmm
