#include "texture/InputFields.h"

#include <QStringList>
#include <gtest/gtest.h>

namespace {

using Status = InputFields::Status;

QStringList allTexts(const QByteArray& text, Status* last = nullptr) {
    InputFields fields(text);
    QStringList out;
    QString value;
    Status status;
    while ((status = fields.ReadText(value)) == Status::Ok)
        out.append(value);
    if (last)
        *last = status;
    return out;
}

struct TextCase {
    const char* text;
    QStringList fields;
    Status last = Status::End; // what ends the reading
};

class TextFields : public ::testing::TestWithParam<TextCase> {};

TEST_P(TextFields, SplitAsTheRunTimeReadsThem) {
    Status last = Status::Ok;
    EXPECT_EQ(allTexts(GetParam().text, &last), GetParam().fields) << GetParam().text;
    EXPECT_EQ(last, GetParam().last);
}

INSTANTIATE_TEST_SUITE_P(
    Catalogue, TextFields,
    ::testing::Values(TextCase{"a,b\r\nc", {"a", "b", "c"}},
                      TextCase{"  spaced out  ,\tb\t", {"spaced out", "b"}},
                      TextCase{"\"x, y\",z", {"x, y", "z"}},
                      TextCase{"\"  kept  \" , next", {"  kept  ", "next"}},
                      TextCase{"\"q\"ignored,next", {"q", "next"}},
                      TextCase{"a,,b", {"a", "", "b"}},
                      TextCase{"\r\n\r\n a \r\n\r\n\r\nb\r\n\r\n", {"a", "b"}},
                      TextCase{"\"two\r\nlines\",x", {"two\r\nlines", "x"}},
                      TextCase{"\xEF\xBB\xBF"
                               "first,caf\xC3\xA9",
                               {"first", QStringLiteral("caf\u00e9")}},
                      TextCase{"a,\"never closed, b\r\nc", {"a"}, Status::Unclosed}));

struct IntegerCase {
    const char* text;
    Status status;
    qint16 value;
};

class IntegerFields : public ::testing::TestWithParam<IntegerCase> {};

TEST_P(IntegerFields, AreSixteenBitSigned) {
    InputFields fields(GetParam().text);
    qint16 value = 1234;
    EXPECT_EQ(fields.ReadInteger(value), GetParam().status) << GetParam().text;
    EXPECT_EQ(value, GetParam().status == Status::Ok ? GetParam().value : 1234);
}

INSTANTIATE_TEST_SUITE_P(Catalogue, IntegerFields,
                         ::testing::Values(IntegerCase{"12", Status::Ok, 12},
                                           IntegerCase{" -5 ,x", Status::Ok, -5},
                                           IntegerCase{"\"42\"", Status::Ok, 42},
                                           IntegerCase{"32767", Status::Ok, 32767},
                                           IntegerCase{"-32768", Status::Ok, -32768},
                                           IntegerCase{"32768", Status::OutOfRange, 0},
                                           IntegerCase{"abc", Status::NotNumber, 0},
                                           IntegerCase{"12x", Status::NotNumber, 0},
                                           IntegerCase{"-", Status::NotNumber, 0},
                                           IntegerCase{"", Status::End, 0},
                                           IntegerCase{"\"5", Status::Unclosed, 0}));

// Line() is where the last field started, whatever the line ends.
TEST(InputFields, LineIsWhereTheLastFieldStarts) {
    InputFields fields("1\r\n\r\n\"a\",\n  2\r3");
    QString value;
    for (int line : {1, 3, 4, 5}) {
        fields.ReadText(value);
        EXPECT_EQ(fields.Line(), line) << value.toStdString();
    }
}

} // namespace
