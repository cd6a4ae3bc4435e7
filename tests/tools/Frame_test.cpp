#include "tools/common/Frame.h"

#include <gtest/gtest.h>

#include <vector>

namespace velm_tools {
namespace {

using Kind = StreamPiece::Kind;

const std::string kFrame("\x03\0\0\0\x48\x9e\0\0abc", 11);

std::vector<StreamPiece> Cut(FrameCutter& cutter) {
  std::vector<StreamPiece> pieces;
  while (auto piece = cutter.Next())
    pieces.push_back(*piece);
  return pieces;
}

TEST(FrameTest, HeaderIsLengthAndTypeInLittleEndian) {
  EXPECT_EQ(MakeFrame(40520, "abc"), kFrame);
  EXPECT_EQ(MakeFrame(-1, ""), std::string("\0\0\0\0\xFF\xFF\xFF\xFF", 8));
  const FrameHeader header = ReadFrameHeader(std::string("\x04\x03\x02\x01\xFE\xFF\xFF\xFF", 8));
  EXPECT_EQ(header.payloadBytes, 0x01020304U);
  EXPECT_EQ(header.type, -2);
}

TEST(FrameTest, PieceTellsItsHeaderAndPayload) {
  const StreamPiece piece{Kind::kFrame, kFrame};
  EXPECT_EQ(piece.Header().type, 40520);
  EXPECT_EQ(piece.Payload(), "abc");
}

TEST(FrameCutterTest, FramesInOneReadComeInOrder) {
  FrameCutter cutter;
  cutter.Add(kFrame + MakeFrame(1, "") + MakeFrame(2, "x"));
  const auto pieces = Cut(cutter);
  ASSERT_EQ(pieces.size(), 3U);
  EXPECT_EQ(pieces[0].bytes, kFrame);
  EXPECT_EQ(pieces[1].Payload(), "");
  EXPECT_EQ(pieces[2].Header().type, 2);
  EXPECT_FALSE(cutter.Rest());
}

TEST(FrameCutterTest, FrameSplitAtAnyByteComesOnceAndWhole) {
  for (size_t at = 1; at < kFrame.size(); ++at) {
    FrameCutter cutter;
    cutter.Add(kFrame.substr(0, at));
    EXPECT_FALSE(cutter.Next()) << at;
    cutter.Add(kFrame.substr(at));
    const auto pieces = Cut(cutter);
    ASSERT_EQ(pieces.size(), 1U) << at;
    EXPECT_EQ(pieces[0].bytes, kFrame) << at;
  }
}

TEST(FrameCutterTest, WhatIsLeftAtTheEndIsPartial) {
  FrameCutter cutter;
  cutter.Add(kFrame + "\x05");
  EXPECT_EQ(Cut(cutter).size(), 1U);
  const auto rest = cutter.Rest();
  ASSERT_TRUE(rest);
  EXPECT_EQ(rest->kind, Kind::kPartial);
  EXPECT_EQ(rest->bytes, "\x05");
  EXPECT_FALSE(cutter.Rest());
}

TEST(FrameCutterTest, HeaderBeyondTheLimitMakesGarbageOfAllThatFollows) {
  FrameCutter cutter;
  const std::string header("\x01\0\0\x08\x01\0\0\0", 8);  // 0x8000001 bytes
  cutter.Add(header);
  auto pieces = Cut(cutter);
  ASSERT_EQ(pieces.size(), 1U);
  EXPECT_EQ(pieces[0].kind, Kind::kGarbage);
  EXPECT_EQ(pieces[0].bytes, header);
  cutter.Add(kFrame);
  pieces = Cut(cutter);
  ASSERT_EQ(pieces.size(), 1U);
  EXPECT_EQ(pieces[0].kind, Kind::kGarbage);
}

TEST(FrameCutterTest, HeaderAtTheLimitIsAFrameInTheMaking) {
  FrameCutter cutter;
  cutter.Add(std::string("\0\0\0\x08\x01\0\0\0", 8));
  EXPECT_FALSE(cutter.Next());
  EXPECT_EQ(cutter.Rest()->kind, Kind::kPartial);
}

}  // namespace
}  // namespace velm_tools
