#include "tests/sensorfile/TestSupport.hpp"
#include "tools/check/TextLines.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

namespace SensorFileTool {
namespace {

using Kind = TextLine::Kind;

constexpr std::size_t kMaxLine = 1000;

struct Piece {
    Kind kind;
    std::int64_t offset;
    std::int64_t size;
    bool operator==(const Piece&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Piece& piece) {
    return stream << static_cast<int>(piece.kind) << '@' << piece.offset << '+' << piece.size;
}

std::vector<Piece> piecesOf(const std::string& content, std::int64_t start = 0) {
    const SensorFile::TemporaryFile file(content);
    TextLines lines(file.path(), start, kMaxLine);
    std::vector<Piece> pieces;
    TextLine line;
    while (lines.next(line)) {
        const auto begin = static_cast<std::size_t>(line.offset);
        if (line.kind == Kind::kLine) {
            EXPECT_EQ(line.text, content.substr(begin, static_cast<std::size_t>(line.size)));
        }
        EXPECT_EQ(lines.getPosition(), line.offset + line.size);
        pieces.push_back({line.kind, line.offset, line.size});
    }
    return pieces;
}

TEST(TextLinesTest, LinesEndWithLineFeeds) {
    EXPECT_EQ(piecesOf(""), std::vector<Piece>{});
    EXPECT_EQ(piecesOf("a\n\nbc"),
              (std::vector<Piece>{{Kind::kLine, 0, 2}, {Kind::kLine, 2, 1}, {Kind::kLine, 3, 2}}));
    EXPECT_EQ(piecesOf("a\nbc\n", 2), (std::vector<Piece>{{Kind::kLine, 2, 3}}));
}

TEST(TextLinesTest, NulBytesArePiecesOfTheirOwn) {
    using namespace std::string_literals;
    EXPECT_EQ(
        piecesOf("a\n12\0\0\0b\n"s),
        (std::vector<Piece>{
            {Kind::kLine, 0, 2}, {Kind::kLine, 2, 2}, {Kind::kNuls, 4, 3}, {Kind::kLine, 7, 2}}));
    EXPECT_EQ(piecesOf("a\n\0"s), (std::vector<Piece>{{Kind::kLine, 0, 2}, {Kind::kNuls, 2, 1}}));
    // A single one may be a character.
    EXPECT_EQ(piecesOf("\0\t\n"s), (std::vector<Piece>{{Kind::kLine, 0, 3}}));
}

TEST(TextLinesTest, NulBytesOfAnySizeAreOnePiece) {
    for (const std::size_t count : {2UL, 262'143UL, 262'144UL, 262'145UL, 1'000'000UL}) {
        EXPECT_EQ(piecesOf("ab\n" + std::string(count, '\0') + "c\n"),
                  (std::vector<Piece>{{Kind::kLine, 0, 3},
                                      {Kind::kNuls, 3, static_cast<std::int64_t>(count)},
                                      {Kind::kLine, 3 + static_cast<std::int64_t>(count), 2}}));
    }
}

TEST(TextLinesTest, ASingleNulByteMayLieAtTheEndOfABlock) {
    using namespace std::string_literals;
    for (const std::size_t before : {262'142UL, 262'143UL, 262'144UL}) {
        std::string content;
        while (content.size() + 200 < before)
            content += std::string(99, 'x') + '\n';
        content += std::string(before - content.size(), 'y') + "\0\t\n"s;
        for (const Piece& piece : piecesOf(content))
            EXPECT_EQ(piece.kind, Kind::kLine);
    }
}

TEST(TextLinesTest, LinesThatDoNotEndArePassedOver) {
    EXPECT_EQ(piecesOf(std::string(1'000'000, 'x') + "\nab\n"),
              (std::vector<Piece>{{Kind::kEndless, 0, 1'000'001}, {Kind::kLine, 1'000'001, 3}}));
    EXPECT_EQ(piecesOf(std::string(1'000'000, 'x')),
              (std::vector<Piece>{{Kind::kEndless, 0, 1'000'000}}));
}

TEST(TextLinesTest, WhatFollowsNulBytesSaysSo) {
    const SensorFile::TemporaryFile file("a\n" + std::string(9, '\0') + "b\nc\n");
    TextLines lines(file.path(), 0, kMaxLine);
    TextLine line;
    std::vector<bool> areBehind;
    while (lines.next(line))
        areBehind.push_back(line.isBehindNuls);
    EXPECT_EQ(areBehind, (std::vector<bool>{false, false, true, false}));
}

TEST(TextLinesTest, LinesCanBeExtended) {
    const SensorFile::TemporaryFile file("a\n\tb\nc");
    TextLines lines(file.path(), 0, kMaxLine);
    TextLine line;
    ASSERT_TRUE(lines.next(line));
    EXPECT_EQ(lines.peek(line), '\t');
    EXPECT_TRUE(lines.extend(line));
    EXPECT_EQ(line.text, "a\n\tb\n");
    EXPECT_TRUE(lines.extend(line));
    EXPECT_EQ(line.text, "a\n\tb\nc");
    EXPECT_EQ(lines.peek(line), '\0');
    EXPECT_FALSE(lines.extend(line));
    EXPECT_EQ(line.text, "a\n\tb\nc");
    EXPECT_FALSE(lines.next(line));
}

TEST(TextLinesTest, LinesCanBeExtendedAcrossBlocks) {
    for (const std::size_t size : {262'142UL, 262'143UL, 262'144UL}) {
        std::string content;
        while (content.size() + 100 < size)
            content += std::string(99, 'x') + '\n';
        content += std::string(size - content.size() - 1, 'y') + '\n';
        content += "\tz\n";
        const SensorFile::TemporaryFile file(content);
        TextLines lines(file.path(), 0, kMaxLine);
        TextLine line;
        while (lines.next(line) && line.text.front() != 'y') {
        }
        EXPECT_EQ(lines.peek(line), '\t');
        ASSERT_TRUE(lines.extend(line));
        EXPECT_EQ(line.text, content.substr(static_cast<std::size_t>(line.offset)));
    }
}

/// The same, found the plain way.
std::vector<Piece> plainPiecesOf(const std::string& content) {
    std::vector<Piece> pieces;
    const auto isRun = [&](std::size_t i) {
        return content[i] == '\0' && (i + 1 == content.size() || content[i + 1] == '\0');
    };
    std::size_t at = 0;
    while (at < content.size()) {
        std::size_t end = at;
        Kind kind = Kind::kLine;
        if (isRun(at)) {
            kind = Kind::kNuls;
            while (end < content.size() && content[end] == '\0')
                ++end;
        } else {
            while (end < content.size() && content[end] != '\n' && !isRun(end))
                ++end;
            if (end < content.size() && content[end] == '\n') ++end;
        }
        pieces.push_back(
            {kind, static_cast<std::int64_t>(at), static_cast<std::int64_t>(end - at)});
        at = end;
    }
    return pieces;
}

RC_GTEST_PROP(TextLinesTest, PiecesAreThoseFoundThePlainWay, ()) {
    const auto content = *rc::gen::container<std::string>(
        rc::gen::weightedElement<char>({{6, 'x'}, {2, '\n'}, {3, '\0'}, {1, '\t'}}));
    RC_ASSERT(piecesOf(content) == plainPiecesOf(content));
}

}  // namespace
}  // namespace SensorFileTool
