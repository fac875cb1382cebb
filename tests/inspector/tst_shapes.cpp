#include "Rows.h"
#include "ZELKInspectorCell.h"
#include "ZELKInspectorKind.h"
#include "ZELKInspectorStack.h"
#include "ZELKLWCLogEntry.h"
#include "ZELKLabelColours.h"
#include "ZELKLabelLayout.h"
#include "ZELKPanelFit.h"

#include <QPalette>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Rect = ZELKUprightRect;
using Kind = ZELKInspectorKind;

QString hsv(const QColor &colour)
{
    float hue = 0.0F;
    float saturation = 0.0F;
    float value = 0.0F;
    float alpha = 0.0F;
    colour.getHsvF(&hue, &saturation, &value, &alpha);
    return u"%1 %2 %3 %4"_s.arg(qMax(hue, 0.0F), 0, 'f', 2)
        .arg(saturation, 0, 'f', 2)
        .arg(value, 0, 'f', 2)
        .arg(alpha, 0, 'f', 2);
}

class ShapesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void kinds_data()
    {
        const Rows<QVariant, Kind> row;
        row("nothing", QVariant(), Kind::Unsupported);
        row("array", QVariantList{1, 2}, Kind::Array);
        row("empty array", QVariantList(), Kind::Array);
        row("texts", QStringList{u"a"_s}, Kind::Array);
        row("dictionary", QVariant::fromValue(ZELKDictionary{{u"a"_s, 1}}), Kind::Dictionary);
        row("text", u"a"_s, Kind::Scalar);
        row("whole number", qlonglong(7), Kind::Scalar);
        row("number", 7.5, Kind::Scalar);
        row("truth", true, Kind::Scalar);
        row("duration", ZELKLWCDuration(60.0).toVariant(), Kind::Scalar);
        row("period", ZELKLWCAbsoluteDuration(ZELKDate(), 60.0).toVariant(), Kind::Scalar);
        row("date", QVariant::fromValue(ZELKDate()), Kind::Unsupported);
        row("data", QByteArray("a"), Kind::Unsupported);
        row("text with looks", QVariant::fromValue(ZELKAttributedString(u"a"_s)), Kind::Unsupported);
        row("no entry", QVariant::fromValue<ZELKLWCLogEntry *>(nullptr), Kind::Unsupported);
    }
    void kinds()
    {
        const auto [value, kind] = Rows<QVariant, Kind>::fetch();
        QCOMPARE(ZELKInspectorValue::kindOf(value), kind);
    }

    void stack()
    {
        const auto stack =
            ZELKInspectorStack::of({QSizeF(80, 20), std::nullopt, QSizeF(120, 50), QSizeF(10, 7)});
        QCOMPARE(stack.size(), QSizeF(120, 77));
        const std::vector<Rect> frames{{0, 57, 120, 20}, {0, 57, 120, 0}, {0, 7, 120, 50}, {0, 0, 120, 7}};
        QCOMPARE(stack.frames, frames);
        QCOMPARE(frames[2].turned(stack.size().height()), QRectF(0, 20, 120, 50));
        // Its sum has no more digits than single precision has.
        QCOMPARE(ZELKInspectorStack::of({QSizeF(1, 16777216.0), QSizeF(1, 1.0)}).height, 16777216.0F);
        QCOMPARE(ZELKInspectorStack::of({}).size(), QSizeF(0, 0));
    }

    /// A panel of 100 by 50 with a frame of 2 at its sides and 20 above, on a screen of 1000 by 600 over a
    /// dock of 40.
    void panelFits_data()
    {
        const Rows<Rect, QSizeF, Rect, bool> row;
        const Rect middle{500, 300, 104, 70};
        row("same", middle, QSizeF(100, 50), middle, false);
        row("taller grows down", middle, QSizeF(100, 80), Rect{500, 270, 104, 100}, false);
        row("wider grows left", middle, QSizeF(130, 50), Rect{470, 300, 134, 70}, false);
        row("smaller", middle, QSizeF(60, 20), Rect{540, 330, 64, 40}, false);
        row("down to the dock", middle, QSizeF(100, 310), Rect{500, 40, 104, 330}, false);
        row("scrolls below", middle, QSizeF(100, 4000), Rect{484, 40, 120, 330}, true);
        row("goes up where it hangs low", Rect{500, 50, 104, 70}, QSizeF(100, 4000), Rect{484, 40, 120, 186},
            true);
        row("goes up whole", Rect{500, 50, 104, 70}, QSizeF(100, 120), Rect{500, 40, 104, 140}, false);
        row("over the right edge stays", Rect{950, 300, 104, 70}, QSizeF(100, 80), Rect{950, 270, 104, 100},
            false);
        row("over the left edge comes back", Rect{10, 300, 104, 70}, QSizeF(200, 50), Rect{0, 300, 204, 70},
            false);
        row("never wider than the screen", middle, QSizeF(5000, 50), Rect{0, 300, 1000, 70}, false);
        row("out of sight comes back", Rect{2000, 300, 104, 70}, QSizeF(100, 80), Rect{896, 270, 104, 100},
            false);
    }
    void panelFits()
    {
        const auto [frame, wanted, expected, scrolls] = Rows<Rect, QSizeF, Rect, bool>::fetch();
        const auto fit = ZELKPanelFit::of({frame, {100, 50}, {0, 40, 1000, 560}, 16.0}, wanted);
        QCOMPARE(fit.frame.string(), expected.string());
        QCOMPARE(fit.scrolls, scrolls);
    }

    void standsBesideItsWindow_data()
    {
        const Rows<Rect, Rect> row;
        row("at the right", Rect{100, 200, 500, 300}, Rect{608, 300, 200, 200});
        row("at the left", Rect{300, 200, 600, 300}, Rect{92, 300, 200, 200});
        row("over it", Rect{50, 200, 900, 300}, Rect{742, 300, 200, 200});
        row("over all of the screen", Rect{0, 0, 1000, 600}, Rect{792, 400, 200, 200});
        row("too low", Rect{100, -200, 500, 300}, Rect{608, 0, 200, 200});
    }
    void standsBesideItsWindow()
    {
        const auto [window, expected] = Rows<Rect, Rect>::fetch();
        QCOMPARE(ZELKPanelFit::beside(window, {200, 200}, {0, 0, 1000, 600}).string(), expected.string());
    }

    void rectanglesAsTexts_data()
    {
        const Rows<QString, QString> row; // null for one that is none
        row("usual", "{{10, 20}, {300, 400}}", "{{10, 20}, {300, 400}}");
        row("spaces", " {{-1.5,2e1},  {3 , 4}} ", "{{-1.5, 20}, {3, 4}}");
        for (const char *wrong :
             {"", "10 20 300 400", "{{1, 2}, {3}}", "{{1, 2}, {3, x}}", "{{nan, 2}, {3, 4}}",
              "{{1, 2}, {inf, 4}}", "{{1, 2}, {3, 1e9}}", "{{1, 2}, {3, 4}} {{"})
            row(*wrong ? wrong : "empty", wrong, QString());
    }
    void rectanglesAsTexts()
    {
        const auto [text, expected] = Rows<QString, QString>::fetch();
        const auto rect = ZELKUprightRect::fromString(text);
        QCOMPARE(rect ? rect->string() : QString(), expected);
    }

    /// 100 by 33, a border of 1.5 and an inset of 2.
    void labelLayout()
    {
        const auto layout = ZELKLabelLayout::of({0, 0, 100, 33}, 1.5, 2.0, true);
        QCOMPARE(layout.insetFrame, (Rect{1.5, 1.5, 97, 30}));
        QCOMPARE(layout.inside, (Rect{3.5, 3.5, 93, 26}));
        QCOMPARE(layout.bottom, (Rect{3.5, 3.5, 93, 13}));
        QCOMPARE(layout.top, (Rect{3.5, 16.5, 93, 13}));
        QCOMPARE(layout.image, (Rect{3.5, 3.5, 26, 26}));
        QCOMPARE(layout.titleX, 33.5);
        QCOMPARE(ZELKLabelLayout::of({0, 0, 100, 33}, 1.5, 0.0, false).titleX, 5.5);
    }

    void gradient_data()
    {
        const Rows<QColor, QString, QString> row;
        row("blue", QColor::fromHsvF(0.6F, 0.5F, 0.6F, 0.8F), "0.60 0.38 0.90 0.80", "0.60 0.62 0.51 0.80");
        row("bright", QColor::fromHsvF(0.2F, 0.95F, 0.9F), "0.20 0.83 1.00 1.00", "0.20 1.00 0.81 1.00");
        row("pale", QColor::fromHsvF(0.2F, 0.1F, 0.5F), "0.20 0.00 0.80 1.00", "0.20 0.22 0.41 1.00");
        row("almost grey", QColor::fromHsvF(0.2F, 0.03F, 0.5F), "0.20 0.00 0.80 1.00", "0.20 0.00 0.41 1.00");
        row("grey", QColor(128, 128, 128), "0.00 0.00 0.80 1.00", "0.00 0.00 0.41 1.00");
        row("black", QColor(0, 0, 0), "0.00 0.00 0.30 1.00", "0.00 0.00 0.00 1.00");
    }
    void gradient()
    {
        const auto [base, lower, upper] = Rows<QColor, QString, QString>::fetch();
        const auto colours = ZELKLabelColours::gradient(base);
        QCOMPARE(hsv(colours.first), lower);
        QCOMPARE(hsv(colours.second), upper);
    }

    /// Black must be readable on every tint.
    void tints()
    {
        for (const QRgb tint : {0xff000000U, 0xff000080U, 0xff308cc6U, 0xff800000U, 0xffffd97aU}) {
            QPalette palette;
            palette.setColor(QPalette::Highlight, QColor(tint));
            const auto colours = ZELKLabelColours::initial(palette);
            QCOMPARE(colours.border, QColor(tint));
            QCOMPARE(colours.inset, palette.color(QPalette::Light));
            QVERIFY2(colours.background.lightnessF() > 0.4F, qPrintable(colours.background.name()));
            QCOMPARE(ZELKLabelColours::afterTintChange(palette).border, palette.color(QPalette::Dark));
            QCOMPARE(ZELKLabelColours::afterTintChange(palette).background, colours.background);
        }
    }

    void cells_data()
    {
        const Rows<QVariant, QString, QString> row;
        const auto looks = [](const char *text) {
            return QVariant::fromValue(ZELKAttributedString(QString::fromUtf8(text)));
        };
        row("figure and length", looks("25.0%  6h 3m"), "25.0%", "6h 3m");
        row("figure alone", looks("100.0%"), "100.0%", "");
        row("rate", looks("0.8% an hour"), "0.8%", "an hour");
        row("no figure", looks("Unknown  of 5%"), "", "Unknown  of 5%");
        row("plain percentage", "25%", "", "25%");
        row("turns direction", "a\u202Eb\u2066c\u0007d", "", "a b c d");
        row("long", QString(9000, u'x'), "", QString(4000, u'x') + u'…');
        row("nested", QVariantList{u"a"_s, QVariantList{1}}, "", "(a, (1))");
    }
    void cells()
    {
        const auto [value, figure, text] = Rows<QVariant, QString, QString>::fetch();
        const auto cell = ZELKInspectorCell::ofValue(value);
        QCOMPARE(cell.figure.string(), figure);
        QCOMPARE(cell.text.string(), text);
    }
};

} // namespace

QTEST_MAIN(ShapesTest)
#include "tst_shapes.moc"
