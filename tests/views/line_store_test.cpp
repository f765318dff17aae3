#include "views/line_store.h"

#include <gtest/gtest.h>

#include "views/line_wrap.h"

using namespace Qt::StringLiterals;

namespace {

// Ten pixels a character at width 100: ten characters a row.
const FixedTextMeasure kMeasure(10, 12);
constexpr int kWidth = 100;

struct AppendCase {
  QString text;
  qsizetype rows;  // at width 100
};

const QList<AppendCase> kLines = {
    {u"short"_s, 1},
    {u"hello, wonderful world"_s, 3},     // "hello, " "wonderful " "world"
    {u"\x02" "abcdefghi"_s, 2},          // bold: 8 characters a row
    {u""_s, 1},
    {QString(25, u'x'), 3},
};

TEST(LineStore, RowCountsFollowAppends) {
  LineStore store;
  store.SetLayout(kWidth, &kMeasure);
  qsizetype total = 0;
  for (const AppendCase& line : kLines) {
    total += line.rows;
    EXPECT_EQ(store.Append(line.text, 0), total) << line.text.toStdString();
  }
  EXPECT_EQ(store.LineCount(), kLines.size());
  EXPECT_EQ(store.RowCount(), total);
  for (qsizetype i = 0; i < kLines.size(); ++i) EXPECT_EQ(store.RowsOf(i), kLines[i].rows);
}

TEST(LineStore, SetLayoutRewrapsEveryLine) {
  LineStore store;
  for (const AppendCase& line : kLines) store.Append(line.text, 0);
  EXPECT_EQ(store.RowCount(), kLines.size());  // no width yet: one row a line

  store.SetLayout(kWidth, &kMeasure);
  EXPECT_EQ(store.RowCount(), 10);
  store.SetLayout(2 * kWidth, &kMeasure);
  EXPECT_EQ(store.RowCount(), 7);  // the 22- and 25-character lines take two rows
  store.SetLayout(0, &kMeasure);
  EXPECT_EQ(store.RowCount(), kLines.size());
  EXPECT_EQ(store.Append(QString(30, u'y'), 0), kLines.size() + 1);
}

TEST(LineStore, RowToLineFindsLineAndRow) {
  LineStore store;
  store.SetLayout(kWidth, &kMeasure);
  for (const AppendCase& line : kLines) store.Append(line.text, 0);
  struct Expected {
    qsizetype row, line, rowInLine;
  };
  const Expected table[] = {{0, 0, 0}, {1, 1, 0}, {3, 1, 2}, {4, 2, 0}, {5, 2, 1},
                            {6, 3, 0}, {7, 4, 0}, {9, 4, 2}, {10, -1, 0}, {-1, -1, 0}};
  for (const Expected& e : table) {
    const RowPosition position = store.RowToLine(e.row);
    EXPECT_EQ(position.line, e.line) << "row " << e.row;
    EXPECT_EQ(position.row, e.rowInLine) << "row " << e.row;
  }
  EXPECT_EQ(store.FirstRowOf(2), 4);
  EXPECT_EQ(store.FirstRowOf(5), 10);
}

// Text comes back unit for unit: codes, pairs outside the basic plane, and even a lone
// surrogate that UTF-8 could not carry.
TEST(LineStore, TextAndColourComeBackExactly) {
  const struct {
    QString text;
    quint32 colour;
  } table[] = {
      {u"\x03" "4,12colour \x02" "bold\x0f"_s, 0x000000ffu},
      {u"\U0001F600 smile \U00010348 gothic \U0010FFFF"_s, 0x00123456u},
      {u"lone \xd800 high and \xdc00 low"_s, 0u},
      {u"\xdbff"_s, 1u},
      {u""_s, 0x00ffffffu},
      {u"caf\u00e9 \u4e2d\u6587"_s, 7u},
  };
  LineStore store;
  for (const auto& line : table) store.Append(line.text, line.colour);
  for (qsizetype i = 0; i < qsizetype(std::size(table)); ++i) {
    const StoredLine stored = store.Line(i);
    EXPECT_EQ(stored.text.toStdU16String(), table[i].text.toStdU16String());
    EXPECT_EQ(stored.colour, table[i].colour);
  }
  EXPECT_TRUE(store.Line(-1).text.isEmpty());
  EXPECT_TRUE(store.Line(std::size(table)).text.isEmpty());
}

// Enough lines to fill several record blocks and text chunks, and one line larger than
// a chunk.
TEST(LineStore, ManyLinesAndHugeLineSurvive) {
  LineStore store;
  const QString huge = QString(u"\U0001F600 huge "_s).repeated(200000);
  for (int i = 0; i < 20000; ++i) {
    store.Append(u"line %1 \u00e9\u00e9"_s.arg(i).repeated(1 + i % 20), quint32(i));
    if (i == 10000) store.Append(huge, 1);
  }
  ASSERT_EQ(store.LineCount(), 20001);
  for (int i = 0; i < 20000; i += 7) {
    const int index = i > 10000 ? i + 1 : i;
    EXPECT_EQ(store.Line(index).text, u"line %1 \u00e9\u00e9"_s.arg(i).repeated(1 + i % 20));
    EXPECT_EQ(store.Line(index).colour, quint32(i));
  }
  EXPECT_EQ(store.Line(10001).text, huge);
}

TEST(LineStore, ClearEmptiesAndStaysUsable) {
  LineStore store;
  store.SetLayout(kWidth, &kMeasure);
  for (const AppendCase& line : kLines) store.Append(line.text, 5);
  store.Clear();
  EXPECT_EQ(store.LineCount(), 0);
  EXPECT_EQ(store.RowCount(), 0);
  EXPECT_EQ(store.RowToLine(0).line, -1);
  EXPECT_EQ(store.Append(u"hello, wonderful world"_s, 3), 3);  // the layout stays
  EXPECT_EQ(store.Line(0).text, u"hello, wonderful world"_s);
}

}  // namespace

namespace {

// Found by fuzzing: a line starting with U+FEFF lost it on the way back out of storage.
TEST(LineStoreRegression, ALeadingByteOrderMarkIsKept) {
  LineStore store;
  const QString line = QString(QChar(0xFEFF)) + QStringLiteral("text");
  store.Append(line, 0);
  EXPECT_EQ(store.Line(0).text, line);
}

}  // namespace
