#include "NamedRows.h"
#include "TableFixture.h"
#include "ZELKSummarySearch.h"
#include "ZELKTextLineCache.h"
#include "ZELKTextLines.h"

#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QtTest>

namespace {

ZELKTextAttributes sized(double points)
{
    ZELKTextAttributes attributes;
    attributes.pointSize = points;
    return attributes;
}

template <typename Draw>
QImage drawn(const ZELKAttributedString &text, const QSizeF &size, const Draw &draw)
{
    QImage image(220, 60, QImage::Format_ARGB32_Premultiplied);
    image.fill(0xFFE0F0FF);
    QPainter painter(&image);
    draw(painter, QRectF({7.0, 5.0}, size), text, ZELKTextColours::forPaper());
    return image;
}

} // namespace

/// What makes the table quick must not be seen otherwise.
class CellsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void findsSummaries()
    {
        ZELKStringPool texts;
        QRandomGenerator random(7);
        std::vector<ZELKStringPool::Id> summaries;
        for (int i = 0; i < 5003; ++i) // no whole number of blocks, nor of groups
            summaries.push_back(texts.intern(u"Power %1 ä"_s.arg(random.bounded(i / 10 + 1))));
        // One letter, a number, a whole summary, beyond a letter of two bytes, nothing.
        for (const QString &text : {u"a"_s, u"17"_s, u"Power 99 ä"_s, u" ä"_s, u"power"_s}) {
            for (const std::size_t count : {std::size_t(0), std::size_t(5), summaries.size()}) {
                std::vector<std::uint32_t> expected;
                for (std::size_t i = 0; i < count; ++i)
                    if (texts.string(summaries[i]).contains(text))
                        expected.push_back(std::uint32_t(40 + i));
                ZELKSummarySearch search(texts, text.toStdString());
                QCOMPARE(search.placesIn({summaries.data(), count}, 40), expected);
            }
        }
    }

    void remembersLines_data()
    {
        const NamedRows<QString> row("text");
        row("short", u"AVATAR To fi"_s);
        row("nothing", QString());
        row("cut", u"A line that is much too long for the width that there is for it"_s);
        row("from the right", u"\u05D0\u05D1\u05D2 12"_s);
        row("from the right, cut", u"\u05D0\u05D1\u05D2 \u05D3\u05D4 "_s.repeated(20));
        row("turned", u"a\u202Ebcd\u2066ef"_s);
        row("control characters", u"a\tb\u0007c\u2028d\u0085e"_s);
        row("two paragraphs", u"one\ntwo"_s);
        row("fonts of others", u"e\u0301 \u4E2D\u6587 \U0001F600 \u0E01"_s);
    }

    /// Pixel by pixel, at first sight and again, in one size and the next.
    void remembersLines()
    {
        QFETCH(QString, text);
        const QFont standard = QGuiApplication::font();
        ZELKTextLineCache cache;
        const auto remembered = [&](auto &&...all) { cache.draw(all...); };
        ZELKTextAttributes indented = sized(11.0);
        indented.paragraph.alignment = ZELKParagraphStyle::Alignment::Centre;
        indented.paragraph.leftIndent = 12.0;
        indented.paragraph.spacingBefore = 3.0;
        ZELKTextAttributes underlined = sized(11.0);
        underlined.underline = true;
        for (const double factor : {1.0, 1.5, -1.5}) { // from right to left
            QFont font = standard;
            font.setPointSizeF(standard.pointSizeF() * std::abs(factor));
            if (factor > 0.0)
                QGuiApplication::setFont(font);
            QGuiApplication::setLayoutDirection(factor > 0.0 ? Qt::LeftToRight : Qt::RightToLeft);
            for (const ZELKTextAttributes &look : {sized(11.0), ZELKTextAttributes(), indented, underlined})
                for (const QSizeF size : {QSizeF(200.0, 30.0), QSizeF(90.5, 30.0), QSizeF(90.5, 8.0)})
                    for (int time = 0; time < 2; ++time) {
                        const ZELKAttributedString whole(text, look);
                        QCOMPARE(drawn(whole, size, remembered), drawn(whole, size, ZELKTextLines::draw));
                    }
        }
        QGuiApplication::setFont(standard);
        QGuiApplication::setLayoutDirection(Qt::LeftToRight);
    }
};

QTEST_MAIN(CellsTest)
#include "tst_cells.moc"
