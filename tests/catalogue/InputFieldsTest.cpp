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

TEST(InputFields, TextFieldsSplitAsTheRunTimeReadsThem) {
    const struct {
        const char* text;
        QStringList fields;
        Status last = Status::End; // what ends the reading
    } cases[] = {{"a,b\r\nc", {"a", "b", "c"}},
                 {"  spaced out  ,\tb\t", {"spaced out", "b"}},
                 {"\"x, y\",z", {"x, y", "z"}},
                 {"\"  kept  \" , next", {"  kept  ", "next"}},
                 {"\"q\"ignored,next", {"q", "next"}},
                 {"a,,b", {"a", "", "b"}},
                 {"\r\n\r\n a \r\n\r\n\r\nb\r\n\r\n", {"a", "b"}},
                 {"\"two\r\nlines\",x", {"two\r\nlines", "x"}},
                 {"\xEF\xBB\xBF"
                  "first,caf\xC3\xA9",
                  {"first", QStringLiteral("caf\u00e9")}},
                 {"a,\"never closed, b\r\nc", {"a"}, Status::Unclosed}};
    for (const auto& c : cases) {
        Status last = Status::Ok;
        EXPECT_EQ(allTexts(c.text, &last), c.fields) << c.text;
        EXPECT_EQ(last, c.last) << c.text;
    }
}

TEST(InputFields, IntegersAreSixteenBitSigned) {
    const struct {
        const char* text;
        Status status;
        qint16 value;
    } cases[] = {{"12", Status::Ok, 12},         {" -5 ,x", Status::Ok, -5},
                 {"\"42\"", Status::Ok, 42},     {"32767", Status::Ok, 32767},
                 {"-32768", Status::Ok, -32768}, {"32768", Status::OutOfRange, 0},
                 {"abc", Status::NotNumber, 0},  {"12x", Status::NotNumber, 0},
                 {"-", Status::NotNumber, 0},    {"", Status::End, 0},
                 {"\"5", Status::Unclosed, 0}};
    for (const auto& c : cases) {
        InputFields fields(c.text);
        qint16 value = 1234;
        EXPECT_EQ(fields.ReadInteger(value), c.status) << c.text;
        EXPECT_EQ(value, c.status == Status::Ok ? c.value : 1234) << c.text;
    }
}

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
